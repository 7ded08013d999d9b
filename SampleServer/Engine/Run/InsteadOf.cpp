#include "Engine/Run/InsteadOf.h"
#include "Engine/Errors.h"
#include "Engine/Parse/AstQueries.h"
#include "Engine/Run/TriggerRunner.h"

namespace SampleServer {

namespace {

bool standsInFor(const Module &trigger, TableChange::Event event)
{
    const Ast::ModuleDefinition &definition = *trigger.definition;
    if (trigger.disabled || !definition.insteadOf)
        return false;
    return event == TableChange::Event::Insert   ? definition.onInsert
           : event == TableChange::Event::Update ? definition.onUpdate
                                                 : definition.onDelete;
}

} // namespace

InsteadOf::InsteadOf(QueryExecutor &queries, TriggerRunner &triggers, const Ast::ObjectName &name,
                     TableChange::Event event)
    : m_queries(queries)
    , m_triggerRunner(triggers)
{
    const FoundObject found = queries.names().findObject(name);
    if (!found.object || !found.database)
        return;
    for (const ModulePtr &trigger : found.database->triggersOf(found.object->id))
        if (standsInFor(*trigger, event) && !triggers.isRunningInsteadOf(*trigger))
            m_trigger = trigger;
    const auto *view =
        found.object->kind == ObjectKind::View ? dynamic_cast<const Module *>(found.object.get()) : nullptr;
    if (view && !m_trigger)
        throw Errors::notSupported("changes of rows through views");
    if (m_trigger)
        makeTarget(name, view ? view->columns : dynamic_cast<const Table &>(*found.object).columns,
                   event != TableChange::Event::Insert);
}

InsteadOf::~InsteadOf()
{
    if (!m_target.table)
        return;
    m_queries.store().eraseTemporary(*m_target.table);
    m_queries.session().connection.dropTemporary(m_target.table->physicalName());
}

void InsteadOf::makeTarget(const Ast::ObjectName &name, const std::vector<TableColumn> &columns,
                           bool withRows)
{
    Table copy;
    copy.id = newObjectId();
    copy.name = "#instead" + std::to_string(copy.id);
    copy.columns = columns;
    for (TableColumn &column : copy.columns) {
        column.nullable = true;
        column.identity = false;
        column.computed = {};
        column.rowVersion = false;
    }
    Transactions::Change change(m_queries.session().transactions);
    m_target = m_queries.store().createTable(std::move(copy), nullptr);
    change.finish();
    if (!withRows)
        return;
    const Bound::QueryPtr query = m_queries.binder().bindSelect(Ast::selectAll(name));
    std::vector<std::vector<Value>> rows;
    m_queries.fetch(*query,
                    [&rows](std::span<const Value> row) { rows.emplace_back(row.begin(), row.end()); });
    Transactions::Change filling(m_queries.session().transactions);
    RowWriter writer(m_queries, m_target);
    for (const auto &row : rows)
        writer.insert(row);
    filling.finish();
}

void InsteadOf::fire(const TableChange &change)
{
    m_triggerRunner.fireInsteadOf(m_trigger, m_target.table->columns,
                                  {change.newRows(), change.oldRows(), change.updatedColumns()});
}

} // namespace SampleServer
