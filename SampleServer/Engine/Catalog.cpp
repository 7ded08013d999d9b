#include "Engine/Catalog.h"
#include "Types/Collation.h"

#include <sqlite3.h>
#include <stdexcept>

namespace SampleServer {

namespace {

std::string keyOf(std::string_view schema, std::string_view name)
{
    // A NUL cannot be part of either name, so two different pairs never meet.
    return foldedName(schema) + '\0' + foldedName(name);
}

} // namespace

std::int64_t IdentityCounter::take()
{
    const std::lock_guard lock(m_mutex);
    const std::int64_t value = m_next;
    m_next += m_increment;
    return value;
}

void IdentityCounter::sawExplicit(std::int64_t value)
{
    const std::lock_guard lock(m_mutex);
    if (m_increment > 0 ? value >= m_next : value <= m_next)
        m_next = value + m_increment;
}

void IdentityCounter::restart()
{
    const std::lock_guard lock(m_mutex);
    m_next = m_seed;
}

std::optional<std::size_t> Table::findColumn(std::string_view columnName) const
{
    const std::string folded = foldedName(columnName);
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (foldedName(columns[i].name) == folded)
            return i;
    return {};
}

TablePtr TableMap::find(std::string_view schema, std::string_view name) const
{
    const auto found = m_byName.find(keyOf(schema, name));
    return found == m_byName.end() ? nullptr : found->second;
}

TablePtr TableMap::findById(std::int64_t id) const
{
    const auto found = m_byId.find(id);
    return found == m_byId.end() ? nullptr : found->second;
}

void TableMap::insert(TablePtr table)
{
    m_byName[keyOf(table->schema, table->name)] = table;
    m_byId[table->id] = table;
}

void TableMap::erase(const Table &table)
{
    const std::int64_t id = table.id; // the table itself may go with the first map
    m_byName.erase(keyOf(table.schema, table.name));
    m_byId.erase(id);
}

std::vector<TablePtr> TableMap::all() const
{
    std::vector<TablePtr> tables;
    for (const auto &[id, table] : m_byId)
        tables.push_back(table);
    return tables;
}

Database::Database(int id, std::string name, std::string uri)
    : m_id(id)
    , m_name(std::move(name))
    , m_uri(std::move(uri))
{
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI;
    if (sqlite3_open_v2(m_uri.c_str(), &m_anchor, flags, nullptr) != SQLITE_OK) {
        sqlite3_close(m_anchor);
        throw std::runtime_error("cannot open an in-memory database");
    }
}

Database::~Database()
{
    sqlite3_close(m_anchor);
}

TablePtr Database::findTable(std::string_view schema, std::string_view name) const
{
    const std::lock_guard lock(m_mutex);
    return m_tables.find(schema, name);
}

TablePtr Database::findTable(std::int64_t id) const
{
    const std::lock_guard lock(m_mutex);
    return m_tables.findById(id);
}

void Database::insertTable(TablePtr table)
{
    const std::lock_guard lock(m_mutex);
    m_tables.insert(std::move(table));
}

void Database::eraseTable(const Table &table)
{
    const std::lock_guard lock(m_mutex);
    m_tables.erase(table);
}

DatabasePtr DatabaseList::find(std::string_view name) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_byName.find(foldedName(name));
    return found == m_byName.end() ? nullptr : found->second;
}

DatabasePtr DatabaseList::find(int id) const
{
    const std::lock_guard lock(m_mutex);
    for (const auto &[name, database] : m_byName)
        if (database->id() == id)
            return database;
    return nullptr;
}

DatabasePtr DatabaseList::create(const std::string &name)
{
    static std::atomic<int> nextUri{1};
    const std::lock_guard lock(m_mutex);
    DatabasePtr &place = m_byName[foldedName(name)];
    if (place)
        return nullptr;
    const std::string uri = "file:sample-server-" + std::to_string(nextUri++) + "?mode=memory&cache=shared";
    place = std::make_shared<Database>(m_nextId++, name, uri);
    return place;
}

void DatabaseList::erase(const Database &database)
{
    const std::lock_guard lock(m_mutex);
    m_byName.erase(foldedName(database.name()));
}

std::int64_t newObjectId()
{
    static std::atomic<std::int64_t> next{245575913};
    return next += 16;
}

} // namespace SampleServer
