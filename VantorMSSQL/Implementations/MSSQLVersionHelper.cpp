#include "Implementations/MSSQLVersionHelper.h"

#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNLogHelper.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

MSSQLVersionHelper *MSSQLVersionHelper::sharedInstance()
{
    static auto *const helper = new MSSQLVersionHelper; // work of the global queue may outlive main()
    return helper;
}

MSSQLVersionHelper::MSSQLVersionHelper()
    : m_defaultVersionSemaphore(QStringLiteral("com.quorvex.vantor.mssql.defaultVersionSemaphore"))
{
}

QString MSSQLVersionHelper::versionForDBC(const MSSQLDatabaseConnectionDetails &dbc)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    const QString key = dbc.connectionId().isNull() ? dbc.description() : dbc.connectionId();
    log->logMessage("MSSQLVersionHelper finding version for %@", key);
    const KNSemaphoreLocker locker(m_defaultVersionSemaphore);
    if (const auto known = m_lookup.constFind(key); known != m_lookup.constEnd()) {
        log->logMessage("MSSQLVersionHelper version was cached for %@ (%@)", key, *known);
        return *known;
    }
    const QString version = findVersion(dbc);
    m_lookup.insert(key, version);
    log->logMessage("MSSQLVersionHelper version was found for %@ (%@)", key, version);
    return version;
}

QString MSSQLVersionHelper::findVersion(const MSSQLDatabaseConnectionDetails &dbc)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    const QString query = dbc.queryLoader()->queryByTitle(QStringLiteral("DatabaseTree_ServerVersion"));
    QString version;
    KNError error;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            log->logMessage("MSSQLVersionHelper is loading the default version.");
            const auto rows = client.executeQuery(query, failure);
            while (version.isEmpty() && rows && rows->next()) {
                const KNValue value = rows->objectForColumnIndex(0);
                log->logMessage("MSSQLVersionHelper found a row. Object 1 is: %@", value.displayText());
                version = value.text();
            }
        },
        dbc, &error);
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
