#pragma once

#include "Types/SqlType.h"

#include <span>
#include <string_view>

namespace SampleServer {

/// A row of sys.types for a system type.
struct SystemType
{
    std::string_view name;
    int systemId;
    int userId;
    SqlType type; ///< the type without arguments
};

/// system_type_id of rowversion columns, which hold binary(8).
constexpr int RowVersionTypeId = 189;

std::span<const SystemType> systemTypes();
/// system_type_id of a type.
int systemTypeId(const SqlType &type);
/// Length in bytes, precision and scale as the catalog shows them.
int catalogLength(const SqlType &type);
int catalogPrecision(const SqlType &type);
int catalogScale(const SqlType &type);

} // namespace SampleServer
