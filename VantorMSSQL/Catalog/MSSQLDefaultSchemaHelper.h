#pragma once

#include "Foundation/KNSemaphore.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include <QHash>

#include <optional>

/// Knows the default schema of the user behind a connection. Asks once for each connection; what it was told,
/// or that it was told nothing, is kept for the life of the process. Any thread but the UI's: the first
/// question waits for the server, and all lookups wait for each other.
class MSSQLDefaultSchemaHelper
{
public:
    static MSSQLDefaultSchemaHelper *sharedInstance();

    MSSQLDefaultSchemaHelper();
    MSSQLDefaultSchemaHelper(const MSSQLDefaultSchemaHelper &) = delete;
    MSSQLDefaultSchemaHelper &operator=(const MSSQLDefaultSchemaHelper &) = delete;

    /// Empty, never null, when it cannot be found.
    QString schemaForDBC(const MSSQLDatabaseConnectionDetails &dbc);

    /// What schemaForDBC() has found before for this connection; nothing when it was not asked yet, or is
    /// being asked. Asks no server and does not wait, so the UI thread may call it.
    std::optional<QString> knownSchemaForDBC(const MSSQLDatabaseConnectionDetails &dbc);

private:
    static QString findSchema(const MSSQLDatabaseConnectionDetails &dbc);

    KNSemaphore m_defaultSchemaSemaphore;
    QHash<QString, QString> m_lookup; ///< by description; guarded by m_defaultSchemaSemaphore
};
