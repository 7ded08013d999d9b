#pragma once

#include "Engine/Edition.h"
#include "Engine/Parse/AstExpressions.h"
#include "Types/SqlType.h"

namespace SampleServer {

/// The context of a type name determines the length if none is written.
enum class TypePlace { Declaration, Cast };

/// Resolves a type name. Throws EngineError 2715 and others if the edition has no such type.
SqlType resolveType(const Ast::TypeName &name, TypePlace place, Edition edition = Edition::Sql2022);

/// Whether the name is that of rowversion, a type of eight bytes.
bool isRowVersion(const Ast::ObjectName &name);

/// Whether the name is that of a system type.
bool isSystemType(const Ast::ObjectName &name);

/// Returns the common type of two values (CASE, UNION, comparison): the type of higher precedence, wide
/// enough for both. Throws EngineError 206 if neither converts to the other.
SqlType commonType(const SqlType &left, const SqlType &right);

/// Throws EngineError 206, 257 or 529 if values of one type cannot be converted to the other.
void requireConversion(const SqlType &from, const SqlType &to, bool explicitly);

/// The types of SUM and AVG over a type; `name` is the aggregate shown in error 8117.
SqlType sumType(const SqlType &argument, const std::string &name);
SqlType averageType(const SqlType &argument);

} // namespace SampleServer
