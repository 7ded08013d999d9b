#include "DatabaseTree/KNDatabaseTreeLoadingEntry.h"

#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNDispatch.h"

KNDatabaseTreeLoadingEntry::KNDatabaseTreeLoadingEntry(const Protocol &protocol, const QString &semaphore)
    : m_protocol(protocol)
    , m_dataLoadSemaphore(semaphore)
{
}

std::shared_ptr<KNDatabaseTreeLoadingEntry> KNDatabaseTreeLoadingEntry::self()
{
    return std::static_pointer_cast<KNDatabaseTreeLoadingEntry>(shared_from_this());
}

bool KNDatabaseTreeLoadingEntry::loadEntriesAsync(bool force)
{
    if (!m_canRefresh || (!force && childEntries()))
        return false;
    // The user retries explicitly, even with a login that was refused.
    if (const auto &details = databaseConnectionDetails(); force && details)
        VantorDatabaseConnectionPool::sharedInstance()->forgetRefusals(*details);
    if (force && m_protocol.clearsFirst)
        setChildEntries(nullptr);
    if (!m_dataLoadSemaphore.tryWait())
        return true;
    // Another load may have finished between the two checks.
    if (!force && childEntries()) {
        m_dataLoadSemaphore.signal();
        return false;
    }
    willBeginLoading();
    setIsLoadingAsync(true);
    tellBeginLoading();
    KNDispatch::globalQueue([entry = self()] {
        const Children children = entry->load();
        if (entry->m_protocol.finishes == Finishes::OnMainQueue)
            KNDispatch::mainQueue([entry, children] { entry->finish(children); });
        else
            entry->finish(children);
    });
    return m_protocol.returnsOnceStarted;
}

KNDatabaseTreeEntry::Children KNDatabaseTreeLoadingEntry::load()
{
    KNError error;
    std::optional<List> loaded;
    try {
        loaded = loadEntries(&error);
    } catch (const KNAssertionFailure &failure) {
        // Otherwise the entry would stay busy forever.
        error = KNError(QStringLiteral("com.quorvex.vantor.databaseTree"), 0, failure.message());
    }
    Children children = loaded ? std::make_shared<const List>(std::move(*loaded)) : childEntries();
    if (error && (!children || children->empty()))
        children = std::make_shared<const List>(List{createErrorDetailsTreeEntry(error)});
    didLoadEntries(children);
    return children;
}

void KNDatabaseTreeLoadingEntry::finish(const Children &children)
{
    setChildEntries(children);
    willFinishLoading();
    setIsLoadingAsync(false);
    tellFinishLoading();
    m_dataLoadSemaphore.signal();
}
