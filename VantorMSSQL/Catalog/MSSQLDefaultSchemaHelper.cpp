#include "Catalog/MSSQLDefaultSchemaHelper.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLErrorReport.h"

MSSQLDefaultSchemaHelper *MSSQLDefaultSchemaHelper::sharedInstance()
{
    static auto *const helper =
        new MSSQLDefaultSchemaHelper; // never destroyed: work of the global queue may outlive main()
    return helper;
}

MSSQLDefaultSchemaHelper::MSSQLDefaultSchemaHelper()
    : m_defaultSchemaSemaphore(QStringLiteral("com.quorvex.vantor.mssql.defaultSchemaSeamphore"))
{
}

QString MSSQLDefaultSchemaHelper::schemaForDBC(const MSSQLDatabaseConnectionDetails &dbc)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    const QString key = dbc.description();
    log->logMessage("MSSQLDefaultSchemaHelper finding schema for %@", key);
    const KNSemaphoreLocker locker(m_defaultSchemaSemaphore);
    if (const auto known = m_lookup.constFind(key); known != m_lookup.constEnd()) {
        log->logMessage("MSSQLDefaultSchemaHelper schema was cached for %@ (%@)", key, *known);
        return *known;
    }
    const QString schema = findSchema(dbc);
    m_lookup.insert(key, schema);
    log->logMessage("MSSQLDefaultSchemaHelper schema was found for %@ (%@)", key, schema);
    return schema;
}

std::optional<QString> MSSQLDefaultSchemaHelper::knownSchemaForDBC(const MSSQLDatabaseConnectionDetails &dbc)
{
    if (!m_defaultSchemaSemaphore.tryWait())
        return std::nullopt;
    const auto known = m_lookup.constFind(dbc.description());
    const auto schema = known == m_lookup.constEnd() ? std::nullopt : std::optional(*known);
    m_defaultSchemaSemaphore.signal();
    return schema;
}

QString MSSQLDefaultSchemaHelper::findSchema(const MSSQLDatabaseConnectionDetails &dbc)
{
    KNLogHelper *log = KNLogHelper::sharedInstance();
    const QString query = MSSQLCatalogReader::text(dbc, QStringLiteral("General_FindDefaultUserSchema"));
    QString schema;
    const KNError error =
        MSSQLCatalogReader::run(dbc, {query, nullptr, true}, [&](DatabaseResultSet *rows, const KNError &) {
            log->logMessage("MSSQLDefaultSchemaHelper is loading the default schema.");
            while (schema.isEmpty() && rows && rows->next()) {
                const KNValue value = rows->objectForColumnIndex(0);
                log->logMessage("MSSQLDefaultSchemaHelper found a row. Object 1 is: %@", value.displayText());
                schema = value.text();
            }
        });
    if (error) {
        MSSQLErrorReport::reportError(error.inDomain(QStringLiteral("mssql.schemaForDBC")),
                                      {{QStringLiteral("Query"), QStringLiteral("(callback)")}});
        schema.clear();
    }
    if (!schema.isEmpty())
        return schema;
    log->logMessage("ERROR: Failed to find the default schema for user. Using blank.");
    log->logError(error.inDomain(QStringLiteral("mssql.schemaForDBC.nilResult")), {});
    return QStringLiteral("");
}
