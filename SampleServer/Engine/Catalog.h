#pragma once

#include "Engine/AstExpressions.h"
#include "Types/SqlType.h"
#include "Types/Value.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;

namespace SampleServer {

struct TableColumn
{
    std::string name;
    int id = 1; ///< from 1; SQLite's name of the column is "c" and this number
    SqlType type;
    bool nullable = true;
    bool identity = false;
    std::shared_ptr<const Ast::Expression> defaultValue; ///< null without a default
    std::shared_ptr<const Ast::Expression> computed;     ///< null unless the column is computed

    std::string physicalName() const { return 'c' + std::to_string(id); }
};

struct TableKey
{
    std::string name;
    bool primary = false;
    std::vector<std::size_t> columns; ///< places in Table::columns
};

/// The numbers an IDENTITY column hands out. They are not taken back by a rollback. Guarded by its own lock.
class IdentityCounter
{
public:
    IdentityCounter(std::int64_t seed, std::int64_t increment)
        : m_next(seed)
        , m_seed(seed)
        , m_increment(increment)
    {
    }

    std::int64_t take();
    /// Moves on when a row was inserted with a value of its own.
    void sawExplicit(std::int64_t value);
    void restart();

private:
    std::mutex m_mutex;
    std::int64_t m_next;
    const std::int64_t m_seed;
    const std::int64_t m_increment;
};

/// A table's definition; immutable.
struct Table
{
    std::int64_t id = 0; ///< object id; SQLite's name of the table is "t" and this number
    int database = 0;    ///< 0 for a session's temporary table
    std::string schema = "dbo";
    std::string name;
    std::vector<TableColumn> columns;
    std::vector<TableKey> keys;
    std::shared_ptr<IdentityCounter> identity; ///< null without an IDENTITY column

    std::string physicalName() const { return 't' + std::to_string(id); }
    /// The place of a column by name, empty when there is none.
    std::optional<std::size_t> findColumn(std::string_view columnName) const;
};
using TablePtr = std::shared_ptr<const Table>;

/// Tables by schema and name, which compare without regard to case. Not thread-safe.
class TableMap
{
public:
    TablePtr find(std::string_view schema, std::string_view name) const;
    TablePtr findById(std::int64_t id) const;
    void insert(TablePtr table);
    void erase(const Table &table);
    std::vector<TablePtr> all() const;

private:
    std::map<std::string, TablePtr> m_byName;
    std::map<std::int64_t, TablePtr> m_byId;
};

/// One database: its tables, and the SQLite connection that keeps its rows in memory while nobody uses it.
class Database
{
public:
    Database(int id, std::string name, std::string uri);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    int id() const { return m_id; }
    const std::string &name() const { return m_name; }
    /// Where SQLite finds it: attach this.
    const std::string &uri() const { return m_uri; }

    TablePtr findTable(std::string_view schema, std::string_view name) const;
    TablePtr findTable(std::int64_t id) const;
    void insertTable(TablePtr table);
    void eraseTable(const Table &table);

    std::atomic<int> users{0}; ///< sessions whose current database it is

private:
    const int m_id;
    const std::string m_name;
    const std::string m_uri;
    sqlite3 *m_anchor = nullptr;
    mutable std::mutex m_mutex;
    TableMap m_tables; ///< guarded by m_mutex
};
using DatabasePtr = std::shared_ptr<Database>;

/// The databases of a server. Thread-safe.
class DatabaseList
{
public:
    /// Null when there is none of that name.
    DatabasePtr find(std::string_view name) const;
    DatabasePtr find(int id) const;
    /// Null when the name is taken.
    DatabasePtr create(const std::string &name);
    void erase(const Database &database);

private:
    mutable std::mutex m_mutex;
    std::map<std::string, DatabasePtr> m_byName; ///< guarded by m_mutex, by folded name
    int m_nextId = 1;                            ///< guarded by m_mutex
};

/// A new object id, unique within the process.
std::int64_t newObjectId();

} // namespace SampleServer
