#include "UI/ResultEditing/KNEditedRowCursor.h"

#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/Results/KNResultGridView.h"

#include <QItemSelectionModel>

#include <algorithm>

KNEditedRowCursor::KNEditedRowCursor(KNResultGridView &grid, KNResultEditing &editing)
    : QObject(&grid)
    , m_grid(grid)
    , m_editing(editing)
{
    connect(grid.selectionModel(), &QItemSelectionModel::currentChanged, this, &KNEditedRowCursor::move);
    connect(&editing, &KNResultEditing::replacingResult, this, &KNEditedRowCursor::remember);
    connect(&editing, &KNResultEditing::resultReplaced, this, &KNEditedRowCursor::restore);
}

void KNEditedRowCursor::move(const QModelIndex &cell, const QModelIndex &previous)
{
    if (!previous.isValid() || previous.row() == cell.row())
        return;
    const KNRowEdits::RowId left = m_editing.model().rowId(previous.row());
    QMetaObject::invokeMethod(
        this, [this, left] { leave(left); }, Qt::QueuedConnection);
}

/// All changes are applied together, so a row that is being entered waits until it is left, too.
void KNEditedRowCursor::leave(KNRowEdits::RowId row)
{
    const QModelIndex current = m_grid.currentIndex();
    const KNRowEdits &edits = m_editing.edits();
    if (edits.row(row) && !(current.isValid() && edits.row(m_editing.model().rowId(current.row()))))
        Q_EMIT changedRowLeft();
}

void KNEditedRowCursor::remember()
{
    m_row = m_grid.currentIndex().row();
    m_column = m_grid.currentIndex().column();
}

void KNEditedRowCursor::restore()
{
    if (m_row < 0)
        return;
    const int row = std::min(m_row, m_editing.model().rowCount() - 1);
    m_grid.selectionModel()->setCurrentIndex(m_editing.model().index(row, m_column),
                                             QItemSelectionModel::ClearAndSelect);
}
