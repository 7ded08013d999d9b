#include "UI/Results/KNResultGridView.h"

#include "Foundation/KNNotificationCenter.h"
#include "UI/KNPlainToolTip.h"
#include "UI/Results/KNResultColumns.h"
#include "UI/Results/KNResultGridAccessible.h"
#include "UI/Results/KNRowNumberBar.h"
#include "UI/RowEditing/KNEditRowDelegate.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>

KNResultGridView::KNResultGridView(KNResultTableModel &model, QWidget *parent)
    : QAbstractItemView(parent)
    , m_resultModel(model)
    , m_columns(new KNResultColumns(model, this))
    , m_header(m_columns->header())
    , m_rowNumbers(new KNRowNumberBar(this))
{
    KNResultGridAccessible::install();
    setAccessibleName(tr("Rows of the result"));
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectItems);
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed); // of cells that can be edited
    setItemDelegate(new KNEditRowDelegate(this));
    setHorizontalScrollMode(ScrollPerPixel);
    setTabKeyNavigation(false);
    const auto readPreferences = [this] {
        m_nullText = KNPreferences::current().nullText;
        viewport()->update();
    };
    readPreferences();
    m_preferencesObserver = KNNotificationCenter::defaultCenter()->addObserver(
        KNPreferences::ChangedNotificationName,
        [readPreferences](const QString &, const QVariantMap &) { readPreferences(); });

    setModel(&model);
    measure();
    fitColumns();
    connect(m_columns, &KNResultColumns::changed, this, [this] {
        m_wasResizedByUser = m_wasResizedByUser || !m_isFitting;
        updateGeometries();
        viewport()->update();
    });
    connect(m_columns, &KNResultColumns::fitRequested, this, &KNResultGridView::fitColumn);
    connect(m_columns, &KNResultColumns::pressed, this, [this](int column) {
        setFocus();
        const bool adds = QGuiApplication::keyboardModifiers() & Qt::ControlModifier;
        selectColumn(column, adds ? QItemSelectionModel::Toggle : QItemSelectionModel::ClearAndSelect);
    });
    connect(m_columns, &KNResultColumns::doubleClicked, this, &KNResultGridView::sortRequested);
    // Connected after the selection model, which resets the current cell.
    connect(&model, &QAbstractItemModel::modelReset, this, [this] {
        if (m_resultModel.rowCount() > 0)
            selectionModel()->setCurrentIndex(m_resultModel.index(0, m_currentColumn),
                                              QItemSelectionModel::NoUpdate);
    });
    connect(this, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex &index) {
        if (!isEditable(index))
            Q_EMIT valueRequested(index);
    });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, m_rowNumbers, qOverload<>(&QWidget::update));
}

QList<int> KNResultGridView::shownColumns() const
{
    return m_columns->shown();
}

void KNResultGridView::fitColumn(int column)
{
    m_header->resizeSection(column, sizeHintForColumn(column));
}

int KNResultGridView::topRow() const
{
    return verticalScrollBar()->value();
}

int KNResultGridView::visibleRowCount() const
{
    return std::max(1, viewport()->height() / m_rowHeight);
}

int KNResultGridView::heightForRows(int rows) const
{
    const int scrollBar = horizontalScrollBar()->sizeHint().height();
    return m_header->sizeHint().height() + rows * m_rowHeight + scrollBar + 2 * frameWidth();
}

int KNResultGridView::rowAt(int y) const
{
    return topRow() + (y >= 0 ? y / m_rowHeight : -((-y + m_rowHeight - 1) / m_rowHeight));
}

QModelIndex KNResultGridView::indexAt(const QPoint &point) const
{
    const int row = rowAt(point.y());
    const int column = m_columns->at(point.x());
    return row < 0 || column < 0 ? QModelIndex() : m_resultModel.index(row, column);
}

QRect KNResultGridView::visualRect(const QModelIndex &index) const
{
    if (!index.isValid())
        return {};
    return {m_columns->x(index.column()), (index.row() - topRow()) * m_rowHeight,
            m_columns->width(index.column()), m_rowHeight};
}

