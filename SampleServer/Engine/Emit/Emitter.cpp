#include "Engine/Emit/Emitter.h"
#include "Engine/Emit/QueryEmitter.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

using namespace Bound;

std::string collationOf(const SqlType &type)
{
    if (isText(type.id))
        return " COLLATE tsql_text";
    return type.id == TypeId::DateTimeOffset ? " COLLATE tsql_offset" : "";
}

namespace {

/// Whether two calls compute the same result if their leaves are equal.
bool sameCall(const Call &left, const Call &right)
{
    if (left.operation != right.operation || left.arguments.size() != right.arguments.size())
        return false;
    for (std::size_t i = 0; i < left.arguments.size(); ++i) {
        const Expression &l = *left.arguments[i], &r = *right.arguments[i];
        const auto *leftCall = std::get_if<Call>(&l.node), *rightCall = std::get_if<Call>(&r.node);
        const Value *leftValue = constantValue(l), *rightValue = constantValue(r);
        if (!leftCall != !rightCall || !leftValue != !rightValue)
            return false;
        if ((leftCall && !sameCall(*leftCall, *rightCall)) || (leftValue && *leftValue != *rightValue))
            return false;
    }
    return true;
}

} // namespace

bool operator==(const EmittedParameter &left, const EmittedParameter &right)
{
    if (left.constant && right.constant)
        return left.type == right.type && left.constant->value == right.constant->value;
    if (left.call && right.call)
        return sameCall(*left.call, *right.call);
    return !left.constant && !right.constant && !left.call && !right.call &&
           left.provider == right.provider && left.shape == right.shape && left.argument == right.argument;
}

Emitted emitQuery(const Query &query)
{
    StatementText text;
    QueryEmitter(text).query(query);
    return text.take();
}

Emitted emitLateral(const Query &query, const std::set<std::string> &outside,
                    std::vector<ExpressionPtr> &arguments)
{
    StatementText text(outside, arguments);
    QueryEmitter(text).query(query);
    return text.take();
}

Emitted emitExpression(const Expression &expression)
{
    StatementText text;
    QueryEmitter(text).expressions().write(expression);
    return text.take();
}

Emitted emitSelection(const std::vector<std::string> &plainColumns,
                      const std::vector<ExpressionPtr> &expressions, const std::vector<SourcePtr> &from,
                      const ExpressionPtr &where, const ExpressionPtr &limit)
{
    StatementText text;
    QueryEmitter emitter(text);
    emitter.selection(plainColumns, expressions);
    emitter.fromAndWhere(from, where);
    emitter.limit(limit);
    return text.take();
}

} // namespace SampleServer
