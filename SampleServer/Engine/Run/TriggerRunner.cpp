#include "Engine/Run/TriggerRunner.h"
#include "Engine/Errors.h"
#include "Engine/Run/RowWriter.h"
#include "Engine/ScopedValue.h"

namespace SampleServer {

void TriggerRunner::fireTriggers(const std::vector<ModulePtr> &triggers,
                                 const std::vector<TableColumn> &columns, const ChangedRows &rows)
{
    // A trigger runs inside a transaction, if necessary that of its statement.
    ++m_session.evaluation.transactionCount;
    for (const ModulePtr &trigger : triggers) {
        const std::int32_t count = m_session.evaluation.transactionCount;
        try {
            fireTrigger(*trigger, columns, rows);
        } catch (...) {
            m_session.evaluation.transactionCount = std::max(m_session.evaluation.transactionCount - 1, 0);
            throw;
        }
        if (m_session.evaluation.transactionCount < count || !m_session.transactions.isOpen())
            throw EngineError(3609, 16, 1,
                              "The transaction ended in the trigger. The batch has been aborted.",
                              ErrorEffect::EndsAll);
    }
    --m_session.evaluation.transactionCount;
}

void TriggerRunner::fireInsteadOf(const ModulePtr &trigger, const std::vector<TableColumn> &columns,
                                  const ChangedRows &rows)
{
    m_insteadOf.insert(trigger->id);
    try {
        fireTriggers({trigger}, columns, rows);
    } catch (...) {
        m_insteadOf.erase(trigger->id);
        throw;
    }
    m_insteadOf.erase(trigger->id);
}

void TriggerRunner::fireTrigger(const Module &trigger, const std::vector<TableColumn> &columns,
                                const ChangedRows &rows)
{
    Frame frame;
    frame.procedure = trigger.name;
    frame.module = &trigger;
    fillTriggerTable("inserted", columns, rows.inserted, frame);
    fillTriggerTable("deleted", columns, rows.deleted, frame);
    const ScopedValue<bool> abort(m_session.options.abortTransactions,
                                  true); // an error undoes the whole transaction
    const ScopedValue<std::set<std::string>> updated(m_session.evaluation.updatedColumns,
                                                     rows.updatedColumns);
    m_session.evaluation.rowCount =
        static_cast<std::int64_t>(std::max(rows.inserted.size(), rows.deleted.size()));
    m_calls.runModule(trigger, m_session.state.databases.find(trigger.database), frame);
}

/// Creates the table `inserted` or `deleted` of a trigger.
void TriggerRunner::fillTriggerTable(const std::string &name, const std::vector<TableColumn> &columns,
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
    const ScopedValue<Frame *> own(m_session.frame, &frame);
    const Bound::TableScan scan = m_queries.store().createTable(std::move(copy), nullptr);
    RowWriter writer(m_queries, scan);
    for (const auto &row : rows)
        writer.insert(row);
}

} // namespace SampleServer
