#include "Engine/Functions/RowGenerator.h"
#include "Engine/Storage/SqliteCodec.h"
#include "Engine/Storage/SqliteConnection.h"

#include <limits>

// generate_rows(n) for queries that join, filter or group, as a table-valued function of SQLite.
namespace SampleServer {

namespace {

struct GeneratorCursor : sqlite3_vtab_cursor
{
    std::int64_t number = 1;
    std::int64_t count = 0;
};

int connect(sqlite3 *db, void *, int, const char *const *, sqlite3_vtab **table, char **)
{
    std::string declaration = "CREATE TABLE x(";
    for (const ColumnInfo &column : RowGenerator::columns())
        declaration += column.name + ", ";
    declaration += "n HIDDEN)";
    const int code = sqlite3_declare_vtab(db, declaration.c_str());
    if (code == SQLITE_OK)
        *table = new sqlite3_vtab{};
    return code;
}

int disconnect(sqlite3_vtab *table)
{
    delete table;
    return SQLITE_OK;
}

int bestIndex(sqlite3_vtab *, sqlite3_index_info *info)
{
    const int hidden = static_cast<int>(RowGenerator::columns().size());
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto &constraint = info->aConstraint[i];
        if (constraint.iColumn != hidden || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ)
            continue;
        if (!constraint.usable)
            return SQLITE_CONSTRAINT;
        info->aConstraintUsage[i].argvIndex = 1;
        info->aConstraintUsage[i].omit = 1;
    }
    info->estimatedRows = 1000;
    info->estimatedCost = 1000;
    return SQLITE_OK;
}

int open(sqlite3_vtab *, sqlite3_vtab_cursor **cursor)
{
    *cursor = new GeneratorCursor();
    return SQLITE_OK;
}

int close(sqlite3_vtab_cursor *cursor)
{
    delete static_cast<GeneratorCursor *>(cursor);
    return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor *cursor, int, const char *, int count, sqlite3_value **arguments)
{
    auto &generator = *static_cast<GeneratorCursor *>(cursor);
    generator.number = 1;
    generator.count = count > 0 ? sqlite3_value_int64(arguments[0]) : 0;
    return SQLITE_OK;
}

int next(sqlite3_vtab_cursor *cursor)
{
    ++static_cast<GeneratorCursor *>(cursor)->number;
    return SQLITE_OK;
}

int atEnd(sqlite3_vtab_cursor *cursor)
{
    const auto &generator = *static_cast<GeneratorCursor *>(cursor);
    return generator.number > generator.count ? 1 : 0;
}

int column(sqlite3_vtab_cursor *cursor, sqlite3_context *context, int place)
{
    const auto &generator = *static_cast<GeneratorCursor *>(cursor);
    const auto index = static_cast<std::size_t>(place);
    if (index >= RowGenerator::columns().size()) {
        sqlite3_result_int64(context, generator.count);
        return SQLITE_OK;
    }
    Value value;
    RowGenerator::fill(index, generator.number, value);
    returnValue(context, value, RowGenerator::columns()[index].type);
    return SQLITE_OK;
}

int rowId(sqlite3_vtab_cursor *cursor, sqlite3_int64 *id)
{
    *id = static_cast<GeneratorCursor *>(cursor)->number;
    return SQLITE_OK;
}

} // namespace

void registerRowGenerator(sqlite3 *db)
{
    static const sqlite3_module module = [] {
        sqlite3_module result{}; // no xCreate: available without CREATE VIRTUAL TABLE
        result.xConnect = connect;
        result.xBestIndex = bestIndex;
        result.xDisconnect = disconnect;
        result.xOpen = open;
        result.xClose = close;
        result.xFilter = filter;
        result.xNext = next;
        result.xEof = atEnd;
        result.xColumn = column;
        result.xRowid = rowId;
        return result;
    }();
    sqlite3_create_module_v2(db, "generate_rows", &module, nullptr, nullptr);
}

} // namespace SampleServer
