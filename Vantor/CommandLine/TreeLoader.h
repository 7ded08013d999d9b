#pragma once

#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"

#include <QStringList>

/// Loads the object tree of a connection step by step, on the main thread, which waits. At its end all work
/// that the tree has begun is over.
class TreeLoader
{
public:
    using Entry = KNDatabaseTreeEntry::Ptr;

    explicit TreeLoader(const VantorDBC &settings);
    ~TreeLoader();
    TreeLoader(const TreeLoader &) = delete;
    TreeLoader &operator=(const TreeLoader &) = delete;

    const std::shared_ptr<DatabaseTreeEntryServerRoot> &root() const { return m_root; }

    /// The children, loaded if they were not; none for an entry that has none.
    KNDatabaseTreeEntry::List children(const Entry &entry);
    /// The entry that these names lead to from `entry`; null with an error when there is none.
    Entry find(Entry entry, const QStringList &names, KNError *error);
    /// A copy of the tree with what matches the text; null when nothing does. An error when not everything
    /// could be searched.
    Entry search(const QString &text, KNError *error);

private:
    class Waker;

    const std::shared_ptr<Waker> m_waker; ///< ends the wait for a load
    const std::shared_ptr<DatabaseTreeEntryServerRoot> m_root;
};
