#include "Engine/EngineError.h"
#include "Engine/Storage/RowProvider.h"
#include "Engine/Storage/SqliteConnection.h"

#include <sqlite3.h>

// Makes the rows of a RowProvider available to SQLite as a table-valued function.
namespace SampleServer {

namespace {

constexpr int ProviderColumn = RowProvider::MaxColumns; ///< the first hidden one; the arguments follow

struct ProviderTable : sqlite3_vtab
{
    SqliteConnection *connection = nullptr;
};

struct ProviderCursor : sqlite3_vtab_cursor
{
    std::unique_ptr<RowCursor> rows;
    const RowProvider *provider = nullptr;
    std::int64_t number = 0;
};

/// Runs `work` and catches its exceptions, which must not pass through SQLite.
template <typename Work>
int guarded(sqlite3_vtab_cursor *cursor, Work work)
{
    try {
        work(*static_cast<ProviderCursor *>(cursor));
        return SQLITE_OK;
    } catch (...) {
        static_cast<ProviderTable *>(cursor->pVtab)->connection->fail(std::current_exception());
        return SQLITE_ERROR;
    }
}

int connect(sqlite3 *db, void *connection, int, const char *const *, sqlite3_vtab **table, char **)
{
    std::string declaration = "CREATE TABLE x(";
    for (int i = 1; i <= RowProvider::MaxColumns; ++i)
        declaration += 'c' + std::to_string(i) + ", ";
    declaration += "provider HIDDEN";
    for (int i = 1; i <= RowProvider::MaxArguments; ++i)
        declaration += ", a" + std::to_string(i) + " HIDDEN";
    const int code = sqlite3_declare_vtab(db, (declaration + ')').c_str());
    if (code == SQLITE_OK) {
        auto *made = new ProviderTable{};
        made->connection = static_cast<SqliteConnection *>(connection);
        *table = made;
    }
    return code;
}

int disconnect(sqlite3_vtab *table)
{
    delete static_cast<ProviderTable *>(table);
    return SQLITE_OK;
}

/// Requests the provider and its arguments; idxNum is their number.
int bestIndex(sqlite3_vtab *, sqlite3_index_info *info)
{
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto &constraint = info->aConstraint[i];
        if (constraint.iColumn < ProviderColumn || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ)
            continue;
        if (!constraint.usable)
            return SQLITE_CONSTRAINT;
        info->aConstraintUsage[i].argvIndex = constraint.iColumn - ProviderColumn + 1;
        info->aConstraintUsage[i].omit = 1;
        ++info->idxNum;
    }
    info->estimatedRows = 1000;
    info->estimatedCost = 1000;
    return SQLITE_OK;
}

/// The same, plus the value of the first compared column; idxStr contains that column.
int bestIndexedIndex(sqlite3_vtab *table, sqlite3_index_info *info)
{
    if (const int code = bestIndex(table, info); code != SQLITE_OK)
        return code;
    int best = -1;
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto &constraint = info->aConstraint[i];
        const bool fits = constraint.usable && constraint.op == SQLITE_INDEX_CONSTRAINT_EQ &&
                          constraint.iColumn >= 0 && constraint.iColumn < ProviderColumn;
        if (fits && (best < 0 || constraint.iColumn < info->aConstraint[best].iColumn))
            best = i;
    }
    info->estimatedRows = 10'000;
    info->estimatedCost = 100'000;
    if (best < 0)
        return SQLITE_OK;
    // The first columns are the most selective: ids and names. Many rows share a value of the others, such as
    // a type.
    info->estimatedRows = info->aConstraint[best].iColumn <= 2 ? 10 : 2'500;
    info->estimatedCost = 2.0 * static_cast<double>(info->estimatedRows);
    info->aConstraintUsage[best].argvIndex = info->idxNum + 1;
    info->idxStr = sqlite3_mprintf("%d", info->aConstraint[best].iColumn);
    info->needToFreeIdxStr = 1;
    return SQLITE_OK;
}

int open(sqlite3_vtab *, sqlite3_vtab_cursor **cursor)
{
    *cursor = new ProviderCursor();
    return SQLITE_OK;
}

int close(sqlite3_vtab_cursor *cursor)
{
    delete static_cast<ProviderCursor *>(cursor);
    return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor *base, int hidden, const char *column, int count, sqlite3_value **arguments)
{
    return guarded(base, [&](ProviderCursor &cursor) {
        const auto *provider =
            static_cast<const RowProvider *>(sqlite3_value_pointer(arguments[0], "row-provider"));
        if (!provider)
            throw EngineError(40001, 16, 1, "The sample server lost a source of rows inside SQLite.");
        if (cursor.provider != provider)
            cursor.rows = provider->open(*static_cast<ProviderTable *>(cursor.pVtab)->connection);
        cursor.provider = provider;
        cursor.number = 0;
        RowCursor::Equality equality{column ? std::atoi(column) : 0, arguments[count - 1]};
        cursor.rows->start({arguments + 1, static_cast<std::size_t>(hidden - 1)},
                           column ? &equality : nullptr);
    });
}

int next(sqlite3_vtab_cursor *base)
{
    return guarded(base, [](ProviderCursor &cursor) {
        ++cursor.number;
        cursor.rows->next();
    });
}

int atEnd(sqlite3_vtab_cursor *base)
{
    const auto &cursor = *static_cast<ProviderCursor *>(base);
    return !cursor.rows || cursor.rows->atEnd();
}

int column(sqlite3_vtab_cursor *base, sqlite3_context *context, int index)
{
    if (index >= ProviderColumn) {
        sqlite3_result_null(context);
        return SQLITE_OK;
    }
    return guarded(base, [&](ProviderCursor &cursor) { cursor.rows->column(context, index); });
}

int rowId(sqlite3_vtab_cursor *cursor, sqlite3_int64 *id)
{
    *id = static_cast<ProviderCursor *>(cursor)->number;
    return SQLITE_OK;
}

sqlite3_module makeModule(int (*plan)(sqlite3_vtab *, sqlite3_index_info *))
{
    sqlite3_module result{}; // no xCreate: available without CREATE VIRTUAL TABLE
    result.xConnect = connect;
    result.xBestIndex = plan;
    result.xDisconnect = disconnect;
    result.xOpen = open;
    result.xClose = close;
    result.xFilter = filter;
    result.xNext = next;
    result.xEof = atEnd;
    result.xColumn = column;
    result.xRowid = rowId;
    return result;
}

} // namespace

void registerRowProviders(sqlite3 *db, SqliteConnection &connection)
{
    static const sqlite3_module plain = makeModule(bestIndex), indexed = makeModule(bestIndexedIndex);
    sqlite3_create_module_v2(db, "rows", &plain, &connection, nullptr);
    sqlite3_create_module_v2(db, "indexed_rows", &indexed, &connection, nullptr);
}

} // namespace SampleServer
