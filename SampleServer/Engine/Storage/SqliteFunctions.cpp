#include "Engine/Errors.h"
#include "Engine/Storage/SqliteCallback.h"
#include "Engine/Storage/SqliteCodec.h"
#include "Engine/Storage/SqliteConnection.h"
#include "Types/Collation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

namespace SampleServer {

namespace {

/// Computes a call and its nested calls. The leaves are in the order in which the emitter visited them.
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

/// tsql(call, leaves...): SQLite calls all computations of the engine through this function.
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

// tsql_single(x): the value of a scalar subquery; a second row is error 512.

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

void ceiling(sqlite3_context *context, int, sqlite3_value **arguments)
{
    sqlite3_result_int64(context,
                         static_cast<sqlite3_int64>(std::ceil(sqlite3_value_double(arguments[0]) - 1e-9)));
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
    aggregate("tsql_single", keepSingle, finishSingle);
    registerAggregates(db, connection);
    sqlite3_create_function_v2(db, "tsql_ceiling", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, &connection,
                               ceiling, nullptr, nullptr, nullptr);
    sqlite3_create_collation_v2(db, "tsql_text", SQLITE_UTF8, nullptr, collateText, nullptr);
    sqlite3_create_collation_v2(db, "tsql_offset", SQLITE_UTF8, nullptr, collateOffset, nullptr);
}

} // namespace SampleServer
