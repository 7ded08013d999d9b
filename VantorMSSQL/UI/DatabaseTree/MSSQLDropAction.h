#pragma once

#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"

/// Drops the object of an entry of the tree after the user has seen and accepted the statement. On the UI
/// thread.
struct MSSQLDropAction
{
    KNDatabaseTreeEntry::Ptr entry;
    QString title;
    QString information;
    QString progress;
    QString errorDomain;
    KNQueryLoaderPtr statement;
    std::function<void(KNWorkspace &workspace)> dropped =
        {}; ///< called after success; empty for nothing more

    /// Shows the preview. After success the entry is removed from the tree and the selection is cleared.
    void begin(KNWorkspace &workspace) const;

    /// Removes the entry of a dropped object unless a reload or a notification has already done so.
    static void removeFromTree(const KNDatabaseTreeEntry::Ptr &entry, KNWorkspace &workspace);
};
