#include "Engine/RowWriter.h"
#include "Engine/Conversion.h"
#include "Engine/Errors.h"
#include "Engine/Interpreter.h"
#include "Engine/TypeRules.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

namespace {

constexpr SqlType RowIdType{TypeId::BigInt, 0, 0, 0};

/// Whether a text or binary value is too long for its column; blanks at the end of a text do not count.
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

std::string keyText(const Table &table, const TableKey &key, const std::vector<Value> &row)
{
    std::string text;
    for (const std::size_t column : key.columns) {
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

RowWriter::RowWriter(Interpreter &interpreter, const Bound::TableScan &scan)
    : m_interpreter(interpreter)
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
    if (wouldBeCut(value, from, target.type)) {
        const auto *text = std::get_if<std::string>(&value);
        const std::string start =
            text ? utf16Substring(*text, 0, static_cast<std::size_t>(target.type.length)) : std::string();
        throw EngineError(2628, 16, 1,
                          "String or binary data would be truncated in table '" +
                              m_interpreter.fullName(*m_table) + "', column '" + target.name +
                              "'. Truncated value: '" + start + "'.");
    }
    return convertValue(value, from, target.type, {0, m_interpreter.m_context.dateOrder});
}

void RowWriter::requireNotNull(std::size_t column, const Value &value, const char *verb) const
{
    const TableColumn &definition = m_table->columns[column];
    if (!isNull(value) || definition.nullable)
        return;
    throw EngineError(515, 16, 2,
                      "Cannot insert the value NULL into column '" + definition.name + "', table '" +
                          m_interpreter.fullName(*m_table) + "'; column does not allow nulls. " + verb +
                          " fails.");
}

void RowWriter::insert(const std::vector<Value> &row, std::optional<std::int64_t> rowId)
{
    SqliteStatement statement(m_interpreter.m_connection, m_insertSql);
    statement.bind(1, rowId ? Value(*rowId) : Value(), RowIdType);
    int parameter = 1;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (m_table->columns[i].computed)
            continue;
        requireNotNull(i, row[i], rowId ? "UPDATE" : "INSERT");
        statement.bind(++parameter, row[i], m_table->columns[i].type);
    }
    requireUniqueNulls(row);
    try {
        statement.step();
    } catch (const SqliteConstraintError &) {
        failOnDuplicate(row);
    }
}

void RowWriter::remove(std::int64_t rowId)
{
    SqliteStatement statement(m_interpreter.m_connection, "DELETE FROM " + m_place + " WHERE rowid = ?");
    statement.bind(1, rowId, RowIdType);
    statement.step();
}

void RowWriter::update(std::int64_t rowId, const std::vector<std::size_t> &columns,
                       const std::vector<Value> &values)
{
    std::string sql;
    for (const std::size_t column : columns)
        sql += (sql.empty() ? " SET " : ", ") + m_table->columns[column].physicalName() + " = ?";
    SqliteStatement statement(m_interpreter.m_connection, "UPDATE " + m_place + sql + " WHERE rowid = ?");
    for (std::size_t i = 0; i < columns.size(); ++i) {
        requireNotNull(columns[i], values[i], "UPDATE");
        statement.bind(static_cast<int>(i) + 1, values[i], m_table->columns[columns[i]].type);
    }
    statement.bind(static_cast<int>(columns.size()) + 1, rowId, RowIdType);
    statement.step();
}

/// SQLite lets a unique key hold NULL many times, the server once.
void RowWriter::requireUniqueNulls(const std::vector<Value> &row)
{
    for (const TableKey &key : m_table->keys) {
        const bool anyNull = std::any_of(key.columns.begin(), key.columns.end(),
                                         [&row](std::size_t c) { return isNull(row[c]); });
        if (anyNull && keyExists(key, row))
            failOnDuplicate(row);
    }
}

bool RowWriter::keyExists(const TableKey &key, const std::vector<Value> &row)
{
    std::string sql = "SELECT 1 FROM " + m_place;
    for (const std::size_t column : key.columns)
        sql += (column == key.columns.front() ? " WHERE " : " AND ") +
               m_table->columns[column].physicalName() + " IS ?";
    SqliteStatement statement(m_interpreter.m_connection, sql);
    int parameter = 0;
    for (const std::size_t column : key.columns)
        statement.bind(++parameter, row[column], m_table->columns[column].type);
    return statement.step();
}

void RowWriter::failOnDuplicate(const std::vector<Value> &row)
{
    for (const TableKey &key : m_table->keys) {
        if (!keyExists(key, row))
            continue;
        throw EngineError(2627, 14, 1,
                          std::string("Violation of ") + (key.primary ? "PRIMARY" : "UNIQUE") +
                              " KEY constraint '" + key.name + "'. Cannot insert duplicate key in object '" +
                              m_table->schema + '.' + m_table->name + "'. The duplicate key value is " +
                              keyText(*m_table, key, row) + '.');
    }
    throw EngineError(40001, 16, 1, "The sample server failed to write a row.");
}

} // namespace SampleServer
