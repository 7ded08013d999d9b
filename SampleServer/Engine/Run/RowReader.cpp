#include "Engine/Functions/Conversion.h"
#include "Engine/Run/QueryExecutor.h"
#include "Engine/Run/RowWriter.h"

// Reads the rows of a RowWriter's table.
namespace SampleServer {

namespace {

std::string condition(const Table &table, const std::vector<std::size_t> &columns)
{
    std::string sql;
    for (const std::size_t column : columns)
        sql += (sql.empty() ? " WHERE " : " AND ") + table.columns[column].physicalName() + " IS ?";
    return sql;
}

} // namespace

bool RowWriter::hasRows()
{
    SqliteStatement statement(m_queries.session().connection, "SELECT 1 FROM " + m_place + " LIMIT 1");
    return statement.step();
}

std::vector<StoredRow> RowWriter::readAll()
{
    return read({}, {}, {});
}

std::vector<StoredRow> RowWriter::readWhere(const std::vector<std::size_t> &columns,
                                            const std::vector<Value> &values)
{
    return read(condition(*m_table, columns), columns, values);
}

std::vector<StoredRow> RowWriter::read(const std::string &where, const std::vector<std::size_t> &columns,
                                       const std::vector<Value> &values)
{
    std::string sql = "SELECT rowid";
    for (const TableColumn &column : m_table->columns)
        sql += ", " + (column.computed ? std::string("NULL") : column.physicalName());
    SqliteStatement statement(m_queries.session().connection, sql + " FROM " + m_place + where);
    for (std::size_t i = 0; i < columns.size(); ++i)
        statement.bind(static_cast<int>(i) + 1, values[i], m_table->columns[columns[i]].type);
    std::vector<StoredRow> rows;
    while (statement.step()) {
        Value id;
        statement.read(0, BigIntType, id);
        StoredRow row{std::get<std::int64_t>(id), std::vector<Value>(m_table->columns.size())};
        for (std::size_t i = 0; i < row.values.size(); ++i)
            statement.read(static_cast<int>(i) + 1, m_table->columns[i].type, row.values[i]);
        rows.push_back(std::move(row));
    }
    return rows;
}

bool RowWriter::exists(const std::vector<std::size_t> &columns, const std::vector<Value> &values)
{
    SqliteStatement statement(m_queries.session().connection,
                              "SELECT 1 FROM " + m_place + condition(*m_table, columns));
    for (std::size_t i = 0; i < columns.size(); ++i)
        statement.bind(static_cast<int>(i) + 1, values[i], m_table->columns[columns[i]].type);
    return statement.step();
}

Value RowWriter::evaluate(const DefinedExpression &defined, std::int64_t rowId)
{
    Binder binder = m_queries.binder();
    Scope scope;
    binder.enterScope(scope);
    const auto source = binder.bindTarget(m_scan, m_table->name, scope);
    const auto condition = binder.bindCondition(*defined.expression); // owns the statement's parameters
    const Emitted emitted = emitSelection({}, {condition}, {source}, nullptr, nullptr);
    SqliteStatement statement(m_queries.session().connection,
                              emitted.sql + " WHERE " + source->alias + ".rowid = " + std::to_string(rowId));
    statement.bind(emitted.parameters);
    Value value;
    if (statement.step())
        statement.read(0, {TypeId::Bit, 0, 0, 0}, value);
    return value;
}

bool RowWriter::isNotFalse(const DefinedExpression &defined, std::int64_t rowId)
{
    const Value value = evaluate(defined, rowId);
    return isNull(value) || std::get<std::int64_t>(value) != 0;
}

bool RowWriter::isTrue(const DefinedExpression &defined, std::int64_t rowId)
{
    const Value value = evaluate(defined, rowId);
    return !isNull(value) && std::get<std::int64_t>(value) != 0;
}

bool RowWriter::matchesFilter(const TableIndex &index, std::int64_t rowId)
{
    return !index.filter || isTrue(index.filter, rowId);
}

void RowWriter::requireNoNulls(std::size_t column)
{
    if (exists({column}, {Value()}))
        failOnNull(column, "UPDATE");
}

void RowWriter::numberRows(const TableColumn &column, IdentityCounter &counter)
{
    const std::string set = "UPDATE " + m_place + " SET " + column.physicalName() + " = ? WHERE rowid = ?";
    for (const StoredRow &row : readAll()) {
        SqliteStatement statement(m_queries.session().connection, set);
        const Value number = convertValue(counter.take(), BigIntType, column.type);
        statement.bind(1, number, column.type);
        statement.bind(2, row.rowId, BigIntType);
        statement.step();
    }
}

void RowWriter::convertColumn(const TableColumn &before, const TableColumn &after)
{
    const std::size_t place = *m_table->findColumn(before.name);
    const std::string set = "UPDATE " + m_place + " SET " + after.physicalName() + " = ? WHERE rowid = ?";
    for (const StoredRow &row : readAll()) {
        if (isNull(row.values[place]))
            continue;
        SqliteStatement statement(m_queries.session().connection, set);
        requireFits(place, row.values[place], before.type, after.type);
        statement.bind(1, convertValue(row.values[place], before.type, after.type), after.type);
        statement.bind(2, row.rowId, BigIntType);
        statement.step();
    }
}

} // namespace SampleServer
