#pragma once

#include "Engine/Bind/Bound.h"
#include "Engine/Catalog/Catalog.h"
#include "Engine/Storage/SqliteConnection.h"

#include <optional>
#include <vector>

namespace SampleServer {

class QueryExecutor;

/// A row of a table and where it is.
struct StoredRow
{
    std::int64_t rowId = 0;
    std::vector<Value> values; ///< one per column; computed ones are NULL
};

/// Reads and writes rows of one table, checking what the table's own definition demands of a row. All values
/// have the columns' types.
class RowWriter
{
public:
    RowWriter(QueryExecutor &queries, const Bound::TableScan &scan);

    /// Stores a row of all columns, computed ones being ignored; under a row id of its own unless one is
    /// given. Returns the row id; empty when an index with IGNORE_DUP_KEY left the row out. Throws
    /// EngineError 515, 2601 and 2627.
    std::optional<std::int64_t> insert(const std::vector<Value> &row, std::optional<std::int64_t> rowId = {});
    void remove(std::int64_t rowId);
    /// Changes some columns of a row, none of them in a unique index. Throws EngineError 515.
    void update(std::int64_t rowId, const std::vector<std::size_t> &columns,
                const std::vector<Value> &values);

    /// A value in the type of a column, as an assignment makes it. Throws EngineError 2628 when text would be
    /// cut.
    Value assigned(std::size_t column, const Value &value, const SqlType &from) const;

    bool hasRows();
    std::vector<StoredRow> readAll();
    /// The rows whose columns (places) have these values.
    std::vector<StoredRow> readWhere(const std::vector<std::size_t> &columns,
                                     const std::vector<Value> &values);
    bool exists(const std::vector<std::size_t> &columns, const std::vector<Value> &values);
    /// Whether a row belongs to a filtered index.
    bool matchesFilter(const TableIndex &index, std::int64_t rowId);
    /// Whether a condition over the table's columns holds for a row, or is unknown.
    bool isNotFalse(const DefinedExpression &condition, std::int64_t rowId);
    bool isTrue(const DefinedExpression &condition, std::int64_t rowId);

    // Changes of the whole table
    void requireNoNulls(std::size_t column);
    void numberRows(const TableColumn &column, IdentityCounter &counter);
    void convertColumn(const TableColumn &before, const TableColumn &after);

private:
    void requireNotNull(std::size_t column, const Value &value, const char *verb) const;
    [[noreturn]] void failOnNull(std::size_t column, const char *verb) const;
    void requireFits(std::size_t column, const Value &value, const SqlType &from, const SqlType &to) const;
    void requireUnique(const std::vector<Value> &row, std::int64_t rowId);
    const TableIndex *duplicateIn(const std::vector<Value> &row, bool all);
    [[noreturn]] void failOnDuplicate(const TableIndex &index, const std::vector<Value> &row);
    std::vector<StoredRow> read(const std::string &where, const std::vector<std::size_t> &columns,
                                const std::vector<Value> &values);
    Value evaluate(const DefinedExpression &condition, std::int64_t rowId);

    QueryExecutor &m_queries;
    const Bound::TableScan m_scan;
    const TablePtr m_table;
    const std::string m_place; ///< SQLite's full name of the table
    std::string m_insertSql;   ///< parameters: the row id, then the stored columns
};

/// The key's values as error 2627 shows them: "(1, abc, <NULL>)".
std::string keyText(const Table &table, const TableIndex &index, const std::vector<Value> &row);

} // namespace SampleServer
