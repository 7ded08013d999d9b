#include "Engine/Run/IndexExecutor.h"
#include "Engine/Errors.h"
#include "Engine/Run/RowWriter.h"
#include "Engine/Run/TableBuilder.h"
#include "Types/Collation.h"

#include <algorithm>
#include <set>
#include <utility>

namespace SampleServer {

namespace {

EngineError noSuchIndex(const Ast::DropIndex::Item &item)
{
    return {3701, 11, 7,
            "Cannot drop the index '" + item.table.toString() + '.' + item.name +
                "', because it does not exist or you do not have permission."};
}

EngineError noObjectForIndex(const Ast::ObjectName &table)
{
    return {1088, 16, 12,
            "Cannot find the object \"" + table.toString() +
                "\" because it does not exist or you do not have permissions.",
            ErrorEffect::EndsBatch};
}

} // namespace

void IndexExecutor::createIndex(const Bound::TableScan &scan, TableIndex &index)
{
    try {
        m_store.createPhysicalIndex(scan, index);
    } catch (const SqliteConstraintError &) {
        requireUniqueRows(scan, index, "CREATE UNIQUE INDEX");
    }
}

void IndexExecutor::requireUniqueRows(const Bound::TableScan &scan, const TableIndex &index,
                                      const char *statement)
{
    std::set<std::string> seen;
    RowWriter writer(m_queries, scan);
    const auto rows = writer.readAll();
    for (const auto &[id, row] : rows) {
        if (!writer.matchesFilter(index, id))
            continue;
        const std::string key = keyText(*scan.table, index, row);
        if (seen.insert(foldedName(key)).second)
            continue;
        throw EngineError(
            1505, 16, 1,
            std::string("The ") + statement +
                " statement terminated because a duplicate key was found for the object name '" +
                scan.table->schema + '.' + scan.table->name + "' and the index name '" + index.name +
                "'. The duplicate key value is " + key + '.');
    }
}

void IndexExecutor::run(const Ast::CreateIndex &node)
{
    const FoundObject found = m_names.findObject(node.table);
    if (found.object && found.object->kind == ObjectKind::View)
        return createViewIndex(node, found);
    const Bound::TableScan scan = m_names.findOrNull(node.table);
    if (!scan.table)
        throw noObjectForIndex(node.table);
    if (scan.database) {
        m_session.transactions.changeDefinitions(*scan.database);
        m_session.connection.attach(scan.database);
    }
    Transactions::Change change(m_session.transactions);
    Table changed = *scan.table;
    if (const TableIndex *existing = node.options.dropExisting ? changed.findIndex(node.name) : nullptr) {
        if (!existing->physicalName.empty())
            m_session.connection.execute("DROP INDEX " + scan.schema + '.' + existing->physicalName);
        std::erase_if(changed.indexes, [&](const TableIndex &index) {
            return foldedName(index.name) == foldedName(node.name);
        });
    }
    TableBuilder builder(m_queries, std::move(changed), scan.database);
    builder.addIndex(node);
    changed = builder.take();
    TableIndex &index = changed.indexes.back();
    createIndex(scan, index);
    if (index.unique)
        requireUniqueRows(scan, index, "CREATE UNIQUE INDEX");
    m_store.replaceTable(scan, std::move(changed));
    change.finish();
    m_session.evaluation.rowCount = 0;
}

/// An index of a view exists only in the catalog: queries do not use it, and uniqueness is not enforced.
void IndexExecutor::createViewIndex(const Ast::CreateIndex &node, const FoundObject &found)
{
    const auto &view = dynamic_cast<const Module &>(*found.object);
    if (!view.definition->schemaBound)
        throw EngineError(1939, 16, 1,
                          "Cannot create index on view '" + view.name +
                              "' because the view is not schema bound.",
                          ErrorEffect::EndsBatch);
    if (!view.indexed && !(node.unique && node.clustered))
        throw EngineError(1940, 16, 1,
                          "Cannot create index on view '" + view.schema + '.' + view.name +
                              "'. It does not have a unique clustered index.",
                          ErrorEffect::EndsBatch);
    m_session.transactions.changeDefinitions(*found.database);
    Transactions::Change change(m_session.transactions);
    Table shape = view.indexed ? *view.indexed : Table();
    shape.id = view.id;
    shape.database = view.database;
    shape.schema = view.schema;
    shape.name = view.name;
    shape.kind = ObjectKind::View;
    shape.columns = view.columns;
    TableBuilder builder(m_queries, std::move(shape), found.database);
    builder.addIndex(node);
    auto changed = std::make_shared<Module>(view);
    changed->indexed = std::make_shared<const Table>(builder.take());
    m_store.replaceObject(found.database, found.object, changed);
    change.finish();
    m_session.evaluation.rowCount = 0;
}

/// Whether the index belonged to a view. Without its clustered index a view has no other indexes.
bool IndexExecutor::dropViewIndex(const Ast::DropIndex::Item &item)
{
    const FoundObject found = m_names.findObject(item.table);
    const auto *view = dynamic_cast<const Module *>(found.object.get());
    const TableIndex *index = view && view->indexed ? view->indexed->findIndex(item.name) : nullptr;
    if (!index)
        return false;
    m_session.transactions.changeDefinitions(*found.database);
    Transactions::Change change(m_session.transactions);
    Table shape = *view->indexed;
    std::erase_if(shape.indexes, [&](const TableIndex &other) { return other.id == index->id; });
    auto changed = std::make_shared<Module>(*view);
    changed->indexed = index->isClustered() ? nullptr : std::make_shared<const Table>(std::move(shape));
    m_store.replaceObject(found.database, found.object, changed);
    change.finish();
    return true;
}

void IndexExecutor::run(const Ast::AlterIndex &node)
{
    const Bound::TableScan scan = m_names.findOrNull(node.table);
    if (!scan.table)
        throw noObjectForIndex(node.table);
    if (scan.database) {
        m_session.transactions.changeDefinitions(*scan.database);
        m_session.connection.attach(scan.database);
    }
    if (!node.name.empty() && !scan.table->findIndex(node.name))
        throw EngineError(2727, 11, 1, "Cannot find index '" + node.name + "'.");
    if (node.action == Ast::AlterIndex::Action::None)
        return;
    const bool disable = node.action == Ast::AlterIndex::Action::Disable;
    Transactions::Change change(m_session.transactions);
    Table changed = *scan.table;
    for (TableIndex &index : changed.indexes) {
        if (!node.name.empty() && foldedName(index.name) != foldedName(node.name))
            continue;
        const bool wasDisabled = std::exchange(index.disabled, disable);
        if (disable && !index.physicalName.empty()) {
            m_session.connection.execute("DROP INDEX " + scan.schema + '.' + index.physicalName);
            index.physicalName.clear();
        }
        if (!disable && wasDisabled) {
            createIndex(scan, index);
            if (index.unique)
                requireUniqueRows(scan, index, "ALTER INDEX");
        }
    }
    m_store.replaceTable(scan, std::move(changed));
    change.finish();
}

void IndexExecutor::run(const Ast::DropIndex &node)
{
    for (const Ast::DropIndex::Item &item : node.items) {
        if (dropViewIndex(item))
            continue;
        const Bound::TableScan scan = m_names.findOrNull(item.table);
        const TableIndex *index = scan.table ? scan.table->findIndex(item.name) : nullptr;
        if (!index) {
            if (node.ifExists)
                continue;
            throw noSuchIndex(item);
        }
        if (index->isKey())
            throw EngineError(3723, 16, 4,
                              "An explicit DROP INDEX is not allowed on index '" + item.table.toString() +
                                  '.' + index->name + "'. It is being used for " +
                                  (index->role == TableIndex::Role::PrimaryKey ? "PRIMARY" : "UNIQUE") +
                                  " KEY constraint enforcement.");
        if (scan.database) {
            m_session.transactions.changeDefinitions(*scan.database);
            m_session.connection.attach(scan.database);
        }
        Transactions::Change change(m_session.transactions);
        if (!index->physicalName.empty())
            m_session.connection.execute("DROP INDEX " + scan.schema + '.' + index->physicalName);
        Table changed = *scan.table;
        std::erase_if(changed.indexes, [&](const TableIndex &other) {
            return foldedName(other.name) == foldedName(item.name);
        });
        m_store.replaceTable(scan, std::move(changed));
        change.finish();
    }
}

} // namespace SampleServer
