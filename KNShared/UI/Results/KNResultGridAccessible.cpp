#include "UI/Results/KNResultGridAccessible.h"

#include "UI/Results/KNResultCellAccessible.h"
#include "UI/Results/KNResultGridView.h"

#include <algorithm>
#include <limits>

namespace {

QAccessibleInterface *gridInterface(const QString &className, QObject *object)
{
    auto *const grid = className == QLatin1String(KNResultGridView::staticMetaObject.className())
                           ? qobject_cast<KNResultGridView *>(object)
                           : nullptr;
    return grid ? new KNResultGridAccessible(grid) : nullptr;
}

int asInt(qint64 count)
{
    return static_cast<int>(std::min<qint64>(count, std::numeric_limits<int>::max()));
}

} // namespace

void KNResultGridAccessible::install()
{
    QAccessible::installFactory(gridInterface); // a factory is installed once
}

KNResultGridAccessible::KNResultGridAccessible(KNResultGridView *grid)
    : QAccessibleWidget(grid, QAccessible::Table)
{
}

KNResultGridAccessible::~KNResultGridAccessible()
{
    for (const QAccessible::Id id : std::as_const(m_cells))
        QAccessible::deleteAccessibleInterface(id);
}

void KNResultGridAccessible::reportCurrentCell(KNResultGridView *grid)
{
    if (!QAccessible::isActive() || !grid->hasFocus())
        return;
    const QAccessibleInterface *const table = QAccessible::queryAccessibleInterface(grid);
    if (QAccessibleInterface *const cell = table ? table->focusChild() : nullptr) {
        QAccessibleEvent event(cell, QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

KNResultGridView *KNResultGridAccessible::grid() const
{
    return static_cast<KNResultGridView *>(widget());
}

void *KNResultGridAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface *>(this)
                                               : QAccessibleWidget::interface_cast(type);
}

// Children are the cells with their headers, row by row.

int KNResultGridAccessible::childCount() const
{
    return asInt((qint64{rowCount()} + 1) * (qint64{columnCount()} + 1));
}

QAccessibleInterface *KNResultGridAccessible::child(int index) const
{
    const int width = columnCount() + 1;
    return index < 0 ? nullptr : cellAt(index / width - 1, index % width - 1);
}

int KNResultGridAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *const cell = dynamic_cast<const KNResultCellAccessible *>(child);
    if (!cell)
        return -1;
    const qint64 index = (qint64{cell->rowIndex()} + 1) * (columnCount() + 1) + cell->columnIndex() + 1;
    return index < childCount() ? static_cast<int>(index) : -1;
}

QAccessibleInterface *KNResultGridAccessible::childAt(int x, int y) const
{
    const QModelIndex index = grid()->indexAt(grid()->viewport()->mapFromGlobal(QPoint(x, y)));
    return index.isValid()
               ? cellAt(index.row(), static_cast<int>(grid()->shownColumns().indexOf(index.column())))
               : nullptr;
}

QAccessibleInterface *KNResultGridAccessible::focusChild() const
{
    const QModelIndex current = grid()->currentIndex();
    const qsizetype column = grid()->shownColumns().indexOf(current.column());
    return current.isValid() && column >= 0 ? cellAt(current.row(), static_cast<int>(column)) : nullptr;
}

QAccessibleInterface *KNResultGridAccessible::cellAt(int row, int column) const
{
    if (row < -1 || row >= rowCount() || column < -1 || column >= columnCount())
        return nullptr;
    const QPair<int, int> position(row, column);
    if (const auto known = m_cells.constFind(position); known != m_cells.constEnd())
        return QAccessible::accessibleInterface(*known);
    if (m_cells.size() >= CellsKept)
        QAccessible::deleteAccessibleInterface(m_cells.take(m_oldestCells.dequeue()));
    auto *const cell = new KNResultCellAccessible(grid(), row, column);
    m_cells.insert(position, QAccessible::registerAccessibleInterface(cell));
    m_oldestCells.enqueue(position);
    return cell;
}

int KNResultGridAccessible::columnCount() const
{
    return static_cast<int>(grid()->shownColumns().size());
}

int KNResultGridAccessible::rowCount() const
{
    return grid()->resultModel().rowCount();
}

QString KNResultGridAccessible::columnDescription(int column) const
{
    const QAccessibleInterface *const header = column < 0 ? nullptr : cellAt(-1, column);
    return header ? header->text(QAccessible::Name) : QString();
}

QString KNResultGridAccessible::rowDescription(int row) const
{
    const QAccessibleInterface *const header = row < 0 ? nullptr : cellAt(row, -1);
    return header ? header->text(QAccessible::Name) : QString();
}

int KNResultGridAccessible::selectedCellCount() const
{
    const QList<int> columns = grid()->shownColumns();
    qint64 count = 0;
    for (const QItemSelectionRange &range : grid()->selectionModel()->selection())
        count += range.height() * std::count_if(columns.begin(), columns.end(), [&](int column) {
                     return range.left() <= column && column <= range.right();
                 });
    return asInt(count);
}

QList<QAccessibleInterface *> KNResultGridAccessible::selectedCells() const
{
    QList<QAccessibleInterface *> cells;
    const QList<int> columns = grid()->shownColumns();
    for (const QItemSelectionRange &range : grid()->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            for (int column = 0; column < columns.size(); ++column) {
                if (cells.size() >= SelectedReported)
                    return cells;
                if (range.left() <= columns[column] && columns[column] <= range.right())
                    cells.append(cellAt(row, column));
            }
        }
    }
    return cells;
}