void KNResultGridView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (!index.isValid())
        return;
    const int row = index.row();
    const int fitting = visibleRowCount();
    int top = topRow();
    if (hint == PositionAtTop)
        top = row;
    else if (hint == PositionAtBottom)
        top = row - fitting + 1;
    else if (hint == PositionAtCenter)
        top = row - fitting / 2;
    else
        top = std::clamp(top, row - fitting + 1, row);
    verticalScrollBar()->setValue(top);

    if (m_columns->isFrozen(index.column()))
        return;
    const int left = m_header->sectionPosition(index.column());
    const int right = left + m_columns->width(index.column());
    const int frozen = m_columns->frozenWidth();
    QScrollBar *const bar = horizontalScrollBar();
    if (left - frozen < bar->value() || right - left > viewport()->width() - frozen)
        bar->setValue(left - frozen);
    else if (right > bar->value() + viewport()->width())
        bar->setValue(right - viewport()->width());
}

QModelIndex KNResultGridView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const int rows = m_resultModel.rowCount();
    const QList<int> shown = shownColumns();
    const auto columns = static_cast<int>(shown.size());
    if (rows == 0 || columns == 0)
        return {};
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return m_resultModel.index(0, shown.first());
    int row = current.row();
    // The position among the shown columns.
    auto column =
        static_cast<int>(std::lower_bound(shown.begin(), shown.end(), current.column()) - shown.begin());
    const bool isFar = modifiers & Qt::ControlModifier;
    switch (action) {
    case MoveUp:
        row = isFar ? 0 : row - 1;
        break;
    case MoveDown:
        row = isFar ? rows - 1 : row + 1;
        break;
    case MoveLeft:
    case MovePrevious:
        column = isFar ? 0 : column - 1;
        break;
    case MoveRight:
    case MoveNext:
        column = isFar ? columns - 1 : column + 1;
        break;
    case MovePageUp:
        row -= visibleRowCount();
        break;
    case MovePageDown:
        row += visibleRowCount();
        break;
    case MoveHome:
        column = 0;
        row = isFar ? 0 : row;
        break;
    case MoveEnd:
        column = columns - 1;
        row = isFar ? rows - 1 : row;
        break;
    }
    return m_resultModel.index(std::clamp(row, 0, rows - 1), shown.at(std::clamp(column, 0, columns - 1)));
}

int KNResultGridView::horizontalOffset() const
{
    return m_header->offset();
}

int KNResultGridView::verticalOffset() const
{
    return topRow() * m_rowHeight;
}

bool KNResultGridView::isIndexHidden(const QModelIndex &index) const
{
    return m_columns->isHidden(index.column());
}

void KNResultGridView::setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command)
{
    const int rows = m_resultModel.rowCount();
    const int columns = m_resultModel.columnCount();
    if (rows == 0 || columns == 0)
        return;
    // A cell below frozen columns is not found by its position.
    if (m_isExtending && m_selectionStart.isValid() && (command & QItemSelectionModel::Current)) {
        const auto [firstRow, lastRow] = std::minmax({m_selectionStart.row(), currentIndex().row()});
        const auto [left, right] = std::minmax({m_selectionStart.column(), currentIndex().column()});
        selectionModel()->select({m_resultModel.index(firstRow, left), m_resultModel.index(lastRow, right)},
                                 command);
        return;
    }
    const auto columnAt = [&](int x) {
        const int column = m_columns->at(x);
        return column >= 0 ? column : x < 0 ? 0 : columns - 1;
    };
    const QRect area = rect.normalized();
    const QModelIndex first =
        m_resultModel.index(std::clamp(rowAt(area.top()), 0, rows - 1), columnAt(area.left()));
    const QModelIndex last =
        m_resultModel.index(std::clamp(rowAt(area.bottom()), 0, rows - 1), columnAt(area.right()));
    selectionModel()->select(QItemSelection(first, last), command);
}

