#include "UI/DatabaseTree/KNDatabaseTreeView.h"

#include "UI/DatabaseTree/KNDatabaseTreeItemDelegate.h"

#include <QContextMenuEvent>
#include <QKeyEvent>

KNDatabaseTreeView::KNDatabaseTreeView(QWidget *parent)
    : QTreeView(parent)
{
    setAccessibleName(tr("Objects of the server"));
    setHeaderHidden(true);
    setItemDelegate(new KNDatabaseTreeItemDelegate(this));
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setFrameShape(QFrame::NoFrame);
    setExpandsOnDoubleClick(false);
    constexpr int TurnInterval = 80;
    m_turning.setInterval(TurnInterval);
    connect(&m_turning, &QTimer::timeout, viewport(), qOverload<>(&QWidget::update));
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex &i) { rememberExpanded(i, true); });
    connect(this, &QTreeView::collapsed, this, [this](const QModelIndex &i) { rememberExpanded(i, false); });
}

void KNDatabaseTreeView::setModel(QAbstractItemModel *model)
{
    QTreeView::setModel(model);
    connect(treeModel(), &KNDatabaseTreeModel::childrenReplaced, this, &KNDatabaseTreeView::restore);
    connect(treeModel(), &KNDatabaseTreeModel::busyChanged, &m_turning, [this](bool isBusy) {
        if (isBusy)
            m_turning.start();
        else
            m_turning.stop();
    });
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
        if (!m_isRemoving)
            m_lost.clear(); // the user has selected another row
    });
}

KNDatabaseTreeModel *KNDatabaseTreeView::treeModel() const
{
    return static_cast<KNDatabaseTreeModel *>(model());
}

KNDatabaseTreeModel::Entry KNDatabaseTreeView::currentEntry() const
{
    return treeModel()->entry(currentIndex());
}

QStringList KNDatabaseTreeView::pathOf(QModelIndex index) const
{
    QStringList names;
    for (; index.isValid(); index = index.parent())
        names.prepend(index.data().toString());
    return names;
}

void KNDatabaseTreeView::rememberExpanded(const QModelIndex &index, bool isExpanded)
{
    if (isExpanded)
        m_expanded.insert(pathOf(index));
    else
        m_expanded.remove(pathOf(index));
}

void KNDatabaseTreeView::rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end)
{
    QModelIndex top = currentIndex();
    while (top.isValid() && top.parent() != parent)
        top = top.parent();
    if (top.isValid() && top.row() >= start && top.row() <= end)
        m_lost = pathOf(currentIndex());
    m_isRemoving = true; // the base class selects a remaining row
    QTreeView::rowsAboutToBeRemoved(parent, start, end);
    m_isRemoving = false;
}

/// Expands and selects replaced rows as the old ones were.
void KNDatabaseTreeView::restore(const QModelIndex &parent)
{
    const QStringList parentPath = pathOf(parent);
    const auto isChild = [&](const QStringList &path) {
        return path.size() == parentPath.size() + 1 && path.mid(0, parentPath.size()) == parentPath;
    };
    QSet<QString> expandedNames;
    for (const QStringList &path : std::as_const(m_expanded)) {
        if (isChild(path))
            expandedNames.insert(path.last());
    }
    const QString lost = isChild(m_lost) ? m_lost.last() : QString();
    if (expandedNames.isEmpty() && lost.isNull())
        return;
    QModelIndex found;
    for (int row = 0; row < model()->rowCount(parent); ++row) {
        const QModelIndex index = model()->index(row, 0, parent);
        const QString name = index.data().toString();
        if (expandedNames.contains(name))
            expand(index);
        if (!lost.isNull() && name == lost)
            found = index;
    }
    if (found.isValid())
        setCurrentIndex(found);
}

void KNDatabaseTreeView::expandLoaded()
{
    expandLoadedBelow({});
}

void KNDatabaseTreeView::expandLoadedBelow(const QModelIndex &parent)
{
    for (int row = 0; row < model()->rowCount(parent); ++row) {
        const QModelIndex index = model()->index(row, 0, parent);
        if (model()->rowCount(index) == 0)
            continue;
        expand(index);
        expandLoadedBelow(index);
    }
}

void KNDatabaseTreeView::keyPressEvent(QKeyEvent *event)
{
    const auto entry = currentEntry();
    const bool hasControl = event->modifiers().testFlag(Qt::ControlModifier);
    if (entry && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        entry->onDoubleClicked();
    else if (entry && hasControl && event->key() == Qt::Key_Down)
        entry->cmdDown();
    else if (entry && hasControl && event->key() == Qt::Key_Right)
        entry->cmdRight();
    else
        QTreeView::keyPressEvent(event);
}

void KNDatabaseTreeView::contextMenuEvent(QContextMenuEvent *event)
{
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    const QModelIndex index = byMouse ? indexAt(event->pos()) : currentIndex();
    if (const auto entry = treeModel()->entry(index))
        Q_EMIT menuRequested(entry, byMouse ? event->globalPos()
                                            : viewport()->mapToGlobal(visualRect(index).bottomLeft()));
}

void KNDatabaseTreeView::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTreeView::mouseDoubleClickEvent(event);
    const QModelIndex index = indexAt(event->pos());
    const auto entry = treeModel()->entry(index);
    if (!entry || !visualRect(index).contains(event->pos()))
        return;
    if (entry->canHaveChildren() && entry->dragDropEntry() == nullptr)
        setExpanded(index, !isExpanded(index));
    entry->onDoubleClicked();
}
