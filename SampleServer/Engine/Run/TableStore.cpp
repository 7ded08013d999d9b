#include "Engine/Run/TableStore.h"
#include "Engine/Emit/Emitter.h"

#include <algorithm>

namespace SampleServer {

Bound::TableScan TableStore::scanOf(const TablePtr &table, const DatabasePtr &database)
{
    return {table, database ? SqliteConnection::schemaName(*database) : "temp", database};
}

/// Creates SQLite's table and its indexes.
void TableStore::createStorage(Table &definition, const DatabasePtr &database)
{
    if (database)
        m_session.connection.attach(database);
    std::string columns;
    for (const TableColumn &column : definition.columns)
        if (!column.computed)
            columns += (columns.empty() ? "" : ", ") + column.physicalName() + collationOf(column.type);
    const std::string schema = database ? SqliteConnection::schemaName(*database) : "temp";
    m_session.connection.execute("CREATE TABLE " + schema + '.' + definition.physicalName() + '(' + columns +
                                 ')');
    for (TableIndex &index : definition.indexes)
        createPhysicalIndex({std::make_shared<const Table>(definition), schema, database}, index);
}

/// SQLite gets no index on computed columns, which it does not store, and no filtered index, whose filter the
/// engine applies.
void TableStore::createPhysicalIndex(const Bound::TableScan &scan, TableIndex &index)
{
    const Table &table = *scan.table;
    const bool plain = std::none_of(index.columns.begin(), index.columns.end(), [&](std::size_t column) {
        return table.columns[column].computed.expression != nullptr;
    });
    if (!plain || index.filter || index.disabled)
        return;
    const std::string name = 'k' + std::to_string(newObjectId());
    std::string columns;
    for (const std::size_t column : index.columns)
        columns += (columns.empty() ? "" : ", ") + table.columns[column].physicalName();
    m_session.connection.execute(std::string("CREATE ") + (index.unique ? "UNIQUE " : "") + "INDEX " +
                                 scan.schema + '.' + name + " ON " + table.physicalName() + '(' + columns +
                                 ')');
    index.physicalName = name;
}

TablePtr TableStore::stored(const TablePtr &table, const DatabasePtr &database)
{
    if (!table || table->isStored)
        return table;
    m_session.transactions.changeDefinitions(*database);
    const TablePtr now = database->findTable(table->id);
    if (!now || now->isStored)
        return now;
    Transactions::Change change(m_session.transactions);
    auto result = std::make_shared<Table>(*now);
    result->isStored = true;
    createStorage(*result, database);
    replaceObject(database, now, result);
    change.finish();
    return result;
}

Bound::TableScan TableStore::createTable(Table definition, const DatabasePtr &database)
{
    if (definition.id == 0)
        definition.id = newObjectId();
    definition.storage = definition.id;
    definition.database = database ? database->id() : 0;
    definition.created = definition.modified = m_session.evaluation.statementTime;
    createStorage(definition, database);
    const TablePtr table = std::make_shared<const Table>(std::move(definition));
    if (database) {
        database->insert(table);
        m_session.transactions.onRollback([database, table] { database->erase(*table); });
    } else {
        m_session.frame->tables.insert(table);
        m_session.transactions.onRollback([this, table] { eraseTemporary(*table); });
    }
    return scanOf(table, database);
}

void TableStore::declareTable(const std::string &name, Table definition)
{
    definition.kind = ObjectKind::Table;
    definition.name = name;
    definition.id = newObjectId();
    if (definition.identity)
        definition.identity =
            std::make_shared<IdentityCounter>(definition.identity->seed(), definition.identity->increment());
    Transactions::Change change(m_session.transactions);
    createTable(std::move(definition), nullptr);
    change.finish();
}

void TableStore::replaceObject(const DatabasePtr &database, const ObjectPtr &before, ObjectPtr after)
{
    if (before)
        database->erase(*before);
    if (after)
        database->insert(after);
    m_session.transactions.onRollback([database, before, after] {
        if (after)
            database->erase(*after);
        if (before)
            database->insert(before);
    });
}

void TableStore::replaceTable(const Bound::TableScan &scan, Table changed)
{
    changed.modified = m_session.evaluation.statementTime;
    const TablePtr before = scan.table, after = std::make_shared<const Table>(std::move(changed));
    if (scan.database)
        return replaceObject(scan.database, before, after);
    eraseTemporary(*before);
    m_session.frame->tables.insert(after);
    m_session.transactions.onRollback([this, before, after] {
        eraseTemporary(*after);
        m_session.frame->tables.insert(before);
    });
}

TablePtr TableStore::findTemporary(const std::string &name) const
{
    for (const Frame *frame = m_session.frame; frame; frame = frame->outer) {
        if (TablePtr table = frame->tables.find(name))
            return table;
        if (TablePtr table = frame->tableParameters.find(name))
            return table;
        if (name.starts_with('@'))
            break;
    }
    return nullptr;
}

void TableStore::eraseTemporary(const Table &table)
{
    for (Frame *frame = m_session.frame; frame; frame = frame->outer)
        if (frame->tables.findById(table.id))
            return frame->tables.erase(table);
}

void TableStore::dropTables(TableMap &tables, bool variablesOnly)
{
    for (const TablePtr &table : tables.all()) {
        if (variablesOnly && !table->name.starts_with('@'))
            continue;
        m_session.connection.dropTemporary(table->physicalName());
        tables.erase(*table);
    }
}

} // namespace SampleServer
