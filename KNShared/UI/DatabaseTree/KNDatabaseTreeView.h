#pragma once

#include "UI/DatabaseTree/KNDatabaseTreeModel.h"

#include <QSet>
#include <QTimer>
#include <QTreeView>

/// The view of the object tree. It loads expanded entries, keeps the expansion across refreshes, and passes
/// keys and double clicks to the entries: Return acts as a double click, Ctrl+Down and Ctrl+Right are handled
/// by the entries.
class KNSHAREDUI_EXPORT KNDatabaseTreeView : public QTreeView
{
    Q_OBJECT

public:
    explicit KNDatabaseTreeView(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *model) override;
    /// The selected entry; null if none.
    KNDatabaseTreeModel::Entry currentEntry() const;
    /// Expands every entry whose children are loaded, such as in search copies.
    void expandLoaded();

Q_SIGNALS:
    void menuRequested(const KNDatabaseTreeModel::Entry &entry, const QPoint &globalPosition);

protected:
    void rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    KNDatabaseTreeModel *treeModel() const;
    QStringList pathOf(QModelIndex index) const;
    void rememberExpanded(const QModelIndex &index, bool isExpanded);
    void restore(const QModelIndex &parent);
    void expandLoadedBelow(const QModelIndex &parent);

    QSet<QStringList> m_expanded; ///< paths of display names from the root
    QStringList m_lost;           ///< the selected row that a refresh removed; empty if none
    bool m_isRemoving = false;
    QTimer m_turning; ///< animates the rings of loading rows
};
