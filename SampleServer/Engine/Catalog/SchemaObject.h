#pragma once

#include "Engine/Parse/AstExpressions.h"
#include "Types/SqlType.h"

#include <memory>
#include <string>

namespace SampleServer {

enum class ObjectKind {
    Table,
    View,
    Procedure,
    ScalarFunction,
    InlineFunction,
    TableFunction,
    Trigger,
    Synonym,
    TableType,
};

/// A named object in a schema of a database. Definitions are immutable: a change creates a new one.
struct SchemaObject
{
    explicit SchemaObject(ObjectKind objectKind = ObjectKind::Table)
        : kind(objectKind)
    {
    }
    virtual ~SchemaObject() = default;
    SchemaObject(const SchemaObject &) = default;
    SchemaObject &operator=(const SchemaObject &) = default;

    std::int64_t id = 0;
    int database = 0; ///< 0 for a session's temporary table
    std::string schema = "dbo";
    std::string name;
    ObjectKind kind;
    DateTimeValue created, modified; ///< local time
};
using ObjectPtr = std::shared_ptr<const SchemaObject>;

/// An expression of a definition: its syntax tree and the text that the catalog shows.
struct DefinedExpression
{
    std::shared_ptr<const Ast::Expression> expression; ///< null if there is none
    std::string text;

    explicit operator bool() const { return expression != nullptr; }
};

enum class ReferentialAction { NoAction, Cascade, SetNull, SetDefault };

/// The name of a constraint, which is also an object.
struct ConstraintName
{
    std::string name; ///< empty if there is no constraint
    std::int64_t id = 0;
    bool systemNamed = false;
};

struct Synonym : SchemaObject
{
    Synonym()
        : SchemaObject(ObjectKind::Synonym)
    {
    }
    Ast::ObjectName target;
    std::string targetText; ///< as the catalog shows it: [shop].[dbo].[t]
};

/// A type created with CREATE TYPE: an alias of a system type, or a table type.
struct UserType
{
    int id = 0; ///< user_type_id, from 257
    std::string schema = "dbo";
    std::string name;
    SqlType base;
    bool nullable = true;
    ObjectPtr table; ///< the Table of a table type, otherwise null
};
using UserTypePtr = std::shared_ptr<const UserType>;

/// Returns a new object id, unique within the process.
std::int64_t newObjectId();

} // namespace SampleServer
