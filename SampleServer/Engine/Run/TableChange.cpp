#include "Engine/Run/TableChange.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Run/TriggerRunner.h"
#include "Types/Collation.h"

#include <algorithm>

namespace SampleServer {

namespace {

bool handles(const Module &trigger, TableChange::Event event)
{
    const Ast::ModuleDefinition &definition = *trigger.definition;
    if (trigger.disabled || definition.insteadOf)
        return false;
    return event == TableChange::Event::Insert   ? definition.onInsert
           : event == TableChange::Event::Update ? definition.onUpdate
           : event == TableChange::Event::Delete ? definition.onDelete
                                                 : false;
}

bool overlaps(const std::vector<std::size_t> &left, const std::vector<std::size_t> &right)
{
    return std::any_of(left.begin(), left.end(), [&](std::size_t column) {
        return std::find(right.begin(), right.end(), column) != right.end();
    });
}

std::vector<Value> valuesAt(const std::vector<Value> &row, const std::vector<std::size_t> &places)
{
    std::vector<Value> values;
    for (const std::size_t place : places)
        values.push_back(row[place]);
    return values;
}

/// The name of the only column of a check; empty if there are several.
std::string checkedColumn(const Table &table, const CheckConstraint &check)
{
    std::string only;
    for (const TableColumn &column : table.columns) {
        if (check.condition.text.find('[' + column.name + ']') == std::string::npos)
            continue;
        if (!only.empty())
            return {};
        only = column.name;
    }
    return only;
}

std::vector<std::size_t> placesOf(const Table &table, const std::vector<int> &columnIds)
{
    std::vector<std::size_t> places;
    for (const int id : columnIds)
        places.push_back(*table.findColumnById(id));
    return places;
}

} // namespace

TableChange::TableChange(QueryExecutor &queries, TriggerRunner &triggers, const Bound::TableScan &scan,
                         Event event, const std::vector<std::size_t> &columns)
    : m_queries(queries)
    , m_triggerRunner(triggers)
    , m_scan(scan)
    , m_event(event)
    , m_columns(columns)
    , m_writer(queries, scan)
{
    for (const TableIndex &index : scan.table->indexes)
        m_changesKey = m_changesKey || (index.unique && (index.filter || overlaps(index.columns, columns)));
    if (!scan.database)
        return;
    for (const ModulePtr &trigger : scan.database->triggersOf(scan.table->id))
        if (handles(*trigger, event))
            m_triggers.push_back(trigger);
    const bool referenced = !scan.database->referencing(scan.table->id).empty();
    const bool takesRows = event == Event::Update || event == Event::Delete;
    m_needsOldRows = takesRows && (referenced || !m_triggers.empty());
    m_needsNewRows = event != Event::Delete && (referenced || !m_triggers.empty());
}

const char *TableChange::verb() const
{
    static constexpr const char *verbs[] = {"INSERT", "UPDATE", "DELETE", "ALTER TABLE"};
    return verbs[static_cast<int>(m_event)];
}

void TableChange::conflict(const ConstraintName &name, const char *kind, const Table &table,
                           const std::string &column) const
{
    const std::string database = m_scan.database ? m_scan.database->name() : "tempdb";
    throw EngineError(547, 16, 0,
                      std::string("The ") + verb() + " statement conflicted with the " + kind +
                          " constraint \"" + name.name + "\". The conflict occurred in database \"" +
                          database + "\", table \"" + table.schema + '.' + table.name + '"' +
                          (column.empty() ? std::string() : ", column '" + column + '\'') + '.');
}

EngineError assignedTwice(const std::string &column)
{
    return {
        264, 16, 1,
        "The column name '" + column +
            "' is specified more than once in the SET clause or column list of an INSERT. A column cannot be "
            "assigned more than one value in the same clause. Modify the clause to make sure that a column "
            "is updated only once. If this statement updates or inserts columns into a view, column "
            "aliasing can conceal the duplication in your code.",
        ErrorEffect::EndsBatch};
}

bool TableChange::insert(const std::vector<Value> &row)
{
    const auto rowId = m_writer.insert(row);
    if (!rowId)
        return false;
    requireChecks(*rowId);
    requireParents(row);
    if (m_needsNewRows)
        m_new.push_back(row);
    return true;
}

void TableChange::remove(const StoredRow &row)
{
    m_writer.remove(row.rowId);
    if (m_needsOldRows)
        m_old.push_back(row.values);
}

void TableChange::update(const std::vector<StoredRow> &before, const std::vector<std::vector<Value>> &after)
{
    // If a key changes, all rows are deleted before any is reinserted, so that new keys do not conflict with
    // old ones.
    if (m_changesKey)
        for (const StoredRow &row : before)
            m_writer.remove(row.rowId);
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (m_changesKey)
            m_writer.insert(after[i], before[i].rowId);
        else if (!m_columns.empty())
            m_writer.update(before[i].rowId, m_columns, valuesAt(after[i], m_columns));
        m_queries.session().checkAttention();
    }
    for (std::size_t i = 0; i < before.size(); ++i) {
        requireChecks(before[i].rowId);
        requireParents(after[i]);
        if (m_needsOldRows) {
            m_old.push_back(before[i].values);
            m_new.push_back(after[i]);
        }
    }
}

