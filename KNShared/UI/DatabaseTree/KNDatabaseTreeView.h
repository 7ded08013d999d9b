#pragma once

#include "UI/DatabaseTree/KNDatabaseTreeModel.h"

#include <QSet>
#include <QTimer>
#include <QTreeView>

/// The object tree as a view: loads what is expanded, keeps what was expanded over a refresh, and passes keys
/// and double clicks on to the entries: Return is a double click, Ctrl+Down and Ctrl+Right are the entries'
/// own.
class KNSHAREDUI_EXPORT KNDatabaseTreeView : public QTreeView
{
    Q_OBJECT

public:
    explicit KNDatabaseTreeView(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *model) override;
    /// The selected entry; null for none.
    KNDatabaseTreeModel::Entry currentEntry() const;
    /// Expands everything whose children are known already, as those of search copies are.
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

    QSet<QStringList> m_expanded; ///< by display names from the root on
    QStringList m_lost;           ///< the row that was selected until a refresh took it away; empty for none
    bool m_isRemoving = false;
    QTimer m_turning; ///< draws the rings of rows that are loading
};
