#pragma once

#include "Types/DecimalMath.h"
#include "Types/SqlType.h"
#include "Types/Value.h"

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// Syntax trees of expressions, before names and types are resolved.
namespace SampleServer::Ast {

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;
struct Select;
using SelectPtr = std::unique_ptr<Select>;

/// A name of one to four parts; omitted parts ("db..t") are empty.
struct ObjectName
{
    std::vector<std::string> parts;
    bool isVariable =
        false; ///< @name: a table variable. [@name] is a table, type or procedure like any other

    /// Whether a table of this name is local to the session: a table variable, or #name but not ##name.
    bool isTemporaryTable() const
    {
        return isVariable || (object().starts_with('#') && !object().starts_with("##"));
    }
    const std::string &object() const { return parts.back(); }
    /// The part `fromEnd` positions before the object (1: schema, 2: database); empty if there is none.
    std::string qualifier(std::size_t fromEnd) const
    {
        return parts.size() > fromEnd ? parts[parts.size() - 1 - fromEnd] : std::string();
    }
    /// The parts joined with dots, as in error texts.
    std::string toString() const;
};

/// A data type as written: varchar(10), decimal(9, 2), nvarchar(max).
struct TypeName
{
    ObjectName name;
    std::vector<int> arguments; ///< SqlType::Max for max
};

struct OrderItem
{
    ExpressionPtr expression;
    bool descending = false;
};

/// OVER (PARTITION BY ... ORDER BY ... ROWS ...)
struct Window
{
    std::vector<ExpressionPtr> partition;
    std::vector<OrderItem> order;
    std::string frame; ///< in upper case, in SQLite's syntax too; empty for the default
};

struct Literal
{
    SqlType type;
    Value value;
};

struct ColumnReference
{
    ObjectName name;
};

struct VariableReference
{
    std::string name; ///< with its @
};

struct GlobalVariableReference
{
    std::string name; ///< with its @@
};

enum class UnaryOperator { Plus, Minus, BitNot };
struct Unary
{
    UnaryOperator op;
    ExpressionPtr operand;
};

struct Arithmetic
{
    ArithmeticOperator op;
    ExpressionPtr left, right;
};

enum class BitOperator { And, Or, Xor };
struct Bitwise
{
    BitOperator op;
    ExpressionPtr left, right;
};

enum class ComparisonOperator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };
struct Comparison
{
    ComparisonOperator op;
    ExpressionPtr left, right;
};

/// left op ANY/ALL (query).
struct QuantifiedComparison
{
    ComparisonOperator op;
    bool all;
    ExpressionPtr left;
    SelectPtr query;
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

struct Between
{
    ExpressionPtr operand, low, high;
    bool negated;
};

struct InList
{
    ExpressionPtr operand;
    std::vector<ExpressionPtr> list;
    bool negated;
};

struct InQuery
{
    ExpressionPtr operand;
    SelectPtr query;
    bool negated;
};

struct Like
{
    ExpressionPtr operand, pattern;
    ExpressionPtr escape; ///< may be null
    bool negated;
};

struct Exists
{
    SelectPtr query;
};

struct ScalarQuery
{
    SelectPtr query;
};

struct Case
{
    struct Branch
    {
        ExpressionPtr when, then;
    };
    ExpressionPtr input; ///< null for the searched form
    std::vector<Branch> branches;
    ExpressionPtr otherwise; ///< may be null
};

/// CAST, CONVERT, TRY_CAST and TRY_CONVERT.
struct Cast
{
    ExpressionPtr operand;
    TypeName type;
    ExpressionPtr style; ///< may be null
    bool isTry = false;
};

struct FunctionCall
{
    ObjectName name;
    std::vector<ExpressionPtr> arguments;
    bool distinct = false; ///< COUNT(DISTINCT x)
    bool star = false;     ///< COUNT(*)
    std::optional<Window> over;
    std::vector<OrderItem> withinGroup; ///< WITHIN GROUP (ORDER BY ...)
};

/// xml.value('path', 'type')
struct MethodCall
{
    ExpressionPtr operand;
    std::string method;
    std::string path;
    TypeName type;
};

struct Expression
{
    int line = 1;
    int depth = 1; ///< nesting depth of the expression, including itself
    std::variant<Literal, ColumnReference, VariableReference, GlobalVariableReference, Unary, Arithmetic,
                 Bitwise, Comparison, QuantifiedComparison, Logical, Not, IsNull, Between, InList, InQuery,
                 Like, Exists, ScalarQuery, Case, Cast, FunctionCall, MethodCall>
        node;
};

/// Whether the expression is a condition (true, false or unknown), which is not a value in T-SQL.
bool isCondition(const Expression &expression);

} // namespace SampleServer::Ast
