#include "Engine/Functions/FunctionResults.h"
#include "Engine/Functions/FunctionTable.h"

// Functions for the caught error and the current transaction.
namespace SampleServer::Functions {

using namespace Bound;

namespace {

template <auto Member>
Value caughtNumber(EvaluationContext &context, const Operation &, Arguments)
{
    if (!context.caughtError)
        return {};
    return static_cast<std::int64_t>((*context.caughtError).*Member);
}

Value errorMessage(EvaluationContext &context, const Operation &, Arguments)
{
    return context.caughtError ? Value(context.caughtError->text) : Value();
}

Value errorProcedure(EvaluationContext &context, const Operation &, Arguments)
{
    const bool known = context.caughtError && !context.caughtError->procedure.empty();
    return known ? Value(context.caughtError->procedure) : Value();
}

Value transactionState(EvaluationContext &context, const Operation &, Arguments)
{
    if (context.isTransactionDoomed)
        return std::int64_t{-1};
    return std::int64_t{context.transactionCount > 0};
}

constexpr Builtin sessionBuiltins[] = {
    {"ERROR_LINE", 0, 0, "a", intResult, caughtNumber<&ServerMessage::line>},
    {"ERROR_MESSAGE", 0, 0, "a", messageResult, errorMessage},
    {"ERROR_NUMBER", 0, 0, "a", intResult, caughtNumber<&ServerMessage::number>},
    {"ERROR_PROCEDURE", 0, 0, "a", nameResult, errorProcedure},
    {"ERROR_SEVERITY", 0, 0, "a", intResult, caughtNumber<&ServerMessage::severity>},
    {"ERROR_STATE", 0, 0, "a", intResult, caughtNumber<&ServerMessage::state>},
    {"XACT_STATE", 0, 0, "a", smallIntResult, transactionState},
};

} // namespace

std::span<const Builtin> sessionFunctions()
{
    return sessionBuiltins;
}

} // namespace SampleServer::Functions
