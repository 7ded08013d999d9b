#pragma once

#include "Engine/Edition.h"
#include "Engine/Parse/AstExpressions.h"
#include "Types/SqlType.h"

namespace SampleServer {

/// Where a type name stands decides the length it has when none is written.
enum class TypePlace { Declaration, Cast };

/// The type of a name. Throws EngineError 2715 and others for a name that is no type in that edition.
SqlType resolveType(const Ast::TypeName &name, TypePlace place, Edition edition = Edition::Sql2022);

/// Whether the name is that of the type of row versions, which are eight bytes.
bool isRowVersion(const Ast::ObjectName &name);

/// Whether the name is that of a system type.
bool isSystemType(const Ast::ObjectName &name);

/// The type two values meet in (CASE, UNION, comparison): the one of higher precedence, wide enough for both.
/// Throws EngineError 206 when neither converts to the other.
SqlType commonType(const SqlType &left, const SqlType &right);

/// Throws EngineError 206, 257 or 529 unless a value of one type may become the other.
void requireConversion(const SqlType &from, const SqlType &to, bool explicitly);

/// The types of SUM and AVG over a type; `name` is the aggregate an error 8117 names.
SqlType sumType(const SqlType &argument, const std::string &name);
SqlType averageType(const SqlType &argument);

} // namespace SampleServer
