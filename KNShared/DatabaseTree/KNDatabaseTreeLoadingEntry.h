#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Foundation/KNSemaphore.h"

#include <optional>

/// An entry whose children are loaded in the background, one load at a time. The way of a load is the same
/// for all; in what they differ, they declare.
class KNSHARED_EXPORT KNDatabaseTreeLoadingEntry : public KNDatabaseTreeEntry
{
public:
    enum class Finishes { OnBackgroundThread, OnMainQueue };

    struct Protocol
    {
        /// A forced load takes the old children away before anything else, even when one is running already.
        bool clearsFirst = false;
        /// What loadEntriesAsync() returns when it has started a load.
        bool returnsOnceStarted = true;
        /// Where the children are replaced and the delegate is told.
        Finishes finishes = Finishes::OnBackgroundThread;
    };

    bool canHaveChildren() const override { return true; }
    /// False when there is nothing to load: the children are there and `force` is not set. True when a load
    /// is running already; what it returns for a new one, the protocol says.
    bool loadEntriesAsync(bool force) override;

protected:
    explicit KNDatabaseTreeLoadingEntry(const Protocol &protocol, const QString &semaphore = {});

    /// An entry that was made with its children, and keeps them.
    void setCanRefresh(bool canRefresh) { m_canRefresh = canRefresh; }

    /// The new children, adopted, on a background thread. Empty, with an error, when nothing could be asked:
    /// the old children then stay. An error together with no children is shown as one error entry.
    virtual std::optional<List> loadEntries(KNError *error) = 0;
    /// A load is about to begin, on the thread that asked for it.
    virtual void willBeginLoading() {}
    /// These will be the children: still on the background thread.
    virtual void didLoadEntries(const Children &) {}
    /// The children have just been replaced, the delegate is not told yet: on the thread that finishes.
    virtual void willFinishLoading() {}

private:
    std::shared_ptr<KNDatabaseTreeLoadingEntry> self();
    Children load();
    void finish(const Children &children);

    const Protocol m_protocol;
    bool m_canRefresh = true;
    KNSemaphore m_dataLoadSemaphore; ///< held by the load that is running
};
