#include "Engine/Run/InsteadOf.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parser.h"
#include "Engine/Run/Interpreter.h"

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

InsteadOf::InsteadOf(Interpreter &interpreter, const Ast::ObjectName &name, TableChange::Event event)
    : m_interpreter(interpreter)
{
    const Interpreter::FoundObject found = interpreter.findObject(name);
    if (!found.object || !found.database)
        return;
    for (const ModulePtr &trigger : found.database->triggersOf(found.object->id))
        if (standsInFor(*trigger, event) && !interpreter.m_insteadOf.contains(trigger->id))
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
    m_interpreter.eraseTemporary(*m_target.table);
    m_interpreter.m_connection.dropTemporary(m_target.table->physicalName());
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
    Transactions::Change change(m_interpreter.m_transactions);
    m_target = m_interpreter.createTable(std::move(copy), nullptr);
    change.finish();
    if (!withRows)
        return;
    const Bound::QueryPtr query = m_interpreter.binder().bindSelect(Ast::selectAll(name));
    std::vector<std::vector<Value>> rows;
    m_interpreter.fetch(*query,
                        [&rows](std::span<const Value> row) { rows.emplace_back(row.begin(), row.end()); });
    Transactions::Change filling(m_interpreter.m_transactions);
    RowWriter writer(m_interpreter, m_target);
    for (const auto &row : rows)
        writer.insert(row);
    filling.finish();
}

void InsteadOf::fire(const TableChange &change)
{
    m_interpreter.m_insteadOf.insert(m_trigger->id);
    try {
        m_interpreter.fireTriggers({m_trigger}, m_target.table->columns,
                                   {change.newRows(), change.oldRows(), change.updatedColumns()});
    } catch (...) {
        m_interpreter.m_insteadOf.erase(m_trigger->id);
        throw;
    }
    m_interpreter.m_insteadOf.erase(m_trigger->id);
}

} // namespace SampleServer
