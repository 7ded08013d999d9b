// Measuring and painting of KNResultGridView.
#include "UI/Results/KNResultColumns.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNRowNumberBar.h"

#include <QHeaderView>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace {

constexpr int NarrowestColumn = 4; // in characters, as the maximum
constexpr int WidestColumn = 45;

QColor mixed(const QColor &a, const QColor &b, float shareOfA)
{
    const auto mix = [&](float x, float y) { return x * shareOfA + y * (1 - shareOfA); };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()), mix(a.blueF(), b.blueF()));
}

} // namespace

void KNResultGridView::measure()
{
    m_padding = fontMetrics().horizontalAdvance(QLatin1Char('0')) * 2 / 3;
    m_rowHeight = fontMetrics().height() + fontMetrics().height() / 3;
}

int KNResultGridView::sizeHintForColumn(int column) const
{
    const int character = fontMetrics().averageCharWidth();
    // Includes space for the sort indicator.
    int width = m_header->sectionSizeHint(column) + fontMetrics().horizontalAdvance(QStringLiteral(" ▼"));
    // Measure only the visible rows; at first the first ones that arrived.
    const int first = topRow();
    const int last = std::min(m_resultModel.rowCount(), first + std::max(RowsForWidths, visibleRowCount()));
    for (int row = first; row < last; ++row) {
        const KNResultTableModel::Cell cell = m_resultModel.cell(row, column);
        const QString &text = cell.isNull ? m_nullText : cell.text;
        width = std::max(width, fontMetrics().horizontalAdvance(text.left(2 * WidestColumn)) + 2 * m_padding);
    }
    return std::clamp(width + 2, NarrowestColumn * character, WidestColumn * character);
}

/// Fits the column widths to the first rows while they arrive, unless the user has set them.
void KNResultGridView::fitColumns()
{
    const int rows = std::min(RowsForWidths, m_resultModel.rowCount());
    if (m_wasResizedByUser || (m_fittedRows > 0 && rows <= m_fittedRows))
        return;
    m_isFitting = true;
    for (int column = 0; column < m_resultModel.columnCount(); ++column) {
        const int width = sizeHintForColumn(column);
        if (m_fittedRows == 0 || width > m_header->sectionSize(column))
            m_header->resizeSection(column, width);
    }
    m_isFitting = false;
    m_fittedRows = rows;
}

void KNResultGridView::updateGeometries()
{
    if (m_isUpdatingGeometries)
        return;
    m_isUpdatingGeometries = true;
    const int headerHeight = m_header->sizeHint().height();
    const int numbersWidth = m_rowNumbers->widthForRows(m_resultModel.rowCount());
    if (viewportMargins() != QMargins(numbersWidth, headerHeight, 0, 0))
        setViewportMargins(numbersWidth, headerHeight, 0, 0);
    const QRect area = viewport()->geometry();
    m_columns->setGeometry({area.left(), area.top() - headerHeight, area.width(), headerHeight});
    m_rowNumbers->setGeometry(area.left() - numbersWidth, area.top(), numbersWidth, area.height());

    const int rows = visibleRowCount();
    verticalScrollBar()->setRange(0, std::max(0, m_resultModel.rowCount() - rows));
    verticalScrollBar()->setPageStep(rows);
    verticalScrollBar()->setSingleStep(1);
    horizontalScrollBar()->setRange(0, std::max(0, m_header->length() - area.width()));
    horizontalScrollBar()->setPageStep(area.width());
    horizontalScrollBar()->setSingleStep(fontMetrics().averageCharWidth() * 4);
    QAbstractItemView::updateGeometries();
    m_isUpdatingGeometries = false;
}

void KNResultGridView::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const int first = std::max(0, rowAt(event->rect().top()));
    const int last = std::min(m_resultModel.rowCount() - 1, rowAt(event->rect().bottom()));
    const QItemSelection selection = selectionModel()->selection();
    for (int row = first; row <= last; ++row)
        paintRow(painter, row, selection);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(m_padding, m_padding, -m_padding, -m_padding),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText());
}

QString KNResultGridView::emptyText() const
{
    if (m_resultModel.rowCount() > 0 || !m_resultModel.isFinished())
        return {};
    return m_resultModel.arrangement().isFiltered()
               ? tr("No row matches the filter. \"Show All Rows\" removes it.")
               : tr("The result has no rows.");
}

