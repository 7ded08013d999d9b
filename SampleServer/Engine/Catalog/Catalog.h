#pragma once

#include "Engine/Catalog/Module.h"
#include "Engine/Catalog/Table.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

struct sqlite3;

namespace SampleServer {

/// A session's temporary tables by case-insensitive name. Not thread-safe.
class TableMap
{
public:
    TablePtr find(std::string_view name) const;
    TablePtr findById(std::int64_t id) const;
    void insert(TablePtr table);
    void erase(const Table &table);
    std::vector<TablePtr> all() const;

private:
    std::map<std::string, TablePtr> m_byName; ///< by folded name
};

struct Schema
{
    int id = 0;
    std::string name;
};

struct ExtendedProperty
{
    int type = 1; ///< class: 0 database, 1 object or column, 3 schema, 6 type, 7 index
    std::int64_t major = 0;
    std::int64_t minor = 0;
    std::string name;
    std::string value;
};

/// A database: its objects, and the SQLite connection that keeps its rows in memory while no session uses it.
/// Thread-safe; callers that change definitions hold the database's schema lock.
class Database
{
public:
    Database(int id, std::string name, std::string uri);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    int id() const { return m_id; }
    std::string name() const;
    void rename(const std::string &name);
    /// The SQLite URI to attach.
    const std::string &uri() const { return m_uri; }
    const DateTimeValue &created() const { return m_created; }

    /// Returns null if the object does not exist.
    ObjectPtr find(std::string_view schema, std::string_view name) const;
    ObjectPtr find(std::int64_t id) const;
    TablePtr findTable(std::string_view schema, std::string_view name) const;
    TablePtr findTable(std::int64_t id) const;
    /// Returns the table of the constraint with this name or id; null if there is none.
    TablePtr findConstraint(std::string_view schema, std::string_view name) const;
    TablePtr findConstraint(std::int64_t id) const;
    /// Whether an object or a constraint has this name.
    bool isTaken(std::string_view schema, std::string_view name) const;
    std::vector<ObjectPtr> objects() const; ///< by id
    std::vector<TablePtr> referencing(std::int64_t table) const;
    std::vector<ModulePtr> triggersOf(std::int64_t parent) const;
    void insert(ObjectPtr object);
    void erase(const SchemaObject &object);

    std::optional<Schema> findSchema(std::string_view name) const;
    std::optional<Schema> findSchema(int id) const;
    std::vector<Schema> schemas() const;
    Schema createSchema(const std::string &name, int id = 0);
    void eraseSchema(const Schema &schema);

    UserTypePtr findType(std::string_view schema, std::string_view name) const;
    std::vector<UserTypePtr> types() const;
    int newTypeId();
    void insertType(UserTypePtr type);
    void eraseType(const UserType &type);

    std::vector<ExtendedProperty> properties() const;
    void setProperties(std::vector<ExtendedProperty> properties);

    std::atomic<int> users{0}; ///< number of sessions using it as current database

private:
    void note(const ObjectPtr &object, bool present);

    const int m_id;
    const std::string m_uri;
    const DateTimeValue m_created;
    sqlite3 *m_anchor = nullptr;
    mutable std::mutex m_mutex; ///< guards the members below
    std::string m_name;
    std::map<std::string, ObjectPtr> m_byName; ///< by folded schema and name
    std::map<std::int64_t, ObjectPtr> m_byId;
    std::map<std::string, std::int64_t> m_constraints;         ///< folded schema and name: the table's id
    std::map<std::int64_t, std::int64_t> m_constraintIds;      ///< the table's id
    std::map<std::int64_t, std::set<std::int64_t>> m_children; ///< of a table: those with foreign keys to it
    std::map<std::int64_t, std::set<std::int64_t>> m_triggers; ///< by table or view
    std::map<std::string, Schema> m_schemas;                   ///< by folded name
    std::map<std::string, UserTypePtr> m_types;                ///< by folded schema and name
    std::vector<ExtendedProperty> m_properties;
    int m_nextSchema = 5;
    int m_nextType = 257;
};
using DatabasePtr = std::shared_ptr<Database>;

/// The databases of a server. Thread-safe.
class DatabaseList
{
public:
    /// Returns null if the database does not exist.
    DatabasePtr find(std::string_view name) const;
    DatabasePtr find(int id) const;
    std::vector<DatabasePtr> all() const; ///< by id
    /// Returns null if the name is taken.
    DatabasePtr create(const std::string &name);
    /// Returns false if the name is taken.
    bool rename(Database &database, const std::string &name);
    void erase(const Database &database);

private:
    mutable std::mutex m_mutex;
    std::map<std::string, DatabasePtr> m_byName; ///< guarded by m_mutex, by folded name
    int m_nextId = 1;                            ///< guarded by m_mutex
};

} // namespace SampleServer
