#pragma once

#include "Engine/Parse/AstExpressions.h"

// Syntax trees of queries.
namespace SampleServer::Ast {

struct SelectItem
{
    ExpressionPtr expression;       ///< null for a star
    std::string alias;              ///< empty if not given
    std::optional<ObjectName> star; ///< set for * (no parts) and t.*
    std::string variable;           ///< @x = expression assigns, empty otherwise
};

struct TableSource;
using TableSourcePtr = std::unique_ptr<TableSource>;

struct NamedTable
{
    ObjectName name;
    bool readUncommitted = false; ///< WITH (NOLOCK)
};

struct DerivedTable
{
    SelectPtr query;
};

/// (VALUES (1, 2), (3, 4)) AS t (a, b)
struct ValuesTable
{
    std::vector<std::vector<ExpressionPtr>> rows;
};

struct FunctionTable
{
    ObjectName name;
    std::vector<ExpressionPtr> arguments;
};

enum class JoinKind { Inner, Left, Right, Full, Cross, CrossApply, OuterApply };
struct Join
{
    JoinKind kind;
    TableSourcePtr left, right;
    ExpressionPtr condition; ///< null for a cross join
};

struct TableSource
{
    int line = 1;
    std::string alias;                ///< empty if not given
    std::vector<std::string> columns; ///< names given after the alias
    std::variant<NamedTable, DerivedTable, ValuesTable, FunctionTable, Join> node;
};

struct Top
{
    ExpressionPtr count;
    bool percent = false;
    bool withTies = false;
};

/// SELECT ... FROM ... WHERE ... GROUP BY ... HAVING ...
struct QuerySpecification
{
    bool distinct = false;
    std::optional<Top> top;
    std::vector<SelectItem> items;
    std::optional<ObjectName> into;
    std::vector<TableSourcePtr> from; ///< separated by commas
    ExpressionPtr where, having;      ///< may be null
    std::vector<ExpressionPtr> groupBy;
};

enum class SetOperator { Union, UnionAll, Except, Intersect };

/// A query, or two combined queries.
struct Query
{
    int line = 1;
    QuerySpecification specification;
    std::optional<SetOperator> op; ///< if set: left op right, and specification is unused
    std::unique_ptr<Query> left, right;
};

struct ComputeItem
{
    std::string function; ///< upper case
    ExpressionPtr argument;
};

/// COMPUTE SUM(a), COUNT(b) BY c
struct Compute
{
    std::vector<ComputeItem> items;
    std::vector<ExpressionPtr> by;
};

/// name (columns) AS (query) of a WITH clause.
struct CommonTable
{
    std::string name;
    std::vector<std::string> columns;
    SelectPtr query;
};

/// FOR XML PATH('row'), ROOT('root'), TYPE
struct ForXml
{
    std::string rowTag = "row";
    std::string root; ///< empty if there is none
    bool typed = false;
    bool attributes = false; ///< FOR XML RAW: columns become attributes
};

struct Select
{
    std::vector<CommonTable> with;
    std::optional<ForXml> forXml;
    std::optional<int> maxRecursion; ///< OPTION (MAXRECURSION n)
    std::unique_ptr<Query> query;
    std::vector<OrderItem> orderBy;
    ExpressionPtr offset, fetch; ///< OFFSET n ROWS FETCH NEXT m ROWS ONLY; may be null
    std::vector<Compute> compute;
};

/// SELECT * FROM table
Select selectAll(const ObjectName &table);

} // namespace SampleServer::Ast
