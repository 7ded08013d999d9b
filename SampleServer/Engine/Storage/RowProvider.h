#pragma once

#include <cstddef>
#include <memory>
#include <span>

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;

namespace SampleServer {

class SqliteConnection;

/// Iterates over the rows of a source that is not an SQLite table. May throw EngineError and BatchCancelled.
class RowCursor
{
public:
    /// The condition column (from 0) = value; a cursor may skip rows that do not meet it.
    struct Equality
    {
        int column;
        sqlite3_value *value;
    };

    virtual ~RowCursor() = default;
    /// Moves to the first row for these arguments. `equality` may be null, and may be ignored.
    virtual void start(std::span<sqlite3_value *> arguments, const Equality *equality) = 0;
    virtual void next() = 0;
    virtual bool atEnd() const = 0;
    /// Passes the value of a column (from 0) of the current row to SQLite.
    virtual void column(sqlite3_context *context, int index) = 0;
};

/// Creates cursors over the rows of a source. Immutable while a statement runs.
class RowProvider
{
public:
    /// The maximum number of columns and arguments of a source.
    static constexpr int MaxColumns = 300;
    static constexpr int MaxArguments = 60;

    virtual ~RowProvider() = default;
    virtual std::unique_ptr<RowCursor> open(SqliteConnection &connection) const = 0;
    /// Whether its cursors use an equality. The first three columns should be the most selective.
    virtual bool isIndexed() const { return false; }
};

/// Adds the table-valued functions rows(provider, arguments...) and indexed_rows(provider), whose columns are
/// c1, c2 ...
void registerRowProviders(sqlite3 *db, SqliteConnection &connection);

} // namespace SampleServer
