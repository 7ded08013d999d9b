#include "Engine/Errors.h"
#include "Engine/SqliteCodec.h"
#include "Engine/SqliteConnection.h"
#include "Types/Collation.h"
#include "Types/DecimalMath.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <vector>

namespace SampleServer {

namespace {

SqliteConnection &connectionOf(sqlite3_context *context)
{
    return *static_cast<SqliteConnection *>(sqlite3_user_data(context));
}

/// Runs `work`, whose exceptions must not pass through SQLite.
template <typename Work>
void guarded(sqlite3_context *context, Work work)
{
    try {
        work();
    } catch (...) {
        connectionOf(context).fail(std::current_exception());
        sqlite3_result_error(context, "see the pending exception", -1);
    }
}

/// Computes a call and the calls within it. The leaves come in the order in which the emitter met them.
class CallEvaluation
{
public:
    CallEvaluation(EvaluationContext &context, std::span<sqlite3_value *> leaves)
        : m_context(context)
        , m_leaves(leaves)
    {
    }

    Value value(const Bound::Call &call)
    {
        const std::size_t size = call.arguments.size();
        std::array<Value, 4> few;
        std::vector<Value> many(size > few.size() ? size : 0);
        const std::span<Value> values(many.empty() ? few.data() : many.data(), size);
        bool anyNull = false;
        for (std::size_t i = 0; i < size; ++i) {
            read(call, *call.arguments[i], values[i]);
            anyNull = anyNull || isNull(values[i]);
        }
        if (anyNull && call.operation.nullPropagates)
            return {};
        return call.operation.function(m_context, call.operation, values);
    }

private:
    void read(const Bound::Call &call, const Bound::Expression &argument, Value &target)
    {
        if (Bound::isLeaf(call, argument))
            readArgument(m_leaves[m_next++], argument.type, target);
        else if (const Value *constant = Bound::constantValue(argument))
            target = *constant;
        else
            target = value(std::get<Bound::Call>(argument.node));
    }

    EvaluationContext &m_context;
    std::span<sqlite3_value *> m_leaves;
    std::size_t m_next = 0;
};

/// tsql(call, leaves...): the way from SQLite into every computation of the engine.
void callOperation(sqlite3_context *context, int count, sqlite3_value **arguments)
{
    guarded(context, [&] {
        const auto *call = static_cast<const Bound::Call *>(sqlite3_value_pointer(arguments[0], "tsql-call"));
        if (!call)
            throw EngineError(40001, 16, 1, "The sample server lost an operation inside SQLite.");
        CallEvaluation evaluation(connectionOf(context).context(),
                                  {arguments + 1, static_cast<std::size_t>(count - 1)});
        returnValue(context, evaluation.value(*call), call->operation.result);
    });
}

// Sums. SQLite hands zeroed memory to the first step, aligned to eight bytes only: so the 128-bit sum is kept
// in halves.

struct SumState
{
    std::uint64_t low;
    std::uint64_t high;
    double realSum;
    bool any;

