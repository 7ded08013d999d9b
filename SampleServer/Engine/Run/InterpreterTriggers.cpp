#include "Engine/Errors.h"
#include "Engine/Run/Interpreter.h"
#include "Engine/Run/RowWriter.h"
#include "Engine/ScopedValue.h"

namespace SampleServer {

void Interpreter::fireTriggers(const std::vector<ModulePtr> &triggers,
                               const std::vector<TableColumn> &columns, const ChangedRows &rows)
{
    // A trigger runs inside of a transaction, its statement's own if need be.
    ++m_context.transactionCount;
    for (const ModulePtr &trigger : triggers) {
        const std::int32_t count = m_context.transactionCount;
        try {
            fireTrigger(*trigger, columns, rows);
        } catch (...) {
            m_context.transactionCount = std::max(m_context.transactionCount - 1, 0);
            throw;
        }
        if (m_context.transactionCount < count || !m_transactions.isOpen())
            throw EngineError(3609, 16, 1,
                              "The transaction ended in the trigger. The batch has been aborted.",
                              ErrorEffect::EndsAll);
    }
    --m_context.transactionCount;
}

void Interpreter::fireTrigger(const Module &trigger, const std::vector<TableColumn> &columns,
                              const ChangedRows &rows)
{
    Frame frame;
    frame.procedure = trigger.name;
    frame.module = &trigger;
    fillTriggerTable("inserted", columns, rows.inserted, frame);
    fillTriggerTable("deleted", columns, rows.deleted, frame);
    const ScopedValue<bool> abort(m_options.abortTransactions, true); // an error undoes the whole transaction
    const ScopedValue<std::set<std::string>> updated(m_context.updatedColumns, rows.updatedColumns);
    m_context.rowCount = static_cast<std::int64_t>(std::max(rows.inserted.size(), rows.deleted.size()));
    runModule(trigger, m_state.databases.find(trigger.database), frame);
}

/// Makes the table `inserted` or `deleted` that a trigger finds.
void Interpreter::fillTriggerTable(const std::string &name, const std::vector<TableColumn> &columns,
                                   const std::vector<std::vector<Value>> &rows, Frame &frame)
{
    Table copy;
    copy.name = name;
    copy.id = newObjectId();
    copy.columns = columns;
    for (TableColumn &column : copy.columns) {
        column.nullable = true;
        column.identity = false;
    }
    const ScopedValue<Frame *> own(m_frame, &frame);
    const Bound::TableScan scan = createTable(std::move(copy), nullptr);
    RowWriter writer(*this, scan);
    for (const auto &row : rows)
        writer.insert(row);
}

} // namespace SampleServer
