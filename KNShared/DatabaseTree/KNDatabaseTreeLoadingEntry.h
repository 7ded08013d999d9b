#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Foundation/KNSemaphore.h"

#include <optional>

/// An entry that loads its children in the background, one load at a time. All classes share the load
/// sequence and declare how they vary it.
class KNSHARED_EXPORT KNDatabaseTreeLoadingEntry : public KNDatabaseTreeEntry
{
public:
    enum class Finishes { OnBackgroundThread, OnMainQueue };

    struct Protocol
    {
        /// A forced load first removes the old children, even if another load is running.
        bool clearsFirst = false;
        /// The return value of loadEntriesAsync() after it has started a load.
        bool returnsOnceStarted = true;
        /// The thread on which the children are replaced and the delegate is called.
        Finishes finishes = Finishes::OnBackgroundThread;
    };

    bool canHaveChildren() const override { return true; }
    /// Returns false if the children are loaded and `force` is not set, and true if a load is already
    /// running. For a new load the protocol defines the return value.
    bool loadEntriesAsync(bool force) override;

protected:
    explicit KNDatabaseTreeLoadingEntry(const Protocol &protocol, const QString &semaphore = {});

    /// Set to false for an entry that was created with its children and keeps them.
    void setCanRefresh(bool canRefresh) { m_canRefresh = canRefresh; }

    /// Returns the new, adopted children, on a background thread. Returns nothing, with an error, if the
    /// query failed; the old children then stay. An error with an empty list is shown as one error entry.
    virtual std::optional<List> loadEntries(KNError *error) = 0;
    /// Called before a load, on the thread that requested it.
    virtual void willBeginLoading() {}
    /// Called with the future children, still on the background thread.
    virtual void didLoadEntries(const Children &) {}
    /// Called after the children were replaced and before the delegate is called, on the finishing thread.
    virtual void willFinishLoading() {}

private:
    std::shared_ptr<KNDatabaseTreeLoadingEntry> self();
    Children load();
    void finish(const Children &children);

    const Protocol m_protocol;
    bool m_canRefresh = true;
    KNSemaphore m_dataLoadSemaphore; ///< held by the running load
};
