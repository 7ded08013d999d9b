#include "RowEditing/KNRowEdits.h"

void KNRowEdits::beginStep()
{
    m_steps.append(m_state);
    if (m_steps.size() > MostSteps)
        m_steps.removeFirst();
}

void KNRowEdits::setValue(RowId row, int column, const KNValue &value, const KNValue &stored)
{
    Row edited = m_state.rows.value(row);
    if (!isNew(row) && value == stored)
        edited.values.remove(column);
    else
        edited.values.insert(column, value);
    if (!isNew(row) && edited == Row())
        m_state.rows.remove(row);
    else
        m_state.rows.insert(row, edited);
}

KNRowEdits::RowId KNRowEdits::addRow()
{
    const RowId row = m_nextNew--;
    m_state.rows.insert(row, {});
    m_state.newRows.append(row);
    return row;
}

void KNRowEdits::remove(RowId row)
{
    if (isNew(row)) {
        m_state.rows.remove(row);
        m_state.newRows.removeOne(row);
    } else {
        m_state.rows.insert(row, {.values = {}, .isDeleted = true});
    }
}

bool KNRowEdits::undo()
{
    if (m_steps.isEmpty())
        return false;
    m_state = m_steps.takeLast();
    return true;
}

void KNRowEdits::clear()
{
    m_state = {};
    m_steps.clear();
}

const KNRowEdits::Row *KNRowEdits::row(RowId row) const
{
    const auto found = m_state.rows.constFind(row);
    return found == m_state.rows.constEnd() ? nullptr : &*found;
}

QList<KNRowEdits::RowId> KNRowEdits::changedRows() const
{
    QList<RowId> rows;
    for (auto each = m_state.rows.lowerBound(0); each != m_state.rows.end(); ++each)
        rows.append(each.key());
    return rows + m_state.newRows;
}
