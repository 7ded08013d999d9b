#pragma once

#include "Foundation/KNSemaphore.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include <QHash>

#include <functional>

class DatabaseResultSet;
class VantorDatabaseClient;

/// Caches the SQL Server version of each connection for the life of the process, including failed lookups.
/// Any thread except the UI thread: the first lookup of a connection waits for the server, and lookups wait
/// for each other.
class MSSQLVersionHelper
{
public:
    static MSSQLVersionHelper *sharedInstance();

    MSSQLVersionHelper();
    MSSQLVersionHelper(const MSSQLVersionHelper &) = delete;
    MSSQLVersionHelper &operator=(const MSSQLVersionHelper &) = delete;

    /// The server's version banner (@@VERSION); empty, never null, when it is unknown.
    QString versionForDBC(const MSSQLDatabaseConnectionDetails &dbc);
    bool isDBCAzure(const MSSQLDatabaseConnectionDetails &dbc);
    bool isSQL2000(const MSSQLDatabaseConnectionDetails &dbc);
    /// The same; false for settings of another kind of server.
    bool isSQL2000(const VantorDBC &dbc);

    /// Queries the version through a connected client, unless it is known; this saves another login. A
    /// failure is not cached, because the client may have been cancelled.
    void learnFrom(VantorDatabaseClient &client, const MSSQLDatabaseConnectionDetails &dbc);

private:
    using ReadRows = std::function<void(DatabaseResultSet *rows)>;
    using RunQuery = std::function<KNError(const QString &query, const ReadRows &readRows)>;

    enum class KeepFailure { No, Yes };
    QString lookUp(const MSSQLDatabaseConnectionDetails &dbc, KeepFailure keepFailure,
                   const RunQuery &runQuery);
    static QString findVersion(const MSSQLDatabaseConnectionDetails &dbc, const RunQuery &runQuery);

    KNSemaphore m_defaultVersionSemaphore;
    QHash<QString, QString> m_lookup; ///< by connection; guarded by m_defaultVersionSemaphore
};
