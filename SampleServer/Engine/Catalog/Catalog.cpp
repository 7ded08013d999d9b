#include "Engine/Catalog/Catalog.h"
#include "Types/Collation.h"
#include "Types/DateTime.h"

#include <algorithm>
#include <sqlite3.h>
#include <stdexcept>

namespace SampleServer {

namespace {

std::string keyOf(std::string_view schema, std::string_view name)
{
    // Neither name can contain a NUL, so different pairs give different keys.
    return foldedName(schema) + '\0' + foldedName(name);
}

template <typename Map>
typename Map::mapped_type foundOrNull(const Map &map, const typename Map::key_type &key)
{
    const auto found = map.find(key);
    return found == map.end() ? typename Map::mapped_type() : found->second;
}

template <typename Map>
std::vector<typename Map::mapped_type> valuesOf(const Map &map)
{
    std::vector<typename Map::mapped_type> values;
    for (const auto &[key, value] : map)
        values.push_back(value);
    return values;
}

} // namespace

TablePtr TableMap::find(std::string_view name) const
{
    return foundOrNull(m_byName, foldedName(name));
}

TablePtr TableMap::findById(std::int64_t id) const
{
    for (const auto &[name, table] : m_byName)
        if (table->id == id)
            return table;
    return nullptr;
}

void TableMap::insert(TablePtr table)
{
    m_byName[foldedName(table->name)] = std::move(table);
}

void TableMap::erase(const Table &table)
{
    m_byName.erase(foldedName(table.name));
}

std::vector<TablePtr> TableMap::all() const
{
    return valuesOf(m_byName);
}

Database::Database(int id, std::string name, std::string uri)
    : m_id(id)
    , m_uri(std::move(uri))
    , m_created(currentLocalTime())
    , m_name(std::move(name))
{
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI;
    if (sqlite3_open_v2(m_uri.c_str(), &m_anchor, flags, nullptr) != SQLITE_OK) {
        sqlite3_close(m_anchor);
        throw std::runtime_error("cannot open an in-memory database");
    }
    static constexpr std::pair<int, const char *> fixed[] = {
        {1, "dbo"}, {2, "guest"}, {3, "INFORMATION_SCHEMA"}, {4, "sys"}};
    for (const auto &[schema, schemaName] : fixed)
        createSchema(schemaName, schema);
}

Database::~Database()
{
    sqlite3_close(m_anchor);
}

std::string Database::name() const
{
    const std::lock_guard lock(m_mutex);
    return m_name;
}

void Database::rename(const std::string &name)
{
    const std::lock_guard lock(m_mutex);
    m_name = name;
}

ObjectPtr Database::find(std::string_view schema, std::string_view name) const
{
    const std::lock_guard lock(m_mutex);
    return foundOrNull(m_byName, keyOf(schema, name));
}

ObjectPtr Database::find(std::int64_t id) const
{
    const std::lock_guard lock(m_mutex);
    return foundOrNull(m_byId, id);
}

TablePtr Database::findTable(std::string_view schema, std::string_view name) const
{
    return std::dynamic_pointer_cast<const Table>(find(schema, name));
}

TablePtr Database::findTable(std::int64_t id) const
{
    return std::dynamic_pointer_cast<const Table>(find(id));
}

TablePtr Database::findConstraint(std::string_view schema, std::string_view name) const
{
    const std::int64_t table = [&] {
        const std::lock_guard lock(m_mutex);
        return foundOrNull(m_constraints, keyOf(schema, name));
    }();
    return findTable(table);
}

TablePtr Database::findConstraint(std::int64_t id) const
{
    const std::int64_t table = [&] {
        const std::lock_guard lock(m_mutex);
        return foundOrNull(m_constraintIds, id);
    }();
    return findTable(table);
}

bool Database::isTaken(std::string_view schema, std::string_view name) const
{
    const std::lock_guard lock(m_mutex);
    const std::string key = keyOf(schema, name);
    return m_byName.contains(key) || m_constraints.contains(key);
}

std::vector<ObjectPtr> Database::objects() const
{
    const std::lock_guard lock(m_mutex);
    return valuesOf(m_byId);
}

std::vector<TablePtr> Database::referencing(std::int64_t table) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<TablePtr> tables;
    for (const std::int64_t child : foundOrNull(m_children, table))
        if (auto found = std::dynamic_pointer_cast<const Table>(foundOrNull(m_byId, child)))
            tables.push_back(std::move(found));
    return tables;
}

std::vector<ModulePtr> Database::triggersOf(std::int64_t parent) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<ModulePtr> triggers;
    for (const std::int64_t trigger : foundOrNull(m_triggers, parent))
        if (auto found = std::dynamic_pointer_cast<const Module>(foundOrNull(m_byId, trigger)))
            triggers.push_back(std::move(found));
    return triggers;
}