QRegion KNResultGridView::visualRegionForSelection(const QItemSelection &selection) const
{
    QRegion region;
    for (const QItemSelectionRange &range : selection) {
        const int first = std::max(range.top(), topRow());
        const int last = std::min(range.bottom(), topRow() + visibleRowCount() + 1);
        if (first > last)
            continue;
        region +=
            QRect(0, (first - topRow()) * m_rowHeight, viewport()->width(), (last - first + 1) * m_rowHeight);
    }
    return region & viewport()->rect();
}

void KNResultGridView::selectAll()
{
    selectRows(0, m_resultModel.rowCount() - 1, QItemSelectionModel::ClearAndSelect);
}

void KNResultGridView::selectRows(int first, int last, QItemSelectionModel::SelectionFlags command)
{
    const int columns = m_resultModel.columnCount();
    if (first < 0 || last < first || columns == 0)
        return;
    selectionModel()->select({m_resultModel.index(first, 0), m_resultModel.index(last, columns - 1)},
                             command);
}

void KNResultGridView::selectColumn(int column, QItemSelectionModel::SelectionFlags command)
{
    const int rows = m_resultModel.rowCount();
    if (rows == 0)
        return;
    selectionModel()->setCurrentIndex(m_resultModel.index(topRow(), column), QItemSelectionModel::NoUpdate);
    selectionModel()->select({m_resultModel.index(0, column), m_resultModel.index(rows - 1, column)},
                             command);
}

ResultRows KNResultGridView::selectedRows() const
{
    ResultRows rows = m_resultModel.shownRows();
    rows.ranges.clear();
    rows.columns.clear();
    const QItemSelection selection = selectionModel()->selection();
    QList<QPair<int, int>> ranges;
    std::vector<bool> columns(static_cast<std::size_t>(m_resultModel.columnCount()));
    for (const QItemSelectionRange &range : selection) {
        ranges.append({range.top(), range.bottom()});
        std::fill(columns.begin() + range.left(), columns.begin() + range.right() + 1, true);
    }
    std::sort(ranges.begin(), ranges.end());
    const int lastStored = m_resultModel.storedRowCount() - 1; // new rows have no stored values
    for (const auto &[top, last] : std::as_const(ranges)) {
        const int bottom = std::min(last, lastStored);
        if (bottom < top)
            continue;
        const qsizetype end = rows.ranges.isEmpty() ? 0 : rows.ranges.last().first + rows.ranges.last().count;
        const qsizetype first = rows.ranges.isEmpty() ? top : std::max<qsizetype>(top, end);
        if (!rows.ranges.isEmpty() && top <= end)
            rows.ranges.last().count += std::max<qsizetype>(0, bottom + 1 - end);
        else
            rows.ranges.append({first, bottom + 1 - first});
    }
    for (const int column : shownColumns()) {
        if (columns[static_cast<std::size_t>(column)])
            rows.columns.append(column);
    }
    return rows;
}

qsizetype KNResultGridView::hiddenColumnsInSelection() const
{
    const QItemSelection selection = selectionModel()->selection();
    const QList<int> hidden = m_columns->hidden();
    return std::count_if(hidden.begin(), hidden.end(), [&](int column) {
        return std::any_of(selection.begin(), selection.end(), [&](const QItemSelectionRange &range) {
            return range.left() <= column && column <= range.right();
        });
    });
}

QList<KNCellStatistics::Range> KNResultGridView::selectedCells() const
{
    QList<KNCellStatistics::Range> cells;
    const QList<int> shown = shownColumns();
    const int lastStored = m_resultModel.storedRowCount() - 1;
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        if (range.top() > lastStored)
            continue;
        QList<qsizetype> columns;
        for (const int column : shown) {
            if (range.left() <= column && column <= range.right())
                columns.append(column);
        }
        if (!columns.isEmpty())
            cells.append({{range.top(), std::min(range.bottom(), lastStored) - range.top() + 1}, columns});
    }
    return cells;
}

