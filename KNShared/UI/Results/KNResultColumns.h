#pragma once

#include "UI/KNSharedUIExport.h"

#include <QObject>
#include <QRect>

class QAbstractItemModel;
class QHeaderView;
class QWidget;

/// The columns of a grid: their headers, widths and positions, which are hidden, and which are frozen at the
/// left while the others scroll. On the UI thread.
class KNSHAREDUI_EXPORT KNResultColumns : public QObject
{
    Q_OBJECT

public:
    KNResultColumns(QAbstractItemModel &model, QWidget *grid);

    /// The header with all columns.
    QHeaderView *header() const { return m_header; }

    QList<int> shown() const;
    QList<int> hidden() const;
    bool isHidden(int column) const;
    /// Hides a column, but not the last one shown.
    void hide(int column);
    void show(int column);

    /// Freezes the columns up to this one; -1 freezes none. They scroll nevertheless while they fill most of
    /// the grid.
    void freezeUpTo(int column);
    int lastFrozen() const { return m_lastFrozen; }
    /// The width of the columns that do not scroll now.
    int frozenWidth() const;
    bool isFrozen(int column) const { return column <= m_lastFrozen && frozenWidth() > 0; }

    /// The position in the grid's viewport.
    int x(int column) const;
    int width(int column) const;
    /// The column at a position of the viewport; -1 if there is none.
    int at(int x) const;

    void setGeometry(const QRect &area);
    void setOffset(int offset);

    /// Widths, hidden and frozen columns, for restoreState().
    QByteArray state() const;
    void restoreState(const QByteArray &state);

Q_SIGNALS:
    /// Emitted when columns are shown in another place or width.
    void changed();
    void pressed(int column);
    void doubleClicked(int column);
    /// Emitted when the user requests to size a column to its contents.
    void fitRequested(int column);
    void menuRequested(int column, const QPoint &globalPosition);

private:
    void prepare(QHeaderView *header);
    void placeFrozenHeader();
    void updateColumn(int column);

    QHeaderView *const m_header;
    QHeaderView *const m_frozenHeader; ///< covers the left part of m_header while columns are frozen
    int m_lastFrozen = -1;
};
