#include "Catalog/MSSQLCatalogReader.h"
#include "Catalog/MSSQLVersionHelper.h"
#include "DatabaseTree/KNDatabaseSearchResult.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/MachTimer.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryServer.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

#include <QScopeGuard>

namespace {

constexpr double SlowSeconds = 5.0;

/// Runs a search query and passes its rows. A failure is logged and returned; the rows passed before it are
/// incomplete.
KNError readSearchRows(const QString &sql, const VantorDBC &settings, bool retryOnError,
                       const std::function<void()> &begin,
                       const std::function<void(const DatabaseResultSet &)> &readRow)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    const KNError failure = MSSQLCatalogReader::run(
        settings, {sql, "mssqsql.databaseTree.updateSearchEntries", retryOnError},
        [&](DatabaseResultSet *rows, const KNError &error) {
            begin();
            if (error)
                log->logMessage("Error executing query. %@.", error.localizedDescription());
            else if (!rows)
                log->logMessage(QStringLiteral("Error executing searchabledatabaseentries query."));
            while (rows && !error && rows->next())
                readRow(*rows);
        });
    if (!failure)
        return failure;
    log->logError(failure, {{QStringLiteral("Query"), sql}});
    return failure;
}

/// The object of a row whose schema, name and type begin at `firstColumn`.
KNDatabaseSearchResult resultOf(const DatabaseResultSet &row, qsizetype firstColumn)
{
    const QString name = row.stringForColumnIndex(firstColumn + 1);
    return {name, row.stringForColumnIndex(firstColumn), name, row.stringForColumnIndex(firstColumn + 2)};
}

void logDuration(const char *domain, double seconds, qint64 resultCount, qint64 databaseCount,
                 const QString &version)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    log->logMessage("MSSQL updateSearchEntries took: %f", seconds);
    log->logErrorMessage(QStringLiteral("slow"), QString::fromLatin1(domain),
                         {{QStringLiteral("resultCount"), resultCount},
                          {QStringLiteral("databaseCount"), databaseCount},
                          {QStringLiteral("databaseVersion"), version}},
                         seconds, SlowSeconds);
}

} // namespace

void MSSQLDatabaseTreeEntryServer::loadSearchResults(const Children &entries)
{
    const auto server = std::static_pointer_cast<MSSQLDatabaseTreeEntryServer>(shared_from_this());
    KNDispatch::globalQueue([server, entries] {
        if (!server->m_searchLoadSemaphore.tryWait())
            return; // another feed is running; this one is skipped
        server->runSearchFeed(entries);
    });
}

MSSQLDatabaseTreeEntryServer::SearchFeed MSSQLDatabaseTreeEntryServer::lastSearchFeed() const
{
    const std::lock_guard lock(m_searchFeedMutex);
    return m_lastSearchFeed;
}

/// Runs a feed and releases the semaphore, which the caller holds.
void MSSQLDatabaseTreeEntryServer::runSearchFeed(const Children &entries)
{
    const auto signal = qScopeGuard([&] { m_searchLoadSemaphore.signal(); });
    KNError error;
    const bool isSearched = updateSearchEntries(entries, &error);
    const std::lock_guard lock(m_searchFeedMutex);
    m_lastSearchFeed = {m_lastSearchFeed.number + 1, entries, isSearched, error};
}

bool MSSQLDatabaseTreeEntryServer::updateSearchEntries(KNError *error)
{
    const quint64 before = lastSearchFeed().number;
    const bool isFree = m_searchLoadSemaphore.tryWait();
    if (!isFree)
        m_searchLoadSemaphore.wait();
    // The previous feed has just loaded the same entries, unless a refresh came between.
    const SearchFeed last = lastSearchFeed();
    if (!isFree && last.number > before && last.entries == childEntries())
        m_searchLoadSemaphore.signal();
    else
        runSearchFeed(childEntries());
    const SearchFeed feed = lastSearchFeed();
    *error = feed.error;
    return feed.isSearched;
}

bool MSSQLDatabaseTreeEntryServer::updateSearchEntries(const Children &entries, KNError *error)
{
    if (!entries || entries->empty())
        return true;
    KNLogHelper::sharedInstance()->logMessage("Want to filter %ld search results.", entries->size());
    MSSQLVersionHelper *versions = MSSQLVersionHelper::sharedInstance();
    if (versions->isSQL2000(settings())) {
        *error = KNError(QStringLiteral("mssql.updateSearchEntries.2000"), 0,
                         QStringLiteral("Search is not supported for SQL Server 2000."));
        return false;
    }
    std::vector<Database> databases;
    for (const Ptr &entry : *entries) {
        if (Database database = std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryDatabase>(entry))
            databases.push_back(std::move(database));
    }
    if (versions->isDBCAzure(settings()))
        return updateSearchEntriesAzure(databases, error);

    const MachTimer timer;
    QHash<QString, KNDatabaseSearchResults> results; // by database
    qint64 rowCount = 0;
    *error = readSearchRows(
        MSSQLTreeCatalog::text(*this, "List_SearchableDatabaseEntries"), settings(), false,
        [&] {
            results.clear();
            rowCount = 0;
        },
        [&](const DatabaseResultSet &row) {
            results[row.stringForColumnIndex(0)].append(resultOf(row, 1));
            ++rowCount;
        });
    KNDispatch::mainQueueSync([&] {
        for (const Database &database : databases)
            database->updateSearchResults(results.value(database->databaseConnectionDetails()->database()));
    });
    logDuration("mssqsql.databaseTree.updateSearchEntries.slow", timer.seconds(), rowCount, results.size(),
                versions->versionForDBC(settings()));
    return true;
}

/// On Azure a database cannot access others: each is queried separately. A failed database does not stop the
/// search of the others; the error names it.
bool MSSQLDatabaseTreeEntryServer::updateSearchEntriesAzure(const std::vector<Database> &databases,
                                                            KNError *error)
{
    const MachTimer timer;
    const QString sql = MSSQLTreeCatalog::text(*this, "List_SearchableDatabaseEntries_Azure");
    qint64 rowCount = 0;
    QStringList refused;
    KNError firstFailure;
    for (const Database &database : databases) {
        KNDatabaseSearchResults results;
        const KNError failure = readSearchRows(
            sql, *database->databaseConnectionDetails(), true, [&] { results.clear(); },
            [&](const DatabaseResultSet &row) { results.append(resultOf(row, 0)); });
        if (failure) {
            refused.append(database->displayName());
            firstFailure = firstFailure ? firstFailure : failure;
        }
        rowCount += results.size();
        KNDispatch::mainQueueSync([&] { database->updateSearchResults(results); });
    }
    if (firstFailure)
        *error = KNError(firstFailure.domain(), firstFailure.code(),
                         KNFormat("Not searched: %@. %@", refused.join(QStringLiteral(", ")),
                                  firstFailure.localizedDescription()),
                         firstFailure.userInfo());
    logDuration("mssqsql.databaseTree.updateSearchEntries.azure.slow", timer.seconds(), rowCount,
                static_cast<qint64>(databases.size()),
                MSSQLVersionHelper::sharedInstance()->versionForDBC(settings()));
    return true;
}