void TableChange::requireChecks(std::int64_t rowId)
{
    for (const CheckConstraint &check : m_scan.table->checks) {
        if (!check.enabled || m_writer.isNotFalse(check.condition, rowId))
            continue;
        conflict(check.constraint, "CHECK", *m_scan.table, checkedColumn(*m_scan.table, check));
    }
}

void TableChange::requireCheck(const CheckConstraint &check)
{
    for (const StoredRow &row : m_writer.readAll())
        if (!m_writer.isNotFalse(check.condition, row.rowId))
            conflict(check.constraint, "CHECK", *m_scan.table, checkedColumn(*m_scan.table, check));
}

void TableChange::requireForeignKey(const ForeignKey &key)
{
    for (const StoredRow &row : m_writer.readAll())
        requireParent(key, row.values);
}

bool TableChange::hasParent(const ForeignKey &key, const std::vector<Value> &row)
{
    const std::vector<Value> values = valuesAt(row, key.columns);
    if (std::any_of(values.begin(), values.end(), [](const Value &value) { return isNull(value); }))
        return true;
    const bool self = key.referencedTable == m_scan.table->id;
    const TablePtr parent = self ? m_scan.table : m_scan.database->findTable(key.referencedTable);
    if (!parent)
        return true;
    const std::vector<std::size_t> places = placesOf(*parent, key.referencedColumns);
    std::vector<Value> wanted;
    for (std::size_t i = 0; i < values.size(); ++i)
        wanted.push_back(convertValue(values[i], m_scan.table->columns[key.columns[i]].type,
                                      parent->columns[places[i]].type));
    return RowWriter(m_queries, TableStore::scanOf(parent, m_scan.database)).exists(places, wanted);
}

/// A row that references its own table may find its parent only after all rows are written: finish() checks
/// these keys.
void TableChange::requireParents(const std::vector<Value> &row)
{
    if (!m_scan.database || m_scan.table->foreignKeys.empty())
        return;
    for (const ForeignKey &key : m_scan.table->foreignKeys)
        if (key.enabled && key.referencedTable == m_scan.table->id) {
            m_selfReferring.push_back(row);
            break;
        }
    for (const ForeignKey &key : m_scan.table->foreignKeys)
        if (key.enabled && key.referencedTable != m_scan.table->id)
            requireParent(key, row);
}

void TableChange::requireParent(const ForeignKey &key, const std::vector<Value> &row)
{
    if (hasParent(key, row))
        return;
    const bool self = key.referencedTable == m_scan.table->id;
    const TablePtr parent = self ? m_scan.table : m_scan.database->findTable(key.referencedTable);
    const std::string column = key.referencedColumns.size() == 1
                                   ? parent->columns[*parent->findColumnById(key.referencedColumns[0])].name
                                   : std::string();
    conflict(key.constraint, self ? "FOREIGN KEY SAME TABLE" : "FOREIGN KEY", *parent, column);
}