    Int128 sum() const { return static_cast<Int128>(static_cast<UInt128>(high) << 64 | low); }
    void setSum(Int128 value)
    {
        low = static_cast<std::uint64_t>(value);
        high = static_cast<std::uint64_t>(static_cast<UInt128>(value) >> 64);
    }
};

void addWhole(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    auto *state = static_cast<SumState *>(sqlite3_aggregate_context(context, sizeof(SumState)));
    if (!state)
        return sqlite3_result_error_nomem(context);
    state->any = true;
    const Int128 addend =
        sqlite3_value_type(arguments[0]) == SQLITE_BLOB
            ? numberFromSortableBytes(static_cast<const std::uint8_t *>(sqlite3_value_blob(arguments[0])))
            : Int128(sqlite3_value_int64(arguments[0]));
    const Int128 sum = state->sum() + addend;
    state->setSum(sum);
    const auto limit = static_cast<Int128>(powerOfTen(Decimal::MaxDigits));
    if (sum >= limit || sum <= -limit)
        guarded(context, [] { throw Errors::overflow("expression", "numeric", 2); });
}

void addReal(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    auto *state = static_cast<SumState *>(sqlite3_aggregate_context(context, sizeof(SumState)));
    if (!state)
        return sqlite3_result_error_nomem(context);
    state->any = true;
    state->realSum += sqlite3_value_double(arguments[0]);
}

const SumState *finishedState(sqlite3_context *context)
{
    const auto *state = static_cast<const SumState *>(sqlite3_aggregate_context(context, 0));
    return state && state->any ? state : nullptr;
}

template <std::int64_t least, std::int64_t greatest>
void finishWhole(sqlite3_context *context, const char *typeName)
{
    const SumState *state = finishedState(context);
    if (!state)
        return sqlite3_result_null(context);
    guarded(context, [&] {
        if (state->sum() < least || state->sum() > greatest)
            throw Errors::overflow("expression", typeName, 2);
        sqlite3_result_int64(context, static_cast<std::int64_t>(state->sum()));
    });
}

void finishInt(sqlite3_context *context)
{
    finishWhole<std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()>(context,
                                                                                                    "int");
}

void finishBigInt(sqlite3_context *context)
{
    finishWhole<std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()>(context,
                                                                                                    "bigint");
}

void finishMoney(sqlite3_context *context)
{
    finishWhole<std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()>(context,
                                                                                                    "money");
}

void finishDecimal(sqlite3_context *context)
{
    const SumState *state = finishedState(context);
    if (!state)
        return sqlite3_result_null(context);
    const auto bytes = sortableBytes(state->sum());
    sqlite3_result_blob(context, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
}

void finishReal(sqlite3_context *context)
{
    if (const SumState *state = finishedState(context))
        sqlite3_result_double(context, state->realSum);
}

// tsql_single(x): the one value of a scalar subquery; a second row is error 512.

struct SingleState
{
    sqlite3_value *value;
};

void keepSingle(sqlite3_context *context, int, sqlite3_value **arguments)
{
    auto *state = static_cast<SingleState *>(sqlite3_aggregate_context(context, sizeof(SingleState)));
    if (!state)
        return sqlite3_result_error_nomem(context);
    if (!state->value) {
        state->value = sqlite3_value_dup(arguments[0]);
        return;
    }
    guarded(context, [] {
        throw EngineError(
            512, 16, 1,
            "Subquery returned more than 1 value. This is not permitted when the subquery follows =, !=, "
            "<, <= , >, >= or when the subquery is used as an expression.");
    });
}

void finishSingle(sqlite3_context *context)
{
    auto *state = static_cast<SingleState *>(sqlite3_aggregate_context(context, 0));
    if (!state || !state->value)
        return sqlite3_result_null(context);
    sqlite3_result_value(context, state->value);
    sqlite3_value_free(state->value);
    state->value = nullptr;
}

int collateText(void *, int leftSize, const void *left, int rightSize, const void *right)
{
    return compareText({static_cast<const char *>(left), static_cast<std::size_t>(leftSize)},
                       {static_cast<const char *>(right), static_cast<std::size_t>(rightSize)});
}

/// datetimeoffset values are equal when their UTC parts, the first 16 characters, are.
int collateOffset(void *, int leftSize, const void *left, int rightSize, const void *right)
{
    const std::string_view a(static_cast<const char *>(left),
                             static_cast<std::size_t>(std::min(leftSize, 16)));
    const std::string_view b(static_cast<const char *>(right),
                             static_cast<std::size_t>(std::min(rightSize, 16)));
    return a.compare(b);
}

} // namespace

void registerFunctions(sqlite3 *db, SqliteConnection &connection)
{
    const auto aggregate = [&](const char *name, auto step, auto finish) {
        sqlite3_create_function_v2(db, name, 1, SQLITE_UTF8, &connection, nullptr, step, finish, nullptr);
    };
    sqlite3_create_function_v2(db, "tsql", -1, SQLITE_UTF8, &connection, callOperation, nullptr, nullptr,
                               nullptr);
    aggregate("tsql_sum_int", addWhole, finishInt);
    aggregate("tsql_sum_bigint", addWhole, finishBigInt);
    aggregate("tsql_sum_money", addWhole, finishMoney);
    aggregate("tsql_sum_decimal", addWhole, finishDecimal);
    aggregate("tsql_sum_float", addReal, finishReal);
    aggregate("tsql_single", keepSingle, finishSingle);
    sqlite3_create_collation_v2(db, "tsql_text", SQLITE_UTF8, nullptr, collateText, nullptr);
    sqlite3_create_collation_v2(db, "tsql_offset", SQLITE_UTF8, nullptr, collateOffset, nullptr);
}

} // namespace SampleServer
