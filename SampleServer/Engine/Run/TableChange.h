#pragma once

#include "Engine/EngineError.h"
#include "Engine/Run/RowWriter.h"

#include <set>

namespace SampleServer {

class TriggerRunner;

/// The rows that one statement changes in one table, and the consequences: CHECK constraints, foreign keys on
/// both sides with their actions, triggers. Throws EngineError 547 and those of RowWriter.
class TableChange
{
public:
    enum class Event { Insert, Update, Delete, Alter };

    /// `columns` are the columns that UPDATE sets.
    TableChange(QueryExecutor &queries, TriggerRunner &triggers, const Bound::TableScan &scan, Event event,
                const std::vector<std::size_t> &columns = {});

    RowWriter &writer() { return m_writer; }
    /// Whether remove() and update() need the old row.
    bool needsOldRows() const { return m_needsOldRows; }
    /// Whether UPDATE must delete and reinsert whole rows, because a unique key changes.
    bool changesKey() const { return m_changesKey; }

    /// Keeps the old and new rows even if nothing else needs them.
    void keepRows() { m_needsOldRows = m_needsNewRows = true; }
    const std::vector<std::vector<Value>> &oldRows() const { return m_old; }
    const std::vector<std::vector<Value>> &newRows() const { return m_new; }
    std::set<std::string> updatedColumns() const; ///< folded names

    /// Returns false if an index with IGNORE_DUP_KEY skipped the row.
    bool insert(const std::vector<Value> &row);
    void remove(const StoredRow &row);
    /// Rows before and after; `columns` are those that differ.
    void update(const std::vector<StoredRow> &before, const std::vector<std::vector<Value>> &after);
    /// Checks constraints and fires triggers after all rows have changed.
    void finish();

    void requireCheck(const CheckConstraint &check);
    void requireForeignKey(const ForeignKey &key);

private:
    void requireChecks(std::int64_t rowId);
    void requireParents(const std::vector<Value> &row);
    void requireParent(const ForeignKey &key, const std::vector<Value> &row);
    bool hasParent(const ForeignKey &key, const std::vector<Value> &row);
    void followReferences();
    void followReference(const Table &child, const ForeignKey &key, std::size_t changed);
    void act(ReferentialAction action, const ForeignKey &key, const Bound::TableScan &child,
             const std::vector<StoredRow> &rows, const std::vector<Value> &newKey);
    [[noreturn]] void conflict(const ConstraintName &name, const char *kind, const Table &table,
                               const std::string &column) const;
    const char *verb() const;

    QueryExecutor &m_queries;
    TriggerRunner &m_triggerRunner;
    const Bound::TableScan m_scan;
    const Event m_event;
    const std::vector<std::size_t> m_columns;
    RowWriter m_writer;
    std::vector<ModulePtr> m_triggers;
    bool m_needsOldRows = false;
    bool m_needsNewRows = false;
    bool m_changesKey = false;
    std::vector<std::vector<Value>> m_old, m_new;
    std::vector<std::vector<Value>> m_selfReferring; ///< new rows whose parents may be in the same table
};

/// The error of a statement that sets a column twice.
EngineError assignedTwice(const std::string &column);

} // namespace SampleServer
