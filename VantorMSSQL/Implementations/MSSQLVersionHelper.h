#pragma once

#include "Foundation/KNSemaphore.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include <QHash>

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

private:
    static QString findVersion(const MSSQLDatabaseConnectionDetails &dbc);

    KNSemaphore m_defaultVersionSemaphore;
    QHash<QString, QString> m_lookup; ///< by connection; guarded by m_defaultVersionSemaphore
};
