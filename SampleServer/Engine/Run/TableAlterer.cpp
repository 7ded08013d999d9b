#include "Engine/Run/TableAlterer.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Emit/Emitter.h"
#include "Engine/Errors.h"
#include "Engine/Run/RowWriter.h"
#include "Engine/Run/TableBuilder.h"
#include "Engine/Run/TableChange.h"
#include "Types/Collation.h"

#include <algorithm>

namespace SampleServer {

namespace {

bool isNamed(const std::vector<std::string> &names, const std::string &name)
{
    return names.empty() || std::any_of(names.begin(), names.end(), [&](const std::string &other) {
               return foldedName(other) == foldedName(name);
           });
}

/// Adjusts a list of positions after the column `removed` was removed.
void removePlace(std::vector<std::size_t> &places, std::size_t removed)
{
    for (std::size_t &place : places)
        place -= place > removed ? 1 : 0;
}

EngineError dependsOnColumn(const std::string &what, const std::string &object, const std::string &column,
                            bool dropping)
{
    const EngineError error(5074, 16, 1,
                            "The " + what + " '" + object + "' is dependent on column '" + column + "'.",
                            ErrorEffect::EndsBatch);
    return error.followedBy(4922, 9,
                            std::string("ALTER TABLE ") + (dropping ? "DROP" : "ALTER") + " COLUMN " +
                                column + " failed because one or more objects access this column.");
}

/// Throws if another object refers to a column to be dropped or changed.
void requireIndependent(const Table &table, std::size_t column, bool dropping)
{
    const std::string &name = table.columns[column].name;
    const auto uses = [column](const std::vector<std::size_t> &places) {
        return std::find(places.begin(), places.end(), column) != places.end();
    };
    for (const TableIndex &index : table.indexes)
        if (uses(index.columns) && (dropping || index.isKey()))
            throw dependsOnColumn(index.isKey() ? "object" : "index", index.name, name, dropping);
    for (const ForeignKey &key : table.foreignKeys)
        if (uses(key.columns))
            throw dependsOnColumn("object", key.constraint.name, name, dropping);
    for (const CheckConstraint &check : table.checks)
        if (check.columnId == table.columns[column].id ||
            check.condition.text.find('[' + name + ']') != std::string::npos)
            throw dependsOnColumn("object", check.constraint.name, name, dropping);
    for (const TableColumn &other : table.columns)
        if (other.computed && other.computed.text.find('[' + name + ']') != std::string::npos)
            throw dependsOnColumn("column", other.name, name, dropping);
    if (dropping && table.columns[column].defaultValue)
        throw dependsOnColumn("object", table.columns[column].defaultName.name, name, dropping);
}

} // namespace

Bound::TableScan TableAlterer::tableToAlter(const Ast::ObjectName &name)
{
    const DatabasePtr database =
        name.isTemporaryTable()
            ? nullptr
            : m_names.findDatabase(name.object().starts_with("##") ? "tempdb" : name.qualifier(2));
    if (database)
        m_session.transactions.changeDefinitions(*database);
    const Bound::TableScan scan = m_names.findOrNull(name);
    if (!scan.table)
        throw EngineError(4902, 16, 1,
                          "Cannot find the object \"" + name.toString() +
                              "\" because it does not exist or you do not have permissions.",
                          ErrorEffect::EndsBatch);
    if (database)
        m_session.connection.attach(database);
    return scan;
}

void TableAlterer::run(const Ast::AlterTable &node)
{
    if (node.action == Ast::AlterTable::Action::EnableTriggers) {
        const FoundObject found = m_names.findObject(node.name);
        if (found.object && found.object->kind == ObjectKind::View) {
            m_session.transactions.changeDefinitions(*found.database);
            throw Errors::notSupported("enabling triggers of views");
        }
    }
    const Bound::TableScan scan = tableToAlter(node.name);
    Transactions::Change change(m_session.transactions);
    switch (node.action) {
    case Ast::AlterTable::Action::Add:
        addToTable(node, scan);
        break;
    case Ast::AlterTable::Action::AlterColumn:
        alterColumn(node, scan);
        break;
    case Ast::AlterTable::Action::Drop:
        dropFromTable(node, scan);
        break;
    case Ast::AlterTable::Action::EnableConstraints:
        enableConstraints(node, scan);
        break;
    case Ast::AlterTable::Action::EnableTriggers:
        enableTriggers(node, scan);
        break;
    }
    change.finish();
    m_session.evaluation.rowCount = 0;
}

void TableAlterer::addToTable(const Ast::AlterTable &node, const Bound::TableScan &scan)
{
    TableBuilder builder(m_queries, *scan.table, scan.database);
    for (const Ast::ColumnDefinition &column : node.added.columns)
        builder.addColumn(column);
    builder.typeComputedColumns();
    for (const Ast::Constraint &constraint : node.added.constraints)
        builder.addConstraint(constraint, node.checkExisting);
    for (const Ast::CreateIndex &index : node.added.indexes)
        builder.addIndex(index);
    Table changed = builder.take();
    const std::size_t firstNew = scan.table->columns.size();
    const bool hasRows = RowWriter(m_queries, scan).hasRows();
    for (std::size_t i = firstNew; i < changed.columns.size(); ++i) {
        const TableColumn &column = changed.columns[i];
        if (!column.computed)
            addStoredColumn(scan, changed, column, hasRows, node.added.columns[i - firstNew].withValues);
    }
    const Bound::TableScan after = m_store.scanOf(std::make_shared<const Table>(changed), scan.database);
    for (std::size_t i = scan.table->indexes.size(); i < changed.indexes.size(); ++i) {
        m_indexes.createIndex(after, changed.indexes[i]);
        if (changed.indexes[i].unique)
            m_indexes.requireUniqueRows(after, changed.indexes[i], "CREATE UNIQUE INDEX");
    }
    if (node.checkExisting && hasRows)
        requireConstraints(after, *scan.table);
    m_store.replaceTable(scan, std::move(changed));
}

void TableAlterer::addStoredColumn(const Bound::TableScan &scan, const Table &changed,
                                   const TableColumn &column, bool hasRows, bool withValues)
{
    if (hasRows && column.rowVersion)
        throw Errors::notSupported("adding a rowversion column to a table with rows");
    if (hasRows && !column.nullable && !column.defaultValue && !column.identity)
        throw EngineError(
            4901, 16, 1,
            "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT "
            "definition specified, or the column being added is an identity or timestamp column, or "
            "alternatively if none of the previous conditions are satisfied the table must be empty to "
            "allow "
            "addition of this column. Column '" +
                column.name + "' cannot be added to non-empty table '" + changed.name +
                "' because it does not satisfy these conditions.",
            ErrorEffect::EndsBatch);
    m_session.connection.execute("ALTER TABLE " + scan.schema + '.' + changed.physicalName() +
                                 " ADD COLUMN " + column.physicalName() + collationOf(column.type));
    const bool fills = !column.nullable || withValues;
    if (hasRows && column.identity)
        RowWriter(m_queries, scan).numberRows(column, *changed.identity);
    else if (hasRows && column.defaultValue && fills)
        fillColumn(scan, column,
                   m_queries.binder().bindValueAs(*column.defaultValue.expression, column.type));
}

/// Throws error 547 if rows violate a new constraint.
void TableAlterer::requireConstraints(const Bound::TableScan &scan, const Table &before)
{
    TableChange change(m_queries, m_triggers, scan, TableChange::Event::Alter);
    for (std::size_t i = before.checks.size(); i < scan.table->checks.size(); ++i)
        change.requireCheck(scan.table->checks[i]);
    for (std::size_t i = before.foreignKeys.size(); i < scan.table->foreignKeys.size(); ++i)
        change.requireForeignKey(scan.table->foreignKeys[i]);
}

void TableAlterer::fillColumn(const Bound::TableScan &scan, const TableColumn &column,
                              const Bound::ExpressionPtr &value)
{
    const Emitted emitted = emitExpression(*value);
    SqliteStatement statement(m_session.connection, "UPDATE " + scan.schema + '.' +
                                                        scan.table->physicalName() + " SET " +
                                                        column.physicalName() + " = " + emitted.sql);
    statement.bind(emitted.parameters);
    statement.step();
}

void TableAlterer::alterColumn(const Ast::AlterTable &node, const Bound::TableScan &scan)
{
    const Ast::ColumnDefinition &definition = node.added.columns[0];
    const auto place = scan.table->findColumn(definition.name);
    if (!place)
        throw EngineError(4924, 16, 1,
                          "ALTER TABLE ALTER COLUMN failed because column '" + definition.name +
                              "' does not exist in table '" + scan.table->name + "'.",
                          ErrorEffect::EndsBatch);
    Table changed = *scan.table;
    TableColumn &column = changed.columns[*place];
    if (node.setRowGuid || node.setSparse) {
        column.rowGuid = node.setRowGuid.value_or(column.rowGuid);
        column.sparse = node.setSparse.value_or(column.sparse);
        return m_store.replaceTable(scan, std::move(changed));
    }
    if (column.computed)
        throw EngineError(4928, 16, 1, "Cannot alter column '" + column.name + "' because it is 'COMPUTED'.",
                          ErrorEffect::EndsBatch);
    const NamedType named = m_names.findType(definition.type, column.id);
    const TableColumn before = column;
    if (named.type != before.type) {
        requireIndependent(*scan.table, *place, false);
        requireConversion(before.type, named.type, true);
    }
    column.type = named.type;
    column.userType = named.userType;
    column.nullable = definition.nullable.value_or(true);
    column.sparse = definition.sparse;
    RowWriter writer(m_queries, scan);
    if (!column.nullable)
        writer.requireNoNulls(*place);
    if (named.type != before.type) {
        // The values move to a new column, which SQLite compares by the rules of the new type.
        column.storage = ++changed.lastColumnId;
        m_session.connection.execute("ALTER TABLE " + scan.schema + '.' + changed.physicalName() +
                                     " ADD COLUMN " + column.physicalName() + collationOf(column.type));
        writer.convertColumn(before, column);
        const Bound::TableScan after = m_store.scanOf(std::make_shared<const Table>(changed), scan.database);
        for (TableIndex &index : changed.indexes)
            if (std::find(index.columns.begin(), index.columns.end(), *place) != index.columns.end() &&
                !index.physicalName.empty()) {
                m_session.connection.execute("DROP INDEX " + scan.schema + '.' + index.physicalName);
                m_indexes.createIndex(after, index);
            }
    }
    m_store.replaceTable(scan, std::move(changed));
}

void TableAlterer::dropFromTable(const Ast::AlterTable &node, const Bound::TableScan &scan)
{
    Table changed = *scan.table;
    for (const Ast::AlterTable::Dropped &item : node.dropped) {
        if (item.isColumn) {
            const auto place = changed.findColumn(item.name);
            if (!place && item.ifExists)
                continue;
            if (!place)
                throw EngineError(4924, 16, 1,
                                  "ALTER TABLE DROP COLUMN failed because column '" + item.name +
                                      "' does not exist in table '" + changed.name + "'.",
                                  ErrorEffect::EndsBatch);
            requireIndependent(changed, *place, true);
            const auto isData = [](const TableColumn &column) { return !column.computed; };
            if (!changed.columns[*place].computed &&
                std::count_if(changed.columns.begin(), changed.columns.end(), isData) == 1)
                throw EngineError(4923, 16, 1,
                                  "ALTER TABLE DROP COLUMN failed because '" + changed.columns[*place].name +
                                      "' is the only data column in table '" + changed.name +
                                      "'. A table must have at least one data column.",
                                  ErrorEffect::EndsBatch);
            if (changed.columns[*place].identity)
                changed.identity = nullptr;
            changed.columns.erase(changed.columns.begin() + static_cast<std::ptrdiff_t>(*place));
            for (TableIndex &index : changed.indexes) {
                std::erase(index.included, *place);
                removePlace(index.columns, *place);
                removePlace(index.included, *place);
            }
            for (ForeignKey &key : changed.foreignKeys)
                removePlace(key.columns, *place);
            continue;
        }
        dropConstraint(scan, changed, item.name, item.ifExists);
    }
    m_store.replaceTable(scan, std::move(changed));
}

void TableAlterer::dropConstraint(const Bound::TableScan &scan, Table &changed, const std::string &name,
                                  bool ifExists)
{
    const std::string folded = foldedName(name);
    const std::size_t before = changed.constraints().size();
    for (const TableIndex &index : changed.indexes)
        if (index.isKey() && foldedName(index.name) == folded) {
            for (const TablePtr &other :
                 scan.database ? scan.database->referencing(changed.id) : std::vector<TablePtr>())
                for (const ForeignKey &key : other->foreignKeys) {
                    std::vector<int> ids;
                    for (const std::size_t column : index.columns)
                        ids.push_back(changed.columns[column].id);
                    if (key.referencedTable == changed.id &&
                        std::is_permutation(ids.begin(), ids.end(), key.referencedColumns.begin(),
                                            key.referencedColumns.end()))
                        throw EngineError(3725, 16, 0,
                                          "The constraint '" + index.name +
                                              "' is being referenced by table '" + other->name +
                                              "', foreign key constraint '" + key.constraint.name + "'.",
                                          ErrorEffect::EndsBatch)
                            .followedBy(3727, 0, "Could not drop constraint. See previous errors.");
                }
            if (!index.physicalName.empty())
                m_session.connection.execute("DROP INDEX " + scan.schema + '.' + index.physicalName);
        }
    std::erase_if(changed.indexes,
                  [&](const TableIndex &index) { return index.isKey() && foldedName(index.name) == folded; });
    std::erase_if(changed.foreignKeys,
                  [&](const ForeignKey &key) { return foldedName(key.constraint.name) == folded; });
    std::erase_if(changed.checks,
                  [&](const CheckConstraint &check) { return foldedName(check.constraint.name) == folded; });
    for (TableColumn &column : changed.columns)
        if (column.defaultValue && foldedName(column.defaultName.name) == folded)
            column.defaultValue = {};
    if (changed.constraints().size() == before && !ifExists)
        throw EngineError(3728, 16, 1, "'" + name + "' is not a constraint.", ErrorEffect::EndsBatch)
            .followedBy(3727, 0, "Could not drop constraint. See previous errors.");
}

void TableAlterer::enableConstraints(const Ast::AlterTable &node, const Bound::TableScan &scan)
{
    Table changed = *scan.table;
    for (const std::string &name : node.names) {
        const auto all = changed.constraints();
        if (std::none_of(all.begin(), all.end(), [&](const ConstraintName *other) {
                return foldedName(other->name) == foldedName(name);
            }))
            throw EngineError(4917, 16, 0, "Constraint '" + name + "' does not exist.",
                              ErrorEffect::EndsBatch);
    }
    TableChange change(m_queries, m_triggers, scan, TableChange::Event::Alter);
    for (ForeignKey &key : changed.foreignKeys)
        if (isNamed(node.names, key.constraint.name)) {
            if (node.enable && node.checkExisting)
                change.requireForeignKey(key);
            key.enabled = node.enable;
            key.trusted = node.enable && (node.checkExisting || key.trusted);
        }
    for (CheckConstraint &check : changed.checks)
        if (isNamed(node.names, check.constraint.name)) {
            if (node.enable && node.checkExisting)
                change.requireCheck(check);
            check.enabled = node.enable;
            check.trusted = node.enable && (node.checkExisting || check.trusted);
        }
    m_store.replaceTable(scan, std::move(changed));
}

void TableAlterer::enableTriggers(const Ast::AlterTable &node, const Bound::TableScan &scan)
{
    if (!scan.database)
        return;
    std::size_t found = 0;
    for (const ModulePtr &trigger : scan.database->triggersOf(scan.table->id)) {
        if (!isNamed(node.names, trigger->name))
            continue;
        ++found;
        auto changed = std::make_shared<Module>(*trigger);
        changed->disabled = !node.enable;
        changed->modified = m_session.evaluation.statementTime;
        m_store.replaceObject(scan.database, trigger, changed);
    }
    if (found < node.names.size())
        throw EngineError(4920, 16, 0,
                          "ALTER TABLE failed because trigger '" + node.names[0] + "' on table '" +
                              scan.table->name + "' does not exist.",
                          ErrorEffect::EndsBatch);
}

} // namespace SampleServer
