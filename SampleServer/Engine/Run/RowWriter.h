#pragma once

#include "Engine/Bind/Bound.h"
#include "Engine/Catalog/Catalog.h"
#include "Engine/Storage/SqliteConnection.h"

#include <optional>
#include <vector>

namespace SampleServer {

class QueryExecutor;

/// A row of a table and its row id.
struct StoredRow
{
    std::int64_t rowId = 0;
    std::vector<Value> values; ///< one per column; computed ones are NULL
};

/// Reads and writes rows of one table and checks constraints on single rows. All values have the columns'
/// types.
class RowWriter
{
public:
    RowWriter(QueryExecutor &queries, const Bound::TableScan &scan);

    /// Stores a row of all columns, ignoring computed ones, with a new row id unless one is given. Returns
    /// the row id; empty if an index with IGNORE_DUP_KEY skipped the row. Throws EngineError 515, 2601 and
    /// 2627.
    std::optional<std::int64_t> insert(const std::vector<Value> &row, std::optional<std::int64_t> rowId = {});
    void remove(std::int64_t rowId);
    /// Changes columns of a row that are not in a unique index. Throws EngineError 515.
    void update(std::int64_t rowId, const std::vector<std::size_t> &columns,
                const std::vector<Value> &values);

    /// Converts a value to the type of a column as an assignment does. Throws EngineError 2628 if text would
    /// be truncated.
    Value assigned(std::size_t column, const Value &value, const SqlType &from) const;

    bool hasRows();
    std::vector<StoredRow> readAll();
    /// Returns the rows with these values in the columns (positions).
    std::vector<StoredRow> readWhere(const std::vector<std::size_t> &columns,
                                     const std::vector<Value> &values);
    bool exists(const std::vector<std::size_t> &columns, const std::vector<Value> &values);
    /// Whether a row belongs to a filtered index.
    bool matchesFilter(const TableIndex &index, std::int64_t rowId);
    /// Whether a condition over the table's columns is true or unknown for a row.
    bool isNotFalse(const DefinedExpression &condition, std::int64_t rowId);
    bool isTrue(const DefinedExpression &condition, std::int64_t rowId);

    // Changes to the whole table
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

/// The key values in the format of error 2627: "(1, abc, <NULL>)".
std::string keyText(const Table &table, const TableIndex &index, const std::vector<Value> &row);

} // namespace SampleServer