void KNResultGridView::paintRow(QPainter &painter, int row, const QItemSelection &selection)
{
    const int frozen = m_columns->frozenWidth();
    const int columns = m_resultModel.columnCount();
    const int y = (row - topRow()) * m_rowHeight;
    const int first = std::max(0, m_columns->at(frozen));
    const int lastShown = m_columns->at(viewport()->width() - 1);
    painter.setClipRect(frozen, y, viewport()->width() - frozen, m_rowHeight);
    paintCells(painter, row, first, lastShown < 0 ? columns - 1 : lastShown, selection);
    painter.setClipping(false);
    if (frozen == 0)
        return;
    paintCells(painter, row, 0, m_columns->lastFrozen(), selection);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(frozen - 1, y, frozen - 1, y + m_rowHeight - 1);
}

void KNResultGridView::paintCells(QPainter &painter, int row, int first, int last,
                                  const QItemSelection &selection)
{
    const int y = (row - topRow()) * m_rowHeight;
    const QModelIndex current = currentIndex();
    const QPen lines(mixed(palette().color(QPalette::Text), palette().color(QPalette::Base), 0.15F));
    m_resultModel.visitCells(row, first, last, [&](int column, const KNResultTableModel::Cell &cell) {
        const QRect rect(m_columns->x(column), y, m_columns->width(column), m_rowHeight);
        if (rect.isEmpty())
            return; // hidden
        const bool isSelected = std::any_of(selection.begin(), selection.end(), [&](const auto &range) {
            return range.top() <= row && row <= range.bottom() && range.left() <= column &&
                   column <= range.right();
        });
        paintCell(painter, rect, cell, isSelected);
        painter.setPen(lines);
        painter.drawLine(rect.topRight(), rect.bottomRight());
        painter.drawLine(rect.bottomLeft(), rect.bottomRight());
        if (current.row() == row && current.column() == column) {
            painter.setPen(QPen(palette().color(isSelected ? QPalette::HighlightedText : QPalette::Highlight),
                                1, isSelected ? Qt::DotLine : Qt::SolidLine));
            painter.drawRect(rect.adjusted(0, 0, -2, -2));
        }
    });
}

/// Edits are tinted: changed and new cells, and deleted rows, whose text is crossed out as well.
QColor KNResultGridView::groundOf(const KNResultTableModel::Cell &cell) const
{
    using Change = KNResultTableModel::Change;
    const QColor base = palette().color(QPalette::Base);
    switch (cell.change) {
    case Change::None:
        break;
    case Change::Changed:
        return mixed(QColor(0xE0, 0xA8, 0x00), base, 0.28F);
    case Change::New:
        return mixed(QColor(0x2E, 0xA0, 0x43), base, 0.22F);
    case Change::Deleted:
        return mixed(QColor(0xD0, 0x39, 0x3E), base, 0.22F);
    }
    return base;
}

void KNResultGridView::paintCell(QPainter &painter, const QRect &rect, const KNResultTableModel::Cell &cell,
                                 bool isSelected)
{
    const QPalette::ColorGroup group =
        hasFocus() || !isActiveWindow() ? QPalette::Active : QPalette::Inactive;
    const QColor ground = isSelected ? palette().color(group, QPalette::Highlight) : groundOf(cell);
    const QColor ink = palette().color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
    painter.fillRect(rect, cell.isNull && !isSelected ? mixed(palette().color(QPalette::Text), ground, 0.05F)
                                                      : ground);
    const QRect inside = rect.adjusted(m_padding, 0, -m_padding - 1, -1);
    QFont struckOut = font();
    struckOut.setStrikeOut(cell.change == KNResultTableModel::Change::Deleted);
    if (!cell.isNull && !cell.isMarked) {
        painter.setPen(ink);
        painter.setFont(struckOut);
        const QString text = fontMetrics().elidedText(cell.text, Qt::ElideRight, inside.width());
        painter.drawText(
            inside, Qt::AlignVCenter | Qt::TextSingleLine | (cell.isNumber ? Qt::AlignRight : Qt::AlignLeft),
            text);
        painter.setFont(font());
        return;
    }
    QFont italic = struckOut;
    italic.setItalic(true);
    painter.setFont(italic);
    painter.setPen(isSelected ? ink : mixed(ink, ground, 0.6F));
    const QString &text = cell.isNull ? m_nullText : cell.text;
    painter.drawText(inside, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     QFontMetrics(italic).elidedText(text, Qt::ElideRight, inside.width()));
    painter.setFont(font());
}