/// Updates the look-up tables for constraints, references and triggers.
void Database::note(const ObjectPtr &object, bool present)
{
    const auto mark = [&](auto &map, std::int64_t of) {
        if (present)
            map[of].insert(object->id);
        else
            map[of].erase(object->id);
    };
    if (const auto *table = dynamic_cast<const Table *>(object.get())) {
        for (const ConstraintName *constraint : table->constraints()) {
            const std::string key = keyOf(table->schema, constraint->name);
            if (present) {
                m_constraints[key] = table->id;
                m_constraintIds[constraint->id] = table->id;
            } else {
                m_constraints.erase(key);
                m_constraintIds.erase(constraint->id);
            }
        }
        for (const ForeignKey &key : table->foreignKeys)
            mark(m_children, key.referencedTable);
    }
    if (object->kind == ObjectKind::Trigger)
        mark(m_triggers, dynamic_cast<const Module &>(*object).parent);
}

void Database::insert(ObjectPtr object)
{
    const std::lock_guard lock(m_mutex);
    note(object, true);
    m_byName[keyOf(object->schema, object->name)] = object;
    m_byId[object->id] = object;
}

void Database::erase(const SchemaObject &object)
{
    const std::lock_guard lock(m_mutex);
    const ObjectPtr known = foundOrNull(m_byId, object.id); // may be the last owner of `object`
    if (!known)
        return;
    note(known, false);
    m_byName.erase(keyOf(known->schema, known->name));
    m_byId.erase(known->id);
}

std::optional<Schema> Database::findSchema(std::string_view name) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_schemas.find(foldedName(name));
    return found == m_schemas.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Schema> Database::findSchema(int id) const
{
    for (Schema &schema : schemas())
        if (schema.id == id)
            return std::move(schema);
    return {};
}

std::vector<Schema> Database::schemas() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<Schema> all = valuesOf(m_schemas);
    std::sort(all.begin(), all.end(), [](const auto &left, const auto &right) { return left.id < right.id; });
    return all;
}

Schema Database::createSchema(const std::string &name, int id)
{
    const std::lock_guard lock(m_mutex);
    const Schema schema{id != 0 ? id : m_nextSchema++, name};
    m_schemas[foldedName(name)] = schema;
    return schema;
}

void Database::eraseSchema(const Schema &schema)
{
    const std::lock_guard lock(m_mutex);
    m_schemas.erase(foldedName(schema.name));
}

UserTypePtr Database::findType(std::string_view schema, std::string_view name) const
{
    const std::lock_guard lock(m_mutex);
    return foundOrNull(m_types, keyOf(schema, name));
}

std::vector<UserTypePtr> Database::types() const
{
    const std::lock_guard lock(m_mutex);
    return valuesOf(m_types);
}

int Database::newTypeId()
{
    const std::lock_guard lock(m_mutex);
    return m_nextType++;
}

void Database::insertType(UserTypePtr type)
{
    const std::lock_guard lock(m_mutex);
    m_types[keyOf(type->schema, type->name)] = std::move(type);
}

void Database::eraseType(const UserType &type)
{
    const std::lock_guard lock(m_mutex);
    m_types.erase(keyOf(type.schema, type.name));
}

std::vector<ExtendedProperty> Database::properties() const
{
    const std::lock_guard lock(m_mutex);
    return m_properties;
}

void Database::setProperties(std::vector<ExtendedProperty> properties)
{
    const std::lock_guard lock(m_mutex);
    m_properties = std::move(properties);
}

DatabasePtr DatabaseList::find(std::string_view name) const
{
    const std::lock_guard lock(m_mutex);
    return foundOrNull(m_byName, foldedName(name));
}

DatabasePtr DatabaseList::find(int id) const
{
    const std::lock_guard lock(m_mutex);
    for (const auto &[name, database] : m_byName)
        if (database->id() == id)
            return database;
    return nullptr;
}

std::vector<DatabasePtr> DatabaseList::all() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<DatabasePtr> databases = valuesOf(m_byName);
    std::sort(databases.begin(), databases.end(),
              [](const auto &left, const auto &right) { return left->id() < right->id(); });
    return databases;
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

bool DatabaseList::rename(Database &database, const std::string &name)
{
    const std::lock_guard lock(m_mutex);
    const std::string before = foldedName(database.name()), after = foldedName(name);
    if (before != after) {
        if (m_byName.contains(after))
            return false;
        m_byName[after] = m_byName[before];
        m_byName.erase(before);
    }
    database.rename(name);
    return true;
}

void DatabaseList::erase(const Database &database)
{
    const std::lock_guard lock(m_mutex);
    m_byName.erase(foldedName(database.name()));
}

} // namespace SampleServer
