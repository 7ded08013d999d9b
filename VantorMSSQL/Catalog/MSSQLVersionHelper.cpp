#include "Catalog/MSSQLVersionHelper.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Database/VantorDatabaseClient.h"
#include "Foundation/KNLogHelper.h"

MSSQLVersionHelper *MSSQLVersionHelper::sharedInstance()
{
    static auto *const helper =
        new MSSQLVersionHelper; // never destroyed: work of the global queue may outlive main()
    return helper;
}

MSSQLVersionHelper::MSSQLVersionHelper()
    : m_defaultVersionSemaphore(QStringLiteral("com.quorvex.vantor.mssql.defaultVersionSemaphore"))
{
}

QString MSSQLVersionHelper::versionForDBC(const MSSQLDatabaseConnectionDetails &dbc)
{
    return lookUp(dbc, KeepFailure::Yes, [&dbc](const QString &query, const ReadRows &readRows) {
        return MSSQLCatalogReader::run(dbc, {query, nullptr},
                                       [&](DatabaseResultSet *rows, const KNError &) { readRows(rows); });
    });
}

void MSSQLVersionHelper::learnFrom(VantorDatabaseClient &client, const MSSQLDatabaseConnectionDetails &dbc)
{
    lookUp(dbc, KeepFailure::No, [&client](const QString &query, const ReadRows &readRows) {
        KNError error;
        readRows(client.executeQuery(query, &error).get());
        return error;
    });
}

QString MSSQLVersionHelper::lookUp(const MSSQLDatabaseConnectionDetails &dbc, KeepFailure keepFailure,
                                   const RunQuery &runQuery)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    const QString key = dbc.connectionId().isNull() ? dbc.description() : dbc.connectionId();
    log->logMessage("MSSQLVersionHelper finding version for %@", key);
    const KNSemaphoreLocker locker(m_defaultVersionSemaphore);
    if (const auto known = m_lookup.constFind(key); known != m_lookup.constEnd()) {
        log->logMessage("MSSQLVersionHelper version was cached for %@ (%@)", key, *known);
        return *known;
    }
    const QString version = findVersion(dbc, runQuery);
    if (!version.isEmpty() || keepFailure == KeepFailure::Yes)
        m_lookup.insert(key, version);
    log->logMessage("MSSQLVersionHelper version was found for %@ (%@)", key, version);
    return version;
}

QString MSSQLVersionHelper::findVersion(const MSSQLDatabaseConnectionDetails &dbc, const RunQuery &runQuery)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    const QString query = MSSQLCatalogReader::text(dbc, QStringLiteral("DatabaseTree_ServerVersion"));
    QString version;
    const KNError error = runQuery(query, [&](DatabaseResultSet *rows) {
        log->logMessage("MSSQLVersionHelper is loading the default version.");
        while (version.isEmpty() && rows && rows->next()) {
            const KNValue value = rows->objectForColumnIndex(0);
            log->logMessage("MSSQLVersionHelper found a row. Object 1 is: %@", value.displayText());
            version = value.text();
        }
    });
    if (error)
        log->logError(error.inDomain(QStringLiteral("mssql.versionForDBC")),
                      {{QStringLiteral("Query"), query}});
    if (!version.isEmpty())
        return version;
    log->logMessage("ERROR: Failed to find the version. Using blank.");
    log->logError(error.inDomain(QStringLiteral("mssql.versionForDBC.nilResult")), {});
    return QStringLiteral("");
}

bool MSSQLVersionHelper::isDBCAzure(const MSSQLDatabaseConnectionDetails &dbc)
{
    return versionForDBC(dbc).contains(QLatin1String("azure"), Qt::CaseInsensitive);
}

bool MSSQLVersionHelper::isSQL2000(const MSSQLDatabaseConnectionDetails &dbc)
{
    const QString version = versionForDBC(dbc);
    const bool is2000 = !version.contains(QLatin1String("Azure"), Qt::CaseInsensitive) &&
                        version.contains(QLatin1String("2000")) && version.contains(QLatin1String("8."));
    if (is2000)
        KNLogHelper::sharedInstance()->logMessage("Server is SQL2000. (%@).", version);
    return is2000;
}

bool MSSQLVersionHelper::isSQL2000(const VantorDBC &dbc)
{
    const auto *const details = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(&dbc);
    return details && isSQL2000(*details);
}
