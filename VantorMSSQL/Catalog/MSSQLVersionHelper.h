#pragma once

#include "Foundation/KNSemaphore.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include <QHash>

#include <functional>

class DatabaseResultSet;
class VantorDatabaseClient;

/// Knows what version of SQL Server answers behind a connection. Asks once for each connection; what it was
/// told, or that it was told nothing, is kept for the life of the process. Any thread but the UI's: the first
/// question waits for the server, and all lookups wait for each other.
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

    /// Asks the server through a connected client, unless the version is known: no other login is needed
    /// then. A failure is not kept: the client may have been cancelled.
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
