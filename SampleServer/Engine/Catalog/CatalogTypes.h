#pragma once

#include "Types/SqlType.h"

#include <span>
#include <string_view>

namespace SampleServer {

/// A system type as sys.types lists it.
struct SystemType
{
    std::string_view name;
    int systemId;
    int userId;
    SqlType type; ///< as it is without arguments
};

/// system_type_id of rowversion columns, which hold binary(8).
constexpr int RowVersionTypeId = 189;

std::span<const SystemType> systemTypes();
/// system_type_id of a type.
int systemTypeId(const SqlType &type);
/// Length in bytes, digits and scale as the catalog gives them.
int catalogLength(const SqlType &type);
int catalogPrecision(const SqlType &type);
int catalogScale(const SqlType &type);

} // namespace SampleServer
