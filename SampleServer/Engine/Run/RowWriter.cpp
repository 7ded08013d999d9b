#include "Engine/Run/RowWriter.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Run/QueryExecutor.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

namespace {

/// Whether a text or binary value is too long for its column; trailing blanks of text are ignored.
bool wouldBeCut(const Value &value, const SqlType &from, const SqlType &to)
{
    if (to.length == SqlType::Max || isLegacyLob(to.id))
        return false;
    const auto limit = static_cast<std::size_t>(to.length);
    if (isText(to.id) && isText(from.id)) {
        const auto *text = std::get_if<std::string>(&value);
        return text && text->size() > limit && utf16Length(trimmedRight(*text)) > limit;
    }
    if (isBinary(to.id) && isBinary(from.id)) {
        const auto *bytes = std::get_if<Bytes>(&value);
        return bytes && bytes->size() > limit;
    }
    return false;
}

} // namespace

std::string keyText(const Table &table, const TableIndex &index, const std::vector<Value> &row)
{
    std::string text;
    for (const std::size_t column : index.columns) {
        const SqlType &type = table.columns[column].type;
        text += text.empty() ? "(" : ", ";
        if (isNull(row[column]))
            text += "<NULL>";
        else if (const auto *bytes = std::get_if<Bytes>(&row[column]))
            text += "0x" + toHex(bytes->data(), bytes->size());
        else
            text += trimmedRight(textOf(row[column], type, 0));
    }
    return text + ')';
}

RowWriter::RowWriter(QueryExecutor &queries, const Bound::TableScan &scan)
    : m_queries(queries)
    , m_scan(scan)
    , m_table(scan.table)
    , m_place(scan.schema + '.' + scan.table->physicalName())
{
    std::string names = "rowid", values = "?";
    for (const TableColumn &column : m_table->columns)
        if (!column.computed) {
            names += ", " + column.physicalName();
            values += ", ?";
        }
    m_insertSql = "INSERT INTO " + m_place + '(' + names + ") VALUES (" + values + ')';
}

Value RowWriter::assigned(std::size_t column, const Value &value, const SqlType &from) const
{
    const TableColumn &target = m_table->columns[column];
    if (isNull(value))
        return value;
    requireFits(column, value, from, target.type);
    return convertValue(value, from, target.type, {0, m_queries.session().evaluation.dateOrder});
}

void RowWriter::requireFits(std::size_t column, const Value &value, const SqlType &from,
                            const SqlType &to) const
{
    if (!wouldBeCut(value, from, to))
        return;
    const auto *text = std::get_if<std::string>(&value);
    const std::string start =
        text ? utf16Substring(*text, 0, static_cast<std::size_t>(to.length)) : std::string();
    throw EngineError(2628, 16, 1,
                      "String or binary data would be truncated in table '" +
                          m_queries.names().fullName(*m_table) + "', column '" +
                          m_table->columns[column].name + "'. Truncated value: '" + start + "'.");
}

void RowWriter::requireNotNull(std::size_t column, const Value &value, const char *verb) const
{
    if (isNull(value) && !m_table->columns[column].nullable)
        failOnNull(column, verb);
}

void RowWriter::failOnNull(std::size_t column, const char *verb) const
{
    throw EngineError(515, 16, 2,
                      "Cannot insert the value NULL into column '" + m_table->columns[column].name +
                          "', table '" + m_queries.names().fullName(*m_table) +
                          "'; column does not allow nulls. " + verb + " fails.");
}