void TableChange::finish()
{
    for (const auto &row : m_selfReferring)
        for (const ForeignKey &key : m_scan.table->foreignKeys)
            if (key.enabled && key.referencedTable == m_scan.table->id)
                requireParent(key, row);
    if (!m_scan.database)
        return;
    if (m_needsOldRows)
        followReferences();
    if (m_triggers.empty())
        return;
    m_triggerRunner.fireTriggers(m_triggers, m_scan.table->columns, {m_new, m_old, updatedColumns()});
}

std::set<std::string> TableChange::updatedColumns() const
{
    std::set<std::string> updated;
    for (const std::size_t column : m_columns)
        updated.insert(foldedName(m_scan.table->columns[column].name));
    if (m_event == Event::Insert)
        for (const TableColumn &column : m_scan.table->columns)
            updated.insert(foldedName(column.name));
    return updated;
}

void TableChange::followReferences()
{
    for (const TablePtr &child : m_scan.database->referencing(m_scan.table->id))
        for (const ForeignKey &key : child->foreignKeys)
            if (key.enabled && key.referencedTable == m_scan.table->id)
                for (std::size_t i = 0; i < m_old.size(); ++i)
                    followReference(*child, key, i);
}

/// Applies the foreign key actions to a child table after a parent row was deleted or its key changed.
void TableChange::followReference(const Table &child, const ForeignKey &key, std::size_t changed)
{
    const std::vector<std::size_t> places = placesOf(*m_scan.table, key.referencedColumns);
    const std::vector<Value> oldKey = valuesAt(m_old[changed], places);
    std::vector<Value> newKey;
    if (m_event == Event::Update) {
        newKey = valuesAt(m_new[changed], places);
        if (newKey == oldKey)
            return;
    }
    if (std::any_of(oldKey.begin(), oldKey.end(), [](const Value &value) { return isNull(value); }))
        return;
    if (m_writer.exists(places, oldKey)) // another row has the key now
        return;
    const TablePtr current = m_scan.database->findTable(child.id);
    const Bound::TableScan scan = TableStore::scanOf(current, m_scan.database);
    const auto rows = RowWriter(m_queries, scan).readWhere(key.columns, oldKey);
    if (rows.empty())
        return;
    const ReferentialAction action = m_event == Event::Delete ? key.onDelete : key.onUpdate;
    if (action == ReferentialAction::NoAction) {
        const bool self = child.id == m_scan.table->id;
        conflict(key.constraint, self ? "SAME TABLE REFERENCE" : "REFERENCE", *current,
                 key.columns.size() == 1 ? current->columns[key.columns[0]].name : std::string());
    }
    act(action, key, scan, rows, newKey);
}

void TableChange::act(ReferentialAction action, const ForeignKey &key, const Bound::TableScan &child,
                      const std::vector<StoredRow> &rows, const std::vector<Value> &newKey)
{
    if (action == ReferentialAction::Cascade && m_event == Event::Delete) {
        TableChange change(m_queries, m_triggerRunner, child, Event::Delete);
        for (const StoredRow &row : rows)
            change.remove(row);
        return change.finish();
    }
    TableChange change(m_queries, m_triggerRunner, child, Event::Update, key.columns);
    std::vector<std::vector<Value>> after;
    for (const StoredRow &row : rows) {
        after.push_back(row.values);
        for (std::size_t i = 0; i < key.columns.size(); ++i) {
            const TableColumn &column = child.table->columns[key.columns[i]];
            Value value;
            if (action == ReferentialAction::Cascade)
                value = newKey[i];
            else if (action == ReferentialAction::SetDefault && column.defaultValue)
                value = m_queries.evaluate(*column.defaultValue.expression, column.type);
            after.back()[key.columns[i]] = std::move(value);
        }
    }
    change.update(rows, after);
    change.finish();
}

} // namespace SampleServer
