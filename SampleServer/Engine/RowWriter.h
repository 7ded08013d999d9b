#pragma once

#include "Engine/Bound.h"
#include "Engine/Catalog.h"
#include "Engine/SqliteConnection.h"

#include <optional>
#include <vector>

namespace SampleServer {

class Interpreter;

/// Writes rows of one table, checking what the table's definition demands. All values have the columns'
/// types.
class RowWriter
{
public:
    RowWriter(Interpreter &interpreter, const Bound::TableScan &scan);

    /// Stores a row of all columns, computed ones being ignored; under a row id of its own unless one is
    /// given. Throws EngineError 515 and 2627.
    void insert(const std::vector<Value> &row, std::optional<std::int64_t> rowId = {});
    void remove(std::int64_t rowId);
    /// Changes some columns of a row. Throws EngineError 515 and 2627.
    void update(std::int64_t rowId, const std::vector<std::size_t> &columns,
                const std::vector<Value> &values);

    /// A value in the type of a column, as an assignment makes it. Throws EngineError 2628 when text would be
    /// cut.
    Value assigned(std::size_t column, const Value &value, const SqlType &from) const;

private:
    void requireNotNull(std::size_t column, const Value &value, const char *verb) const;
    void requireUniqueNulls(const std::vector<Value> &row);
    [[noreturn]] void failOnDuplicate(const std::vector<Value> &row);
    bool keyExists(const TableKey &key, const std::vector<Value> &row);

    Interpreter &m_interpreter;
    const TablePtr m_table;
    const std::string m_place; ///< SQLite's full name of the table
    std::string m_insertSql;   ///< parameters: the row id, then the stored columns
};

/// The key's values as error 2627 shows them: "(1, abc, <NULL>)".
std::string keyText(const Table &table, const TableKey &key, const std::vector<Value> &row);

} // namespace SampleServer
