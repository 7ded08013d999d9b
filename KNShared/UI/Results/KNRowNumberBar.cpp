#include "UI/Results/KNRowNumberBar.h"

#include "UI/Results/KNResultGridView.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

KNRowNumberBar::KNRowNumberBar(KNResultGridView *grid)
    : QWidget(grid)
    , m_grid(grid)
{
    setAccessibleName(tr("Row numbers"));
}

int KNRowNumberBar::widthForRows(int rows) const
{
    const QString widest(qMax(3, QString::number(rows).size()), QLatin1Char('0'));
    return fontMetrics().horizontalAdvance(widest) + 2 * fontMetrics().horizontalAdvance(QLatin1Char('0'));
}

void KNRowNumberBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    QColor ink = palette().color(QPalette::WindowText);
    ink.setAlphaF(0.65F);
    painter.setPen(ink);
    const int margin = fontMetrics().horizontalAdvance(QLatin1Char('0')) * 2 / 3;
    const int last = qMin(m_grid->resultModel().rowCount(), m_grid->topRow() + m_grid->visibleRowCount() + 2);
    for (int row = m_grid->topRow(); row < last; ++row) {
        const QRect line(0, (row - m_grid->topRow()) * m_grid->rowHeight(), width() - margin,
                         m_grid->rowHeight() - 1);
        const bool isNew = m_grid->resultModel().changeOf(row) == KNResultTableModel::Change::New;
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter,
                         isNew ? QStringLiteral("*") : QString::number(row + 1));
    }
    ink.setAlphaF(0.2F);
    painter.setPen(ink);
    painter.drawLine(rect().topRight(), rect().bottomRight());
}

int KNRowNumberBar::rowAt(const QPoint &point) const
{
    return qBound(0, m_grid->topRow() + point.y() / m_grid->rowHeight(),
                  m_grid->resultModel().rowCount() - 1);
}

void KNRowNumberBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_grid->resultModel().rowCount() == 0)
        return;
    m_grid->setFocus();
    const int row = rowAt(event->pos());
    const bool extends = event->modifiers() & Qt::ShiftModifier;
    m_anchorRow = extends ? qMin(m_anchorRow, m_grid->resultModel().rowCount() - 1) : row;
    m_grid->selectionModel()->setCurrentIndex(m_grid->resultModel().index(row, 0),
                                              QItemSelectionModel::NoUpdate);
    m_grid->selectRows(qMin(row, m_anchorRow), qMax(row, m_anchorRow),
                       event->modifiers() & Qt::ControlModifier ? QItemSelectionModel::Toggle
                                                                : QItemSelectionModel::ClearAndSelect);
}

void KNRowNumberBar::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton) || m_grid->resultModel().rowCount() == 0)
        return;
    const int row = rowAt(event->pos());
    m_grid->scrollTo(m_grid->resultModel().index(row, m_grid->currentIndex().column()));
    m_grid->selectRows(qMin(row, m_anchorRow), qMax(row, m_anchorRow), QItemSelectionModel::ClearAndSelect);
}

void KNRowNumberBar::wheelEvent(QWheelEvent *event)
{
    QCoreApplication::sendEvent(m_grid->viewport(), event);
}