int KNResultGridAccessible::selectedColumnCount() const
{
    return static_cast<int>(selectedColumns().size());
}

int KNResultGridAccessible::selectedRowCount() const
{
    const QList<int> columns = grid()->shownColumns();
    if (columns.isEmpty())
        return 0;
    qint64 count = 0;
    for (const QItemSelectionRange &range : grid()->selectionModel()->selection()) {
        if (range.left() <= columns.first() && range.right() >= columns.last())
            count += range.height();
    }
    return asInt(count);
}

QList<int> KNResultGridAccessible::selectedColumns() const
{
    QList<int> selected;
    for (int column = 0; column < columnCount(); ++column) {
        if (isColumnSelected(column))
            selected.append(column);
    }
    return selected;
}

QList<int> KNResultGridAccessible::selectedRows() const
{
    QList<int> selected;
    for (const QItemSelectionRange &range : grid()->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom() && selected.size() < SelectedReported; ++row) {
            if (isRowSelected(row))
                selected.append(row);
        }
    }
    std::sort(selected.begin(), selected.end());
    selected.erase(std::unique(selected.begin(), selected.end()), selected.end());
    return selected;
}

/// Counts cells instead of visiting them: the ranges of a selection do not overlap.
bool KNResultGridAccessible::isCompletelySelected(int firstRow, int lastRow, int firstColumn,
                                                  int lastColumn) const
{
    qint64 selected = 0;
    for (const QItemSelectionRange &range : grid()->selectionModel()->selection()) {
        const int rows = std::min(range.bottom(), lastRow) - std::max(range.top(), firstRow) + 1;
        const int columns = std::min(range.right(), lastColumn) - std::max(range.left(), firstColumn) + 1;
        selected += qint64{std::max(0, rows)} * std::max(0, columns);
    }
    return selected > 0 && selected == qint64{lastRow - firstRow + 1} * (lastColumn - firstColumn + 1);
}

bool KNResultGridAccessible::isColumnSelected(int column) const
{
    const int logical = grid()->shownColumns().value(column, -1);
    return logical >= 0 && rowCount() > 0 && isCompletelySelected(0, rowCount() - 1, logical, logical);
}

bool KNResultGridAccessible::isRowSelected(int row) const
{
    const QList<int> columns = grid()->shownColumns();
    return row >= 0 && row < rowCount() && !columns.isEmpty() &&
           isCompletelySelected(row, row, columns.first(), columns.last());
}

bool KNResultGridAccessible::selectRow(int row)
{
    if (row < 0 || row >= rowCount())
        return false;
    grid()->selectRows(row, row, QItemSelectionModel::ClearAndSelect);
    return true;
}

bool KNResultGridAccessible::selectColumn(int column)
{
    const int logical = grid()->shownColumns().value(column, -1);
    if (logical < 0 || rowCount() == 0)
        return false;
    grid()->selectColumn(logical, QItemSelectionModel::ClearAndSelect);
    return true;
}

bool KNResultGridAccessible::unselectRow(int row)
{
    if (row < 0 || row >= rowCount())
        return false;
    grid()->selectRows(row, row, QItemSelectionModel::Deselect);
    return true;
}

bool KNResultGridAccessible::unselectColumn(int column)
{
    const int logical = grid()->shownColumns().value(column, -1);
    if (logical < 0 || rowCount() == 0)
        return false;
    grid()->selectColumn(logical, QItemSelectionModel::Deselect);
    return true;
}
