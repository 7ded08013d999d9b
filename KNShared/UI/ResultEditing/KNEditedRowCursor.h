#pragma once

#include "RowEditing/KNRowEdits.h"

#include <QObject>

class KNResultEditing;
class KNResultGridView;
class QModelIndex;

/// Watches the current cell of an edited grid: keeps it when applied changes replace the result, and reports
/// when it leaves a changed row. On the UI thread.
class KNEditedRowCursor : public QObject
{
    Q_OBJECT

public:
    /// The grid owns this object; the edits must outlive it.
    KNEditedRowCursor(KNResultGridView &grid, KNResultEditing &editing);

Q_SIGNALS:
    /// The cursor went from a row with changes, whose editor has ended, to one without.
    void changedRowLeft();

private:
    void move(const QModelIndex &cell, const QModelIndex &previous);
    void leave(KNRowEdits::RowId row);
    void remember();
    void restore();

    KNResultGridView &m_grid;
    KNResultEditing &m_editing;
    int m_row = -1; ///< of the remembered cell
    int m_column = -1;
};
