#pragma once

#include "Engine/Catalog/SchemaObject.h"
#include "Engine/Parse/AstQueries.h"

// What CREATE and ALTER define, as it was written.
namespace SampleServer::Ast {

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;

struct KeyColumn
{
    std::string name;
    bool descending = false;
};

struct IndexOptions
{
    bool ignoresDuplicates = false;
    bool padded = false;
    bool dropExisting = false;
    int fillFactor = 0;
};

enum class ConstraintKind { PrimaryKey, Unique, ForeignKey, Check, Default };

struct Constraint
{
    ConstraintKind kind = ConstraintKind::Check;
    std::string name;   ///< empty: the server makes one up
    std::string column; ///< the column it was written for, empty for a table's
    std::optional<bool> clustered;
    std::vector<KeyColumn> columns;
    IndexOptions options;
    DefinedExpression expression; ///< of CHECK and DEFAULT
    ObjectName referenced;
    std::vector<std::string> referencedColumns; ///< empty: those of the primary key
    ReferentialAction onDelete = ReferentialAction::NoAction, onUpdate = ReferentialAction::NoAction;
};

struct ColumnDefinition
{
    std::string name;
    TypeName type;
    std::optional<bool> nullable;
    struct Identity
    {
        std::int64_t seed = 1, increment = 1;
    };
    std::optional<Identity> identity;
    DefinedExpression computed; ///< set for "name AS expression"; type is unused then
    bool persisted = false, rowGuid = false, sparse = false;
    bool withValues = false; ///< ADD column ... WITH VALUES
};

struct CreateIndex
{
    std::string name;
    ObjectName table;
    bool unique = false, clustered = false;
    std::vector<KeyColumn> columns;
    std::vector<std::string> included;
    DefinedExpression filter;
    IndexOptions options;
};

struct CreateTable
{
    ObjectName name;
    std::vector<ColumnDefinition> columns;
    std::vector<Constraint> constraints;
    std::vector<CreateIndex> indexes;
};

struct AlterTable
{
    enum class Action { Add, AlterColumn, Drop, EnableConstraints, EnableTriggers };
    ObjectName name;
    Action action = Action::Add;
    CreateTable added; ///< ADD; ALTER COLUMN: the one column
    struct Dropped
    {
        std::string name;
        bool isColumn = false;
        bool ifExists = false;
    };
    std::vector<Dropped> dropped;
    bool enable = true;                        ///< CHECK and NOCHECK CONSTRAINT, ENABLE and DISABLE TRIGGER
    bool checkExisting = true;                 ///< WITH CHECK and NOCHECK
    std::vector<std::string> names;            ///< of constraints or triggers; empty: all
    std::optional<bool> setRowGuid, setSparse; ///< ALTER COLUMN ... ADD and DROP
};

struct AlterIndex
{
    enum class Action { Rebuild, Disable, None };
    std::string name; ///< empty: all
    ObjectName table;
    Action action = Action::None;
};

struct DropIndex
{
    struct Item
    {
        std::string name;
        ObjectName table;
    };
    std::vector<Item> items;
    bool ifExists = false;
};

struct ParameterDefinition
{
    std::string name; ///< with its @
    TypeName type;
    std::shared_ptr<const Expression> defaultValue;
    bool output = false;
    bool readOnly = false;
};

/// CREATE VIEW, PROCEDURE, FUNCTION and TRIGGER
struct ModuleDefinition
{
    ObjectKind kind = ObjectKind::View;
    ObjectName name;
    bool encrypted = false;
    bool schemaBound = false;
    bool nullOnNull = false; ///< RETURNS NULL ON NULL INPUT
    std::vector<ParameterDefinition> parameters;
    std::vector<std::string> columns;     ///< of a view
    SelectPtr query;                      ///< of a view or inline function
    std::vector<StatementPtr> statements; ///< of the others
    TypeName returns;                     ///< of a scalar function
    CreateTable resultTable;              ///< of a multi-statement function; its name is that of the variable
    ObjectName parent;                    ///< of a trigger
    bool onInsert = false, onUpdate = false, onDelete = false, insteadOf = false;

    ModuleDefinition();
    ~ModuleDefinition();
};

struct CreateModule
{
    std::shared_ptr<const ModuleDefinition> definition;
    bool create = true, alter = false; ///< both for CREATE OR ALTER
    std::string text;                  ///< as the catalog shows it, with CREATE
};

/// DROP VIEW, PROCEDURE, FUNCTION, TRIGGER, SYNONYM, TYPE and SCHEMA; `kind` is the word.
struct DropObjects
{
    std::string kind;
    std::vector<ObjectName> names;
    bool ifExists = false;
};

struct CreateSchema
{
    std::string name;
};

struct CreateType
{
    ObjectName name;
    TypeName base;
    std::optional<bool> nullable;
    std::shared_ptr<const CreateTable> table; ///< set for a table type
};

struct CreateSynonym
{
    ObjectName name, target;
};

struct CreateDatabase
{
    std::string name;
};

struct AlterDatabase
{
    std::string name;    ///< empty: the current one
    std::string newName; ///< MODIFY NAME; empty for options, which have no effect
};

struct DropDatabase
{
    std::vector<std::string> names;
    bool ifExists = false;
};

struct DropTable
{
    std::vector<ObjectName> names;
    bool ifExists = false;
};

} // namespace SampleServer::Ast
