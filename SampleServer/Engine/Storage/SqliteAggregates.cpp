#include "Engine/Errors.h"
#include "Engine/Functions/XmlRows.h"
#include "Engine/Storage/SqliteCallback.h"
#include "Engine/Storage/SqliteCodec.h"
#include "Types/Collation.h"
#include "Types/DecimalMath.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

// Aggregate functions that SQLite lacks or computes differently.
namespace SampleServer {

namespace {

// Sums. SQLite passes zeroed memory to the first step, aligned to only eight bytes, so the 128-bit sum is
// stored in halves.

struct SumState
{
    std::uint64_t low;
    std::uint64_t high;
    double realSum;
    std::int64_t count;

    Int128 sum() const { return static_cast<Int128>(static_cast<UInt128>(high) << 64 | low); }
    void setSum(Int128 value)
    {
        low = static_cast<std::uint64_t>(value);
        high = static_cast<std::uint64_t>(static_cast<UInt128>(value) >> 64);
    }
};

Int128 wholeNumber(sqlite3_value *value)
{
    return sqlite3_value_type(value) == SQLITE_BLOB
               ? numberFromSortableBytes(static_cast<const std::uint8_t *>(sqlite3_value_blob(value)))
               : Int128(sqlite3_value_int64(value));
}

void addWhole(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    auto *state = static_cast<SumState *>(sqlite3_aggregate_context(context, sizeof(SumState)));
    if (!state)
        return sqlite3_result_error_nomem(context);
    ++state->count;
    const Int128 sum = state->sum() + wholeNumber(arguments[0]);
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
    ++state->count;
    state->realSum += sqlite3_value_double(arguments[0]);
}

const SumState *finishedState(sqlite3_context *context)
{
    const auto *state = static_cast<const SumState *>(sqlite3_aggregate_context(context, 0));
    return state && state->count > 0 ? state : nullptr;
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

// Removing rows, for moving windows.

void removeWhole(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    auto *state = static_cast<SumState *>(sqlite3_aggregate_context(context, sizeof(SumState)));
    if (!state)
        return sqlite3_result_error_nomem(context);
    --state->count;
    state->setSum(state->sum() - wholeNumber(arguments[0]));
}

void removeReal(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    auto *state = static_cast<SumState *>(sqlite3_aggregate_context(context, sizeof(SumState)));
    if (!state)
        return sqlite3_result_error_nomem(context);
    --state->count;
    state->realSum -= sqlite3_value_double(arguments[0]);
}

// Variance and standard deviation, by Welford's method.

struct SpreadState
{
    std::int64_t count;
    double mean;
    double squares; ///< the sum of the squared distances from the mean
};

void addSpread(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    auto *state = static_cast<SpreadState *>(sqlite3_aggregate_context(context, sizeof(SpreadState)));
    if (!state)
        return sqlite3_result_error_nomem(context);
    const double value = sqlite3_value_double(arguments[0]), distance = value - state->mean;
    state->mean += distance / static_cast<double>(++state->count);
    state->squares += distance * (value - state->mean);
}

template <bool sample, bool root>
void finishSpread(sqlite3_context *context)
{
    const auto *state = static_cast<const SpreadState *>(sqlite3_aggregate_context(context, 0));
    const std::int64_t divisor = state ? state->count - (sample ? 1 : 0) : 0;
    if (divisor < 1)
        return sqlite3_result_null(context);
    const double variance = state->squares / static_cast<double>(divisor);
    sqlite3_result_double(context, root ? std::sqrt(variance) : variance);
}

/// An aggregate whose state has a destructor: SQLite keeps a pointer to it.
template <typename State>
State &stateOf(sqlite3_context *context)
{
    auto **place = static_cast<State **>(sqlite3_aggregate_context(context, sizeof(State *)));
    if (!place)
        throw Errors::outOfMemory();
    if (!*place)
        *place = new State();
    return **place;
}

template <typename State>
std::unique_ptr<State> finishedStateOf(sqlite3_context *context)
{
    auto **place = static_cast<State **>(sqlite3_aggregate_context(context, 0));
    return std::unique_ptr<State>(place ? std::exchange(*place, nullptr) : nullptr);
}

// tsql_string_agg(text, separator, keys...): texts in the order of their keys; a key is followed by 1 when it
// sorts downwards.

struct KeyDeleter
{
    void operator()(sqlite3_value *value) const { sqlite3_value_free(value); }
};
using KeptValue = std::unique_ptr<sqlite3_value, KeyDeleter>;

struct TextList
{
    struct Item
    {
        std::string text;
        std::vector<KeptValue> keys;
    };
    std::vector<Item> items;
    std::vector<bool> descending;
    std::string separator;
};

std::string_view viewOf(sqlite3_value *value)
{
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
    return {text ? text : "", static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

int compareKeys(sqlite3_value *left, sqlite3_value *right)
{
    const int leftType = sqlite3_value_type(left), rightType = sqlite3_value_type(right);
    if (leftType == SQLITE_NULL || rightType == SQLITE_NULL)
        return (rightType == SQLITE_NULL) - (leftType == SQLITE_NULL);
    if (leftType == SQLITE_TEXT)
        return compareText(viewOf(left), viewOf(right));
    if (leftType == SQLITE_BLOB)
        return viewOf(left).compare(viewOf(right));
    if (leftType == SQLITE_INTEGER) {
        const auto l = sqlite3_value_int64(left), r = sqlite3_value_int64(right);
        return (l > r) - (l < r);
    }
    const double l = sqlite3_value_double(left), r = sqlite3_value_double(right);
    return (l > r) - (l < r);
}

void addText(sqlite3_context *context, int count, sqlite3_value **arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    guarded(context, [&] {
        auto &list = stateOf<TextList>(context);
        list.separator = viewOf(arguments[1]);
        auto &item = list.items.emplace_back();
        item.text = viewOf(arguments[0]);
        list.descending.clear();
        for (int i = 2; i + 1 < count; i += 2) {
            item.keys.emplace_back(sqlite3_value_dup(arguments[i]));
            list.descending.push_back(sqlite3_value_int(arguments[i + 1]) != 0);
        }
    });
}

void finishText(sqlite3_context *context)
{
    const auto list = finishedStateOf<TextList>(context);
    if (!list)
        return sqlite3_result_null(context);
    std::stable_sort(list->items.begin(), list->items.end(), [&](const auto &left, const auto &right) {
        for (std::size_t i = 0; i < left.keys.size(); ++i)
            if (const int order = compareKeys(left.keys[i].get(), right.keys[i].get()))
                return list->descending[i] ? order > 0 : order < 0;
        return false;
    });
    std::string text;
    for (const auto &item : list->items)
        text += (&item == &list->items.front() ? std::string() : list->separator) + item.text;
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

// tsql_xml(shape, columns...)

struct XmlState
{
    const XmlShape *shape = nullptr;
    std::string text;
};

void addXmlRow(sqlite3_context *context, int count, sqlite3_value **arguments)
{
    guarded(context, [&] {
        auto &state = stateOf<XmlState>(context);
        state.shape = static_cast<const XmlShape *>(sqlite3_value_pointer(arguments[0], "xml-shape"));
        std::vector<Value> row(static_cast<std::size_t>(count - 1));
        for (std::size_t i = 0; i < row.size(); ++i)
            readArgument(arguments[i + 1], state.shape->columns[i].type, row[i]);
        appendXmlRow(state.text, *state.shape, row);
    });
}

void finishXml(sqlite3_context *context)
{
    const auto state = finishedStateOf<XmlState>(context);
    if (!state || !state->shape)
        return sqlite3_result_null(context);
    const std::string &root = state->shape->root;
    const std::string text = root.empty() ? state->text : '<' + root + '>' + state->text + "</" + root + '>';
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

} // namespace

void registerAggregates(sqlite3 *db, SqliteConnection &connection)
{
    const auto aggregate = [&](const char *name, int count, auto step, auto finish) {
        sqlite3_create_function_v2(db, name, count, SQLITE_UTF8, &connection, nullptr, step, finish, nullptr);
    };
    const auto window = [&](const char *name, auto step, auto finish, auto inverse) {
        sqlite3_create_window_function(db, name, 1, SQLITE_UTF8, &connection, step, finish, finish, inverse,
                                       nullptr);
    };
    window("tsql_sum_int", addWhole, finishInt, removeWhole);
    window("tsql_sum_bigint", addWhole, finishBigInt, removeWhole);
    window("tsql_sum_money", addWhole, finishMoney, removeWhole);
    window("tsql_sum_decimal", addWhole, finishDecimal, removeWhole);
    window("tsql_sum_float", addReal, finishReal, removeReal);
    aggregate("tsql_stdev", 1, addSpread, finishSpread<true, true>);
    aggregate("tsql_stdevp", 1, addSpread, finishSpread<false, true>);
    aggregate("tsql_var", 1, addSpread, finishSpread<true, false>);
    aggregate("tsql_varp", 1, addSpread, finishSpread<false, false>);
    aggregate("tsql_string_agg", -1, addText, finishText);
    aggregate("tsql_xml", -1, addXmlRow, finishXml);
}

} // namespace SampleServer
