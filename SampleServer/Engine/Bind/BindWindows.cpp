#include "Engine/Bind/Binder.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Functions.h"
#include "Engine/ScopedValue.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

// OVER (...): ranking, the rows before and after, and aggregates over a window.
namespace SampleServer {

using namespace Bound;

namespace {

ExpressionPtr windowExpression(WindowCall call, const SqlType &type, bool nullable)
{
    return std::make_shared<const Expression>(Expression{type, nullable, std::move(call)});
}

EngineError needsOrder(const std::string &name)
{
    return {4112, 15, 1, "The function '" + name + "' must have an OVER clause with ORDER BY.",
            ErrorEffect::EndsBatch};
}

struct RankingFunction
{
    std::string_view name;
    SqlType type;
    std::size_t arguments;
};
constexpr RankingFunction ranking[] = {{"ROW_NUMBER", BigIntType, 0},  {"RANK", BigIntType, 0},
                                       {"DENSE_RANK", BigIntType, 0},  {"NTILE", BigIntType, 1},
                                       {"PERCENT_RANK", FloatType, 0}, {"CUME_DIST", FloatType, 0}};

} // namespace

WindowCall Binder::bindWindow(const Ast::Window &window, const std::string &name)
{
    if (!m_scope || !m_scope->allowsWindows)
        throw EngineError(4108, 15, 1,
                          "Windowed functions can only appear in the SELECT or ORDER BY clauses.",
                          ErrorEffect::EndsBatch);
    if (m_scope->inWindow)
        throw EngineError(4109, 15, 1,
                          "Windowed functions cannot be used in the context of another windowed function or "
                          "aggregate.",
                          ErrorEffect::EndsBatch);
    const bool isRange = window.frame.starts_with("RANGE");
    if (isRange && window.frame.find_first_of("0123456789") != std::string::npos)
        throw EngineError(4194, 16, 1,
                          "RANGE is only supported with UNBOUNDED and CURRENT ROW window frame delimiters.",
                          ErrorEffect::EndsBatch);
    WindowCall call;
    for (const auto &key : window.partition)
        call.partition.push_back(bind(*key));
    for (const auto &item : window.order) {
        if (std::holds_alternative<Ast::Literal>(item.expression->node))
            throw EngineError(5308, 16, 1,
                              "Windowed functions, aggregates and NEXT VALUE FOR functions do not support "
                              "integer indices as ORDER BY clause expressions.",
                              ErrorEffect::EndsBatch);
        auto key = bind(*item.expression);
        if (!constantValue(*key)) // ORDER BY (SELECT NULL): no order at all
            call.order.push_back({std::move(key), 0, item.descending});
    }
    call.frame = window.frame;
    if (!call.frame.empty() && window.order.empty())
        throw EngineError(10756, 15, 1, "Window frame with ROWS or RANGE must have an ORDER BY clause.",
                          ErrorEffect::EndsBatch);
    call.function = toLower(name);
    return call;
}

ExpressionPtr Binder::window(const Ast::FunctionCall &node, const std::string &name)
{
    WindowCall over = bindWindow(*node.over, name);
    const ScopedValue<bool> inside(m_scope->inWindow, true);
    for (const RankingFunction &function : ranking) {
        if (function.name != name)
            continue;
        if (node.over->order.empty())
            throw needsOrder(name);
        if (node.arguments.size() != function.arguments)
            throw Errors::argumentCount(toLower(name), static_cast<int>(function.arguments));
        for (const auto &argument : node.arguments)
            over.arguments.push_back(bindValueAs(*argument, BigIntType));
        if (const Value *count = over.arguments.empty() ? nullptr : constantValue(*over.arguments[0]))
            if (isNull(*count) || std::get<std::int64_t>(*count) <= 0)
                throw EngineError(
                    4116, 16, 1,
                    "The function 'ntile' takes only a positive int or bigint expression as its "
                    "input.");
        return windowExpression(std::move(over), function.type, true);
    }
    const bool offset = name == "LAG" || name == "LEAD", edge = name == "FIRST_VALUE" || name == "LAST_VALUE";
    if (!offset && !edge)
        return windowAggregate(node, name, over);
    if (node.over->order.empty())
        throw needsOrder(name);
    if (node.arguments.empty() || node.arguments.size() > (offset ? 3u : 1u))
        throw Errors::argumentCount(toLower(name), 1);
    over.arguments.push_back(bind(*node.arguments[0]));
    const SqlType type = over.arguments[0]->type;
    if (node.arguments.size() > 1)
        over.arguments.push_back(bindValueAs(*node.arguments[1], BigIntType));
    if (node.arguments.size() > 2)
        over.arguments.push_back(bindValueAs(*node.arguments[2], type));
    return windowExpression(std::move(over), type, true);
}

ExpressionPtr Binder::windowAggregate(const Ast::FunctionCall &node, const std::string &name,
                                      const WindowCall &over)
{
    if (node.distinct)
        throw EngineError(10759, 15, 1, "Use of DISTINCT is not allowed with the OVER clause.",
                          ErrorEffect::EndsBatch);
    WindowCall result = over;
    const bool isCount = name == "COUNT" || name == "COUNT_BIG";
    if (isCount) {
        result.function = "count";
        if (!node.star)
            result.arguments = {bind(*node.arguments.at(0))};
        return windowExpression(std::move(result), name == "COUNT" ? IntType : BigIntType, false);
    }
    if (node.star || node.arguments.size() != 1)
        throw Errors::argumentCount(toLower(name), 1);
    auto argument = bind(*node.arguments[0]);
    if (name == "MIN" || name == "MAX") {
        result.arguments = {argument};
        return windowExpression(std::move(result), argument->type, true);
    }
    if (name != "SUM" && name != "AVG" && Functions::isBuiltin(name))
        throw EngineError(4113, 16, 1,
                          "The function '" + name +
                              "' is not a valid windowing function, and cannot be used with the OVER clause.",
                          ErrorEffect::EndsBatch);
    if (name != "SUM" && name != "AVG")
        throw Errors::notSupported("the function " + name + " with OVER");
    SqlType sum = sumType(argument->type, name);
    if (name == "AVG" && sum.id == TypeId::Int) // summed without overflow, averaged as int
        sum = BigIntType;
    result.function = Functions::sumFunction(sum);
    result.arguments = {argument};
    auto total = windowExpression(result, sum, true);
    if (name == "SUM")
        return total;
    result.function = "count";
    Operation operation;
    operation.function = Functions::average;
    operation.result = averageType(argument->type);
    return call(std::move(operation),
                {std::move(total), windowExpression(std::move(result), BigIntType, false)});
}

} // namespace SampleServer
