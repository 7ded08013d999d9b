#include "UI/Results/KNResultCellAccessible.h"

#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNRowNumberBar.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QWindow>

KNResultCellAccessible::KNResultCellAccessible(KNResultGridView *grid, int row, int column)
    : m_grid(grid)
    , m_row(row)
    , m_column(column)
{
}

bool KNResultCellAccessible::isValid() const
{
    return m_grid && m_row < m_grid->resultModel().rowCount() && m_column < m_grid->shownColumns().size();
}

QWindow *KNResultCellAccessible::window() const
{
    return m_grid ? m_grid->window()->windowHandle() : nullptr;
}

QAccessibleInterface *KNResultCellAccessible::parent() const
{
    return QAccessible::queryAccessibleInterface(m_grid.data());
}

/// The cell in the model; invalid for a header.
QModelIndex KNResultCellAccessible::index() const
{
    return isValid() && isCell() ? m_grid->resultModel().index(m_row, m_grid->shownColumns().at(m_column))
                                 : QModelIndex();
}

QAccessible::Role KNResultCellAccessible::role() const
{
    if (isCell())
        return QAccessible::Cell;
    return m_row < 0 ? QAccessible::ColumnHeader : QAccessible::RowHeader;
}

QAccessible::State KNResultCellAccessible::state() const
{
    QAccessible::State state;
    state.invalid = !isValid();
    state.readOnly = true;
    if (!isCell() || state.invalid)
        return state;
    state.selectable = true;
    state.selected = isSelected();
    state.focusable = true;
    state.focused = m_grid->hasFocus() && m_grid->currentIndex() == index();
    state.offscreen = !m_grid->viewport()->rect().intersects(m_grid->visualRect(index()));
    return state;
}

QRect KNResultCellAccessible::rect() const
{
    if (!isValid())
        return {};
    const int column = m_column < 0 ? -1 : m_grid->shownColumns().at(m_column);
    QRect rect = m_grid->visualRect(m_grid->resultModel().index(qMax(0, m_row), qMax(0, column)));
    if (m_row < 0)
        rect = {rect.x(), -m_grid->horizontalHeader()->height(), rect.width(),
                m_grid->horizontalHeader()->height()};
    if (m_column < 0)
        rect = {-m_grid->rowNumbers()->width(), rect.y(), m_grid->rowNumbers()->width(), rect.height()};
    return {m_grid->viewport()->mapToGlobal(rect.topLeft()), rect.size()};
}

QString KNResultCellAccessible::text(QAccessible::Text kind) const
{
    if (!isValid() || (kind != QAccessible::Name && kind != QAccessible::Value))
        return {};
    if (isCell())
        return index().data(Qt::AccessibleTextRole).toString();
    const KNResultTableModel &model = m_grid->resultModel();
    if (m_column >= 0)
        return model.headerData(m_grid->shownColumns().at(m_column), Qt::Horizontal, Qt::AccessibleTextRole)
            .toString();
    return m_row < 0 ? QString() : QString::number(m_row + 1);
}

void *KNResultCellAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TableCellInterface ? static_cast<QAccessibleTableCellInterface *>(this)
                                                   : nullptr;
}

bool KNResultCellAccessible::isSelected() const
{
    const QModelIndex cell = index();
    return cell.isValid() && m_grid->selectionModel()->isSelected(cell);
}

QList<QAccessibleInterface *> KNResultCellAccessible::columnHeaderCells() const
{
    QAccessibleInterface *const grid = parent();
    return grid && m_column >= 0 ? QList{grid->tableInterface()->cellAt(-1, m_column)}
                                 : QList<QAccessibleInterface *>();
}

QList<QAccessibleInterface *> KNResultCellAccessible::rowHeaderCells() const
{
    QAccessibleInterface *const grid = parent();
    return grid && m_row >= 0 ? QList{grid->tableInterface()->cellAt(m_row, -1)}
                              : QList<QAccessibleInterface *>();
}