void KNResultGridView::keyPressEvent(QKeyEvent *event)
{
    if (state() == EditingState && !hasFocus())
        return QAbstractItemView::keyPressEvent(event); // an editor has left it
    const QModelIndex current = currentIndex();
    if (event->key() == Qt::Key_Space && current.isValid()) {
        if (event->modifiers() == Qt::ControlModifier)
            return selectColumn(current.column(), QItemSelectionModel::ClearAndSelect);
        if (event->modifiers() == Qt::ShiftModifier)
            return selectRows(current.row(), current.row(), QItemSelectionModel::ClearAndSelect);
    }
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && current.isValid() &&
        (event->modifiers() & ~Qt::KeypadModifier) == 0)
        return valueRequested(current);
    // These are shortcuts of the program, not letters to search for.
    if (!isEditable(current) && !event->text().isEmpty() && event->text().at(0).isPrint() &&
        (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0)
        return event->ignore();
    // Keys such as Delete and Escape carry a control character, which would begin to edit.
    if (isEditable(current) && !event->text().isEmpty() && !event->text().at(0).isPrint() &&
        event->key() != Qt::Key_Tab)
        return event->ignore();
    m_isExtending = event->modifiers() & Qt::ShiftModifier;
    QAbstractItemView::keyPressEvent(event);
    m_isExtending = false;
}

bool KNResultGridView::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
{
    // A letter replaces the value, so it is typed into the cell.
    const bool opensEditor =
        trigger == AllEditTriggers || (trigger & editTriggers() & (DoubleClicked | EditKeyPressed));
    bool isEdited = false;
    if (opensEditor && isEditable(index) && state() != EditingState)
        Q_EMIT editRequested(index, &isEdited);
    return isEdited || QAbstractItemView::edit(index, trigger, event);
}

bool KNResultGridView::isEditable(const QModelIndex &index) const
{
    return index.isValid() && (m_resultModel.flags(index) & Qt::ItemIsEditable);
}

void KNResultGridView::changeEvent(QEvent *event)
{
    QAbstractItemView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        measure();
        updateGeometries();
    }
}

void KNResultGridView::scrollContentsBy(int dx, int)
{
    if (dx != 0)
        m_columns->setOffset(horizontalScrollBar()->value());
    updateEditorGeometries();
    viewport()->update();
}

void KNResultGridView::rowsInserted(const QModelIndex &parent, int first, int last)
{
    QAbstractItemView::rowsInserted(parent, first, last);
    if (first < RowsForWidths)
        fitColumns();
    updateGeometries();
    if (first <= topRow() + visibleRowCount() + 1)
        viewport()->update();
}

void KNResultGridView::reset()
{
    QAbstractItemView::reset();
    updateGeometries();
    verticalScrollBar()->setValue(0);
    viewport()->update();
    m_rowNumbers->update();
}

/// The base class would find the rectangle of each changed cell, also of those far out of view.
void KNResultGridView::dataChanged(const QModelIndex &, const QModelIndex &, const QList<int> &)
{
    updateEditorData();
    viewport()->update();
    m_rowNumbers->update();
    KNResultGridAccessible::reportCurrentCell(this);
}

void KNResultGridView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QAbstractItemView::currentChanged(current, previous);
    viewport()->update();
    if (!current.isValid())
        return;
    m_currentColumn = current.column();
    if (!m_isExtending && !(QGuiApplication::keyboardModifiers() & Qt::ShiftModifier))
        m_selectionStart = current;
    setAccessibleDescription(tr("Row %1, %2: %3")
                                 .arg(QString::number(current.row() + 1),
                                      m_resultModel.columnName(current.column()),
                                      current.data(Qt::AccessibleTextRole).toString()));
    KNResultGridAccessible::reportCurrentCell(this);
}

bool KNResultGridView::viewportEvent(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractItemView::viewportEvent(event);
    const auto *const help = static_cast<QHelpEvent *>(event);
    const QModelIndex index = indexAt(help->pos());
    const KNResultTableModel::Cell cell =
        index.isValid() ? m_resultModel.cell(index.row(), index.column()) : KNResultTableModel::Cell();
    const bool isElided =
        fontMetrics().horizontalAdvance(cell.text) + 2 * m_padding > visualRect(index).width();
    if (index.isValid() && isElided)
        QToolTip::showText(help->globalPos(), KNPlainToolTip(cell.text), viewport(), visualRect(index));
    else
        QToolTip::hideText();
    return true;
}
