#pragma once

#include "Engine/Run/ModuleCalls.h"

#include <set>
#include <string>
#include <vector>

namespace SampleServer {

/// Runs the triggers of a table or view.
class TriggerRunner
{
public:
    struct ChangedRows
    {
        const std::vector<std::vector<Value>> &inserted, &deleted;
        std::set<std::string> updatedColumns; ///< folded names
    };

    TriggerRunner(QueryExecutor &queries, ModuleCalls &calls)
        : m_session(queries.session())
        , m_queries(queries)
        , m_calls(calls)
    {
    }

    void fireTriggers(const std::vector<ModulePtr> &triggers, const std::vector<TableColumn> &columns,
                      const ChangedRows &rows);
    void fireInsteadOf(const ModulePtr &trigger, const std::vector<TableColumn> &columns,
                       const ChangedRows &rows);
    /// Whether an INSTEAD OF trigger runs: its own statements change the rows directly.
    bool isRunningInsteadOf(const Module &trigger) const { return m_insteadOf.contains(trigger.id); }

private:
    void fireTrigger(const Module &trigger, const std::vector<TableColumn> &columns, const ChangedRows &rows);
    void fillTriggerTable(const std::string &name, const std::vector<TableColumn> &columns,
                          const std::vector<std::vector<Value>> &rows, Frame &frame);

    SessionContext &m_session;
    QueryExecutor &m_queries;
    ModuleCalls &m_calls;
    std::set<std::int64_t> m_insteadOf; ///< ids of the running INSTEAD OF triggers
};

} // namespace SampleServer
