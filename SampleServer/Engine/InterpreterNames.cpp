#include "Engine/Errors.h"
#include "Engine/Interpreter.h"
#include "Engine/NameText.h"
#include "Types/Collation.h"

#include <utility>

namespace SampleServer {

namespace {

bool isTemporary(const std::string &name)
{
    return name.starts_with('@') || (name.starts_with('#') && !name.starts_with("##"));
}

} // namespace

DatabasePtr Interpreter::findDatabase(const std::string &name) const
{
    return name.empty() ? m_database : m_state.databases.find(name);
}

std::string Interpreter::fullName(const Table &table) const
{
    const DatabasePtr database =
        table.database == 0 ? m_state.databases.find("tempdb") : m_state.databases.find(table.database);
    return (database ? database->name() + '.' : std::string()) + table.schema + '.' + table.name;
}

Bound::TableScan Interpreter::findOrNull(const Ast::ObjectName &name)
{
    if (isTemporary(name.object()))
        return {findTemporary(name.object()), "temp", nullptr};
    // Global temporary tables live in tempdb, wherever they are named.
    const DatabasePtr database = findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
    if (!database || !name.qualifier(3).empty())
        return {};
    const std::string schema = name.qualifier(1).empty() ? "dbo" : name.qualifier(1);
    TablePtr table = database->findTable(schema, name.object());
    if (!table) {
        // It may be about to come back: whoever dropped it may still roll back.
        m_transactions.useDefinitions(*database);
        table = database->findTable(schema, name.object());
    }
    return {table, SqliteConnection::schemaName(*database), database};
}

/// A temporary table of this text or of one that runs it, or a table variable of this text.
TablePtr Interpreter::findTemporary(const std::string &name) const
{
    for (const Frame *frame = m_frame; frame; frame = frame->outer) {
        if (TablePtr table = frame->tables.find("dbo", name))
            return table;
        if (name.starts_with('@'))
            break;
    }
    return nullptr;
}

void Interpreter::eraseTemporary(const Table &table)
{
    for (Frame *frame = m_frame; frame; frame = frame->outer)
        if (frame->tables.findById(table.id))
            return frame->tables.erase(table);
}

Bound::TableScan Interpreter::findTable(const Ast::ObjectName &name)
{
    if (!name.qualifier(3).empty())
        throw Errors::notSupported("names with a server part");
    const Bound::TableScan scan = findOrNull(name);
    if (!scan.table)
        throw Errors::invalidObject(name.toString());
    m_uses.push_back({scan.database, scan.table, TableUse::Access::Definition});
    return scan;
}

void Interpreter::willRead(const Bound::TableScan &scan, bool readUncommitted)
{
    const auto access = readUncommitted ? TableUse::Access::ReadUncommitted : TableUse::Access::Read;
    m_uses.push_back({scan.database, scan.table, access});
}

void Interpreter::willWrite(const Bound::TableScan &scan)
{
    m_uses.push_back({scan.database, scan.table, TableUse::Access::Write});
}

void Interpreter::lockUses()
{
    const std::vector<TableUse> uses = std::exchange(m_uses, {});
    m_transactions.lock(uses);
    for (const TableUse &use : uses) {
        if (!use.database)
            continue;
        if (use.database->findTable(use.table->schema, use.table->name) != use.table)
            throw DefinitionsChanged();
        m_connection.attach(use.database);
    }
}

void Interpreter::provideNames()
{
    m_context.objectId = [this](const std::string &text) -> std::optional<std::int64_t> {
        const Ast::ObjectName name = nameFromText(text);
        if (name.parts.empty() || name.object().empty())
            return {};
        if (const DatabasePtr database = findDatabase(name.qualifier(2)))
            m_transactions.useDefinitions(*database);
        const Bound::TableScan scan = findOrNull(name);
        return scan.table ? std::optional(scan.table->id) : std::nullopt;
    };
    m_context.objectName = [this](std::int64_t id) -> std::optional<std::string> {
        const TablePtr table = m_database->findTable(id);
        return table ? std::optional(table->name) : std::nullopt;
    };
    m_context.databaseId = [this](const std::string &name) -> std::optional<std::int64_t> {
        const DatabasePtr database = findDatabase(name);
        return database ? std::optional<std::int64_t>(database->id()) : std::nullopt;
    };
    m_context.databaseName = [this](std::int64_t id) -> std::optional<std::string> {
        const DatabasePtr database = m_state.databases.find(static_cast<int>(id));
        return database ? std::optional(database->name()) : std::nullopt;
    };
    m_context.variable = [this](const std::string &name) {
        const VariableSlot *slot = m_frame->variables.find(name);
        return slot ? slot->value : Value();
    };
}

} // namespace SampleServer
