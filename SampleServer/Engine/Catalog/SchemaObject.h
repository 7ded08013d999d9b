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

/// What has a name in a schema of a database. Definitions are immutable: a change makes a new one.
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

/// An expression of a definition: how it was read, and the text that the catalog shows.
struct DefinedExpression
{
    std::shared_ptr<const Ast::Expression> expression; ///< null where there is none
    std::string text;

    explicit operator bool() const { return expression != nullptr; }
};

enum class ReferentialAction { NoAction, Cascade, SetNull, SetDefault };

/// The name of a constraint, which is an object as well.
struct ConstraintName
{
    std::string name; ///< empty where there is no constraint
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

/// A type that CREATE TYPE made: another name for a system type, or a kind of table.
struct UserType
{
    int id = 0; ///< user_type_id, from 257
    std::string schema = "dbo";
    std::string name;
    SqlType base;
    bool nullable = true;
    ObjectPtr table; ///< the Table that a table type describes, else null
};
using UserTypePtr = std::shared_ptr<const UserType>;

/// A new object id, unique within the process.
std::int64_t newObjectId();

} // namespace SampleServer
