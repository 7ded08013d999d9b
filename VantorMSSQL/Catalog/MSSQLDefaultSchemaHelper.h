#pragma once

#include "Foundation/KNSemaphore.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include <QHash>

#include <optional>

/// Caches the default schema of each connection's user for the life of the process, including failed lookups.
/// Any thread except the UI thread: the first lookup of a connection waits for the server, and lookups wait
/// for each other.
class MSSQLDefaultSchemaHelper
{
public:
    static MSSQLDefaultSchemaHelper *sharedInstance();

    MSSQLDefaultSchemaHelper();
    MSSQLDefaultSchemaHelper(const MSSQLDefaultSchemaHelper &) = delete;
    MSSQLDefaultSchemaHelper &operator=(const MSSQLDefaultSchemaHelper &) = delete;

    /// Empty, never null, if it cannot be determined.
    QString schemaForDBC(const MSSQLDatabaseConnectionDetails &dbc);

    /// Returns the cached result of schemaForDBC(); nullopt if there is none yet or a lookup is running. Does
    /// not block, so the UI thread may call it.
    std::optional<QString> knownSchemaForDBC(const MSSQLDatabaseConnectionDetails &dbc);

private:
    static QString findSchema(const MSSQLDatabaseConnectionDetails &dbc);

    KNSemaphore m_defaultSchemaSemaphore;
    QHash<QString, QString> m_lookup; ///< by description; guarded by m_defaultSchemaSemaphore
};
