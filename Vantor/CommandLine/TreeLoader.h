#pragma once

#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"

#include <QStringList>

/// Loads the object tree of a connection step by step, on the main thread, which waits. The destructor waits
/// until all work that the tree has started is finished.
class TreeLoader
{
public:
    using Entry = KNDatabaseTreeEntry::Ptr;

    explicit TreeLoader(const VantorDBC &settings);
    ~TreeLoader();
    TreeLoader(const TreeLoader &) = delete;
    TreeLoader &operator=(const TreeLoader &) = delete;

    const std::shared_ptr<DatabaseTreeEntryServerRoot> &root() const { return m_root; }

    /// The children, loaded first if necessary; empty for an entry without children.
    KNDatabaseTreeEntry::List children(const Entry &entry);
    /// The entry at the path `names` below `entry`; null, with an error, if there is none.
    Entry find(Entry entry, const QStringList &names, KNError *error);
    /// A copy of the tree with the entries that match the text; null if there are none. An error if not
    /// everything could be searched.
    Entry search(const QString &text, KNError *error);

private:
    class Waker;

    const std::shared_ptr<Waker> m_waker; ///< wakes the wait for a load
    const std::shared_ptr<DatabaseTreeEntryServerRoot> m_root;
};