std::optional<std::int64_t> RowWriter::insert(const std::vector<Value> &row,
                                              std::optional<std::int64_t> rowId)
{
    SqliteStatement statement(m_queries.session().connection, m_insertSql);
    statement.bind(1, rowId ? Value(*rowId) : Value(), BigIntType);
    int parameter = 1;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (m_table->columns[i].computed)
            continue;
        requireNotNull(i, row[i], rowId ? "UPDATE" : "INSERT");
        statement.bind(++parameter, row[i], m_table->columns[i].type);
    }
    const TableIndex *duplicate = duplicateIn(row, false);
    if (!duplicate) {
        try {
            statement.step();
        } catch (const SqliteConstraintError &) {
            duplicate = duplicateIn(row, true);
        }
    }
    if (duplicate && duplicate->ignoresDuplicates && !rowId)
        return {};
    if (duplicate)
        failOnDuplicate(*duplicate, row);
    const std::int64_t id = m_queries.session().connection.lastRowId();
    requireUnique(row, id);
    return id;
}

void RowWriter::remove(std::int64_t rowId)
{
    SqliteStatement statement(m_queries.session().connection, "DELETE FROM " + m_place + " WHERE rowid = ?");
    statement.bind(1, rowId, BigIntType);
    statement.step();
}

void RowWriter::update(std::int64_t rowId, const std::vector<std::size_t> &columns,
                       const std::vector<Value> &values)
{
    std::string sql;
    for (const std::size_t column : columns)
        sql += (sql.empty() ? " SET " : ", ") + m_table->columns[column].physicalName() + " = ?";
    SqliteStatement statement(m_queries.session().connection, "UPDATE " + m_place + sql + " WHERE rowid = ?");
    for (std::size_t i = 0; i < columns.size(); ++i) {
        requireNotNull(columns[i], values[i], "UPDATE");
        statement.bind(static_cast<int>(i) + 1, values[i], m_table->columns[columns[i]].type);
    }
    statement.bind(static_cast<int>(columns.size()) + 1, rowId, BigIntType);
    statement.step();
}

/// Finds the unique index that already contains the row's key. SQLite allows several keys with NULL, the
/// server one: unless `all` are requested, only keys with NULL are checked here, and SQLite checks the
/// others.
const TableIndex *RowWriter::duplicateIn(const std::vector<Value> &row, bool all)
{
    for (const TableIndex &index : m_table->indexes) {
        if (!index.unique || index.filter || index.disabled)
            continue;
        const bool anyNull = std::any_of(index.columns.begin(), index.columns.end(),
                                         [&row](std::size_t c) { return isNull(row[c]); });
        if (!all && !anyNull)
            continue;
        std::vector<Value> key;
        for (const std::size_t column : index.columns)
            key.push_back(row[column]);
        if (exists(index.columns, key))
            return &index;
    }
    return nullptr;
}

/// Searches for rows with the same key in filtered unique indexes, which SQLite does not maintain.
void RowWriter::requireUnique(const std::vector<Value> &row, std::int64_t rowId)
{
    for (const TableIndex &index : m_table->indexes) {
        if (!index.unique || !index.filter || index.disabled || !matchesFilter(index, rowId))
            continue;
        std::vector<Value> key;
        for (const std::size_t column : index.columns)
            key.push_back(row[column]);
        for (const StoredRow &other : readWhere(index.columns, key))
            if (other.rowId != rowId && matchesFilter(index, other.rowId))
                failOnDuplicate(index, row);
    }
}

void RowWriter::failOnDuplicate(const TableIndex &index, const std::vector<Value> &row)
{
    const std::string object = m_table->schema + '.' + m_table->name, key = keyText(*m_table, index, row);
    if (!index.isKey())
        throw EngineError(2601, 14, 1,
                          "Cannot insert duplicate key row in object '" + object + "' with unique index '" +
                              index.name + "'. The duplicate key value is " + key + '.');
    throw EngineError(2627, 14, 1,
                      std::string("Violation of ") +
                          (index.role == TableIndex::Role::PrimaryKey ? "PRIMARY" : "UNIQUE") +
                          " KEY constraint '" + index.name + "'. Cannot insert duplicate key in object '" +
                          object + "'. The duplicate key value is " + key + '.');
}

} // namespace SampleServer
