#pragma once

#include "Engine/Parse/AstDefinitions.h"

// Syntax trees of statements.
namespace SampleServer::Ast {

struct Insert
{
    ObjectName table;
    std::vector<std::string> columns; ///< empty: all
    std::optional<Top> top;
    /// A null expression is DEFAULT. Empty if the rows come from `query` or DEFAULT VALUES.
    std::vector<std::vector<ExpressionPtr>> rows;
    SelectPtr query;
    StatementPtr execute; ///< INSERT ... EXEC
    bool defaultValues = false;
};

struct Assignment
{
    std::string column;   ///< empty if only a variable is assigned
    std::string variable; ///< @x = column = expression, empty otherwise
    ExpressionPtr value;  ///< null: DEFAULT
};

struct Update
{
    ObjectName table; ///< a table or an alias of the FROM clause
    std::optional<Top> top;
    std::vector<CommonTable> with;
    std::vector<Assignment> assignments;
    std::vector<TableSourcePtr> from;
    ExpressionPtr where;
    bool isSilent = false; ///< sends no row count
};

struct Delete
{
    ObjectName table;
    std::vector<CommonTable> with;
    std::optional<Top> top;
    std::vector<TableSourcePtr> from;
    ExpressionPtr where;
};

struct TruncateTable
{
    ObjectName table;
};

struct Declare
{
    struct Variable
    {
        std::string name;
        TypeName type;
        ExpressionPtr initial;              ///< may be null
        std::shared_ptr<CreateTable> table; ///< set for a table variable
    };
    std::vector<Variable> variables;
};

struct SetVariable
{
    std::string name;
    ExpressionPtr value;
};

/// SET option[, option] value, the keywords in upper case; if the value is an expression, it is in
/// `expression`.
struct SetOption
{
    std::vector<std::string> options;
    std::string value;
    ExpressionPtr expression;
};

struct SetIdentityInsert
{
    ObjectName table;
    bool on = false;
};

struct If
{
    ExpressionPtr condition;
    StatementPtr then, otherwise; ///< otherwise may be null
};

struct While
{
    ExpressionPtr condition;
    StatementPtr body;
};

struct Block
{
    std::vector<StatementPtr> statements;
};

struct Break
{
};

struct Continue
{
};

struct Return
{
    ExpressionPtr status; ///< may be null
};

struct TryCatch
{
    Block body, handler;
};

/// THROW number, message, state; all null to rethrow the caught error.
struct Throw
{
    ExpressionPtr number, message, state;
};

struct Print
{
    ExpressionPtr value;
};

struct RaiseError
{
    ExpressionPtr message, severity, state;
    std::vector<ExpressionPtr> arguments;
    bool noWait = false, log = false, setsError = false;
};

struct WaitForDelay
{
    ExpressionPtr delay;
    bool untilTime = false; ///< WAITFOR TIME
};

struct Use
{
    std::string database;
};

struct Transaction
{
    enum class Kind { Begin, Commit, Rollback, Save };
    Kind kind;
    std::string name; ///< empty if not given; with its @ if a variable contains it
};

/// EXEC ('text') and EXEC procedure arguments.
struct Execute
{
    struct Argument
    {
        std::string name; ///< @name = value, empty otherwise
        ExpressionPtr value;
        bool output = false;
    };
    ExpressionPtr text; ///< set for EXEC (...)
    ObjectName procedure;
    std::string procedureVariable; ///< set for EXEC @name
    std::vector<Argument> arguments;
    std::string statusVariable;
};

struct Statement
{
    int line = 1;
    std::variant<Select, Insert, Update, Delete, TruncateTable, CreateTable, AlterTable, DropTable,
                 CreateIndex, AlterIndex, DropIndex, CreateModule, DropObjects, CreateSchema, CreateType,
                 CreateSynonym, CreateDatabase, AlterDatabase, DropDatabase, Declare, SetVariable, SetOption,
                 SetIdentityInsert, If, While, Block, Break, Continue, Return, TryCatch, Throw, Print,
                 RaiseError, WaitForDelay, Use, Transaction, Execute>
        node;
};

} // namespace SampleServer::Ast
