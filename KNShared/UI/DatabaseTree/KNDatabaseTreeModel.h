#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "UI/KNSharedUIExport.h"

#include <QAbstractItemModel>
#include <QSet>

/// The entries of an object tree as rows of a view. An entry is loaded when its row is expanded. Loads are
/// told on any thread; the model takes their results up on the UI thread, where it is used.
class KNSHAREDUI_EXPORT KNDatabaseTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    using Entry = KNDatabaseTreeEntry::Ptr;

    enum Role {
        DetailsRole = Qt::UserRole, ///< the secondary text; null for none
        IsBusyRole,                 ///< the children are being loaded
        IsErrorRole,                ///< the row tells why there are no others
        IsHeadRole, ///< the row is the head of a connection, with its details on a line of their own
        HeightRole, ///< in points, at least
    };

    explicit KNDatabaseTreeModel(QObject *parent = nullptr);
    ~KNDatabaseTreeModel() override;

    /// Shows the tree of this entry, which is its first row; null for no tree. The entry's loads are watched
    /// from now on, also those of search copies made from it.
    void setRoot(const Entry &root);
    const Entry &root() const { return m_root; }

    /// Null for an index that is none.
    Entry entry(const QModelIndex &index) const;
    /// An invalid index when the entry has no row.
    QModelIndex indexOf(const KNDatabaseTreeEntry &entry) const;
    bool isBusy() const { return !m_loading.isEmpty(); }

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    bool hasChildren(const QModelIndex &parent = {}) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;
    /// The texts to drop into an editor, joined with ", ".
    QMimeData *mimeData(const QModelIndexList &indexes) const override;

Q_SIGNALS:
    /// The rows below are not those that were there before.
    void childrenReplaced(const QModelIndex &parent);
    void busyChanged(bool isBusy);

private:
    struct Node;
    class LoadWatcher;

    Node *nodeAt(const QModelIndex &index) const;
    QModelIndex indexOf(const Node &node) const;
    void didBeginLoading(const Entry &entry);
    void didFinishLoading(const Entry &entry);
    void updateChildren(Node &node);
    void replaceRows(Node &node, int first, int removed, const KNDatabaseTreeEntry::List &entries, int added);
    void forget(const Node &node);
    void setLoading(const KNDatabaseTreeEntry *entry, bool isLoading);

    const std::shared_ptr<LoadWatcher> m_watcher;
    Entry m_root;
    std::unique_ptr<Node> m_rootNode;
    QHash<const KNDatabaseTreeEntry *, Node *> m_nodes;
    QSet<const KNDatabaseTreeEntry *> m_loading;
};
