#pragma once

#include "Foundation/KNValue.h"
#include "KNSharedExport.h"

#include <QList>
#include <QMap>

/// The changes of a result's rows that were not applied yet: changed, new and deleted rows, with undo. A
/// value type of any thread.
class KNSHARED_EXPORT KNRowEdits
{
public:
    /// A stored row, from 0, or a new one, which is negative.
    using RowId = qint64;

    struct Row
    {
        QMap<int, KNValue> values = {}; ///< by result column, from 0; of a new row those that were entered
        bool isDeleted = false;

        friend bool operator==(const Row &, const Row &) = default;
    };

    static constexpr int MostSteps = 100;
    static bool isNew(RowId row) { return row < 0; }

    /// Begins a step that undo() takes back as a whole. Every change belongs to the last step.
    void beginStep();
    /// Sets a value. `stored` is the server's; the same one ends the change of the column. A new row has no
    /// stored values.
    void setValue(RowId row, int column, const KNValue &value, const KNValue &stored);
    RowId addRow();
    /// Marks a stored row as deleted; a new one disappears.
    void remove(RowId row);
    /// Takes the last step back; false if there is none.
    bool undo();
    bool canUndo() const { return !m_steps.isEmpty(); }
    void clear();

    /// The number of rows to change, add or delete.
    qsizetype changeCount() const { return m_state.rows.size(); }
    bool isEmpty() const { return m_state.rows.isEmpty(); }
    /// Null for a row without changes. Valid until the next change.
    const Row *row(RowId row) const;
    /// All rows with changes: stored ones in their order, then new ones in theirs.
    QList<RowId> changedRows() const;
    const QList<RowId> &newRows() const { return m_state.newRows; }

private:
    struct State
    {
        QMap<RowId, Row> rows;
        QList<RowId> newRows;
    };

    State m_state;
    QList<State> m_steps; ///< the states before each step
    RowId m_nextNew = -1;
};
