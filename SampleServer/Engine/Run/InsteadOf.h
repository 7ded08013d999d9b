#pragma once

#include "Engine/Run/TableChange.h"

namespace SampleServer {

/// A statement on a table or view with an INSTEAD OF trigger: it changes a copy of the rows, and the trigger
/// receives the changes as inserted and deleted.
class InsteadOf
{
public:
    InsteadOf(QueryExecutor &queries, TriggerRunner &triggers, const Ast::ObjectName &name,
              TableChange::Event event);
    ~InsteadOf();
    InsteadOf(const InsteadOf &) = delete;
    InsteadOf &operator=(const InsteadOf &) = delete;

    bool isActive() const { return m_trigger != nullptr; }
    /// The copy of the rows.
    const Bound::TableScan &target() const { return m_target; }
    void fire(const TableChange &change);

private:
    void makeTarget(const Ast::ObjectName &name, const std::vector<TableColumn> &columns, bool withRows);

    QueryExecutor &m_queries;
    TriggerRunner &m_triggerRunner;
    ModulePtr m_trigger; ///< null if the statement changes the rows directly
    Bound::TableScan m_target;
};

} // namespace SampleServer
