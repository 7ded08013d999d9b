#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "UI/KNSharedUIExport.h"

#include <QAbstractItemModel>
#include <QSet>

/// The entries of an object tree as an item model. An entry is loaded when its row is expanded. Loads may
/// finish on any thread; the model processes their results on the UI thread, on which it is used.
class KNSHAREDUI_EXPORT KNDatabaseTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    using Entry = KNDatabaseTreeEntry::Ptr;

    enum Role {
        DetailsRole = Qt::UserRole, ///< the secondary text; null for none
        IsBusyRole,                 ///< the children are being loaded
        IsErrorRole,                ///< the row shows why there are no children
        IsDimmedRole,               ///< the row is drawn in a dimmed colour
        IsHeadRole,                 ///< the row of a connection, with its details on a separate line
        HeightRole,                 ///< minimum height in points
    };

    explicit KNDatabaseTreeModel(QObject *parent = nullptr);
    ~KNDatabaseTreeModel() override;

    /// Shows the tree of this entry as the first row; null for no tree. The model observes loads of the tree
    /// and of search copies made from it.
    void setRoot(const Entry &root);
    const Entry &root() const { return m_root; }

    /// The entry of an index; null for an invalid index.
    Entry entry(const QModelIndex &index) const;
    /// The index of an entry; invalid if the entry has no row.
    QModelIndex indexOf(const KNDatabaseTreeEntry &entry) const;
    bool isBusy() const { return !m_loading.isEmpty(); }

    /// Shows only those children of a row whose names contain the text, in any case; all for an empty text.
    /// It remains set when the children are loaded again.
    void setFilter(const QModelIndex &index, const QString &text);
    QString filter(const QModelIndex &index) const;

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
    /// The drag texts of the entries, joined with ", ".
    QMimeData *mimeData(const QModelIndexList &indexes) const override;

Q_SIGNALS:
    /// The rows below `parent` were replaced.
    void childrenReplaced(const QModelIndex &parent);
    void busyChanged(bool isBusy);
    /// A load has failed with an error that the user must see even if no row shows it.
    void loadFailed(const KNError &error);

private:
    struct Node;
    class LoadWatcher;

    Node *nodeAt(const QModelIndex &index) const;
    QModelIndex indexOf(const Node &node) const;
    QString detailsOf(const Node &node) const;
    QString nameWithDetails(const Node &node) const;
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
