#include "UI/Results/KNResultColumns.h"

#include <QDataStream>
#include <QHeaderView>
#include <QIODevice>

KNResultColumns::KNResultColumns(QAbstractItemModel &model, QWidget *grid)
    : QObject(grid)
    , m_header(new QHeaderView(Qt::Horizontal, grid))
    , m_frozenHeader(new QHeaderView(Qt::Horizontal, grid))
{
    m_header->setAccessibleName(tr("Columns of the result"));
    m_frozenHeader->setAccessibleName(tr("Frozen columns of the result"));
    for (QHeaderView *const header : {m_header, m_frozenHeader}) {
        prepare(header);
        header->setModel(&model);
    }
    m_frozenHeader->hide();
    connect(m_header, &QHeaderView::sectionResized, this, [this](int column, int, int size) {
        if (size > 0) // a header resizes a section before it hides it
            updateColumn(column);
    });
    connect(m_frozenHeader, &QHeaderView::sectionResized, this, [this](int column, int, int size) {
        if (!m_frozenHeader->isSectionHidden(column) && !isHidden(column))
            m_header->resizeSection(column, size);
    });
}

void KNResultColumns::prepare(QHeaderView *header)
{
    header->setSectionsClickable(true);
    header->setHighlightSections(false);
    header->setSortIndicatorShown(false);
    header->setFocusPolicy(Qt::NoFocus);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QHeaderView::sectionHandleDoubleClicked, this, &KNResultColumns::fitRequested);
    connect(header, &QHeaderView::sectionPressed, this, &KNResultColumns::pressed);
    connect(header, &QHeaderView::sectionDoubleClicked, this, &KNResultColumns::doubleClicked);
    connect(header, &QWidget::customContextMenuRequested, this, [this, header](const QPoint &position) {
        const int column = header->logicalIndexAt(position);
        if (column >= 0)
            Q_EMIT menuRequested(column, header->mapToGlobal(position));
    });
}

QList<int> KNResultColumns::shown() const
{
    QList<int> columns;
    for (int column = 0; column < m_header->count(); ++column) {
        if (!isHidden(column))
            columns.append(column);
    }
    return columns;
}

QList<int> KNResultColumns::hidden() const
{
    QList<int> columns;
    for (int column = 0; column < m_header->count(); ++column) {
        if (isHidden(column))
            columns.append(column);
    }
    return columns;
}

bool KNResultColumns::isHidden(int column) const
{
    return m_header->isSectionHidden(column);
}

void KNResultColumns::hide(int column)
{
    if (m_header->count() - m_header->hiddenSectionCount() > 1)
        m_header->hideSection(column);
    updateColumn(column);
}

void KNResultColumns::show(int column)
{
    m_header->showSection(column);
    updateColumn(column);
}

/// Copies a column to the header of frozen columns.
void KNResultColumns::updateColumn(int column)
{
    m_frozenHeader->setSectionHidden(column, isHidden(column));
    if (!isHidden(column))
        m_frozenHeader->resizeSection(column, width(column));
    placeFrozenHeader();
    Q_EMIT changed();
}

void KNResultColumns::freezeUpTo(int column)
{
    m_lastFrozen = column;
    placeFrozenHeader();
    Q_EMIT changed();
}

int KNResultColumns::frozenWidth() const
{
    if (m_lastFrozen < 0)
        return 0;
    const int end = m_lastFrozen + 1;
    const int width = end < m_header->count() ? m_header->sectionPosition(end) : m_header->length();
    return width <= m_header->width() * 3 / 4 ? width : 0;
}

int KNResultColumns::x(int column) const
{
    return isFrozen(column) ? m_header->sectionPosition(column) : m_header->sectionViewportPosition(column);
}

int KNResultColumns::width(int column) const
{
    return m_header->sectionSize(column);
}

int KNResultColumns::at(int x) const
{
    // The header adds its offset.
    return m_header->logicalIndexAt(x >= 0 && x < frozenWidth() ? x - m_header->offset() : x);
}

void KNResultColumns::setGeometry(const QRect &area)
{
    m_header->setGeometry(area);
    placeFrozenHeader();
}

void KNResultColumns::placeFrozenHeader()
{
    const int width = frozenWidth();
    m_frozenHeader->setGeometry(QRect(m_header->pos(), QSize(width, m_header->height())));
    m_frozenHeader->setVisible(width > 0);
    m_frozenHeader->raise();
}

void KNResultColumns::setOffset(int offset)
{
    m_header->setOffset(offset);
}

QByteArray KNResultColumns::state() const
{
    QByteArray state;
    QDataStream stream(&state, QIODevice::WriteOnly);
    stream << m_header->saveState() << m_lastFrozen;
    return state;
}

void KNResultColumns::restoreState(const QByteArray &state)
{
    QDataStream stream(state);
    QByteArray header;
    int lastFrozen = -1;
    stream >> header >> lastFrozen;
    m_header->restoreState(header);
    for (int column = 0; column < m_header->count(); ++column)
        updateColumn(column);
    freezeUpTo(lastFrozen);
}
