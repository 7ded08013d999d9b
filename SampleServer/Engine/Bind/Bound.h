#pragma once

#include "Engine/Functions/EvaluationContext.h"
#include "Engine/Parse/AstQueries.h"
#include "Types/ResultSink.h"

#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace SampleServer {
class Database;
class RowProvider;
struct Module;
struct Table;
struct XmlShape;
} // namespace SampleServer

// Expressions and queries with all names and types resolved: the output of the binder and the input of the
// emitter, which writes SQLite's SQL. Immutable once built, so parts can be shared.
namespace SampleServer::Bound {

struct Expression;
using ExpressionPtr = std::shared_ptr<const Expression>;
struct Query;
using QueryPtr = std::shared_ptr<const Query>;

struct OrderItem
{
    ExpressionPtr expression; ///< null: sort by an output column
    std::size_t output = 0;   ///< the number of the output column, from 0
    bool descending = false;
};

struct Operation;
/// Computes a scalar from arguments of the types that the operation declares. May throw EngineError.
using ScalarFunction = Value (*)(EvaluationContext &context, const Operation &operation,
                                 std::span<const Value> arguments);

/// A computation on values, called by SQLite.
struct Operation
{
    ScalarFunction function = nullptr;
    SqlType result;
    std::vector<SqlType> arguments;
    int selector = 0; ///< further parameter of the function: an operator, a date part, a style
    std::string text; ///< further parameter: a name
    std::shared_ptr<const Module> module; ///< further parameter: a user-defined function
    bool nullPropagates = true;           ///< any NULL argument makes the result NULL without a call
    bool foldable = true; ///< returns the same result for the same arguments throughout a statement

    friend bool operator==(const Operation &, const Operation &) = default;
};

struct Constant
{
    Value value;
    bool isLiteral = false; ///< a literal in the text, whose type may adapt (NULL, digits of an integer)
};

/// A column of a source in SQLite's terms.
struct Column
{
    std::string source;
    std::string name;
};

struct Call
{
    Operation operation;
    std::vector<ExpressionPtr> arguments;
    /// SQLite evaluates a call and its nested calls as one function of their leaves: the arguments that are
    /// neither calls nor constants. If there would be too many leaves, nested calls count as leaves.
    bool isFused = true;
    std::size_t leaves = 0;
};

/// Whether SQLite passes this argument of `call`.
bool isLeaf(const Call &call, const Expression &argument);

struct Comparison
{
    Ast::ComparisonOperator op;
    ExpressionPtr left, right; ///< of one type
};

struct Logical
{
    bool isAnd;
    ExpressionPtr left, right;
};

struct Not
{
    ExpressionPtr operand;
};

struct IsNull
{
    ExpressionPtr operand;
    bool negated;
};

struct In
{
    ExpressionPtr operand;
    std::vector<ExpressionPtr> list; ///< of the operand's type
};

struct InQuery
{
    ExpressionPtr operand;
    QueryPtr query; ///< one column of the operand's type
};

struct Case
{
    std::vector<std::pair<ExpressionPtr, ExpressionPtr>> branches;
    ExpressionPtr otherwise; ///< never null: a NULL constant if there is no ELSE
};

struct Coalesce
{
    std::vector<ExpressionPtr> arguments;
};

struct Exists
{
    QueryPtr query;
};

struct ScalarQuery
{
    QueryPtr query;
};

/// A window function.
struct WindowCall
{
    std::string function; ///< SQLite's name
    std::vector<ExpressionPtr> arguments, partition;
    std::vector<OrderItem> order;
    std::string frame; ///< empty for the default
};

/// The rows of a query as XML; NULL if there are no rows.
struct XmlText
{
    QueryPtr query;
    std::shared_ptr<const XmlShape> shape;
};

struct Expression
{
    SqlType type;
    bool nullable = true;
    std::variant<Constant, Column, Call, Comparison, Logical, Not, IsNull, In, InQuery, Case, Coalesce,
                 Exists, ScalarQuery, WindowCall, XmlText>
        node;
};

/// The value of a constant expression; null for other expressions.
const Value *constantValue(const Expression &expression);
/// Whether the expression is the literal NULL, whose type adapts to its context.
bool isNullLiteral(const Expression &expression);

// Sources

struct Source;
using SourcePtr = std::shared_ptr<const Source>;

struct TableScan
{
    std::shared_ptr<const Table> table;
    std::string schema;                 ///< SQLite's name of the database: an attached one or "temp"
    std::shared_ptr<Database> database; ///< null for a temporary table
};

struct DerivedQuery
{
    QueryPtr query;
};

struct ValueRows
{
    std::vector<std::vector<ExpressionPtr>> rows;
};

/// generate_rows(n)
struct GeneratedRows
{
    ExpressionPtr count;
};

/// Rows created by the engine; the arguments may be columns of sources to its left.
struct ProvidedRows
{
    std::shared_ptr<const RowProvider> provider;
    std::vector<ExpressionPtr> arguments;
};

/// A recursive common table: the rows of the anchor and of the steps over previous rows.
struct RecursiveRows
{
    std::string name; ///< SQLite's, unique within the statement
    QueryPtr anchor;
    std::vector<QueryPtr> steps; ///< each with the depth as an additional last column
};

/// The previous rows, as a step of a recursive common table references them.
struct RecursiveReference
{
    std::string name;
};

struct JoinedSources
{
    Ast::JoinKind kind;
    SourcePtr left, right;
    ExpressionPtr condition; ///< null for a cross join
};

struct Source
{
    std::string alias; ///< SQLite's name for it, unique within the statement
    std::variant<TableScan, DerivedQuery, ValueRows, GeneratedRows, ProvidedRows, RecursiveRows,
                 RecursiveReference, JoinedSources>
        node;
};

// Queries

struct Aggregate
{
    std::string function;   ///< SQLite's name: count, min, max or an aggregate of the engine
    ExpressionPtr argument; ///< null for COUNT(*)
    bool distinct = false;
    std::vector<ExpressionPtr> more = {}; ///< further arguments
};

struct OutputColumn
{
    ColumnInfo info;
    ExpressionPtr expression; ///< null in a combined query
};

struct Query
{
    std::vector<OutputColumn> columns;
    std::vector<OrderItem> orderBy;
    ExpressionPtr limit, offset; ///< may be null
    bool withTies = false;       ///< includes rows equal to the last one within the limit
    bool percent = false;        ///< the limit is a percentage of the rows, as a float

    // Two combined queries; the members below are unused then.
    std::optional<Ast::SetOperator> op;
    QueryPtr left, right;

    std::vector<SourcePtr> from;
    ExpressionPtr where; ///< may be null
    bool distinct = false;

    // With grouping, the output columns, HAVING and ORDER BY refer to keys (g0, g1 ...) and aggregates (a0,
    // a1 ...) of the source `groupAlias`.
    bool grouped = false;
    std::string groupAlias;
    std::vector<ExpressionPtr> groupKeys;
    std::vector<Aggregate> aggregates;
    ExpressionPtr having; ///< may be null
};

} // namespace SampleServer::Bound
