#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"

#include "Scripts/MSSQLScriptCatalog.h"

QString MSSQLScriptCreateTableQueryLoader::creationQueryForTable(const QString &table,
                                                                 const QString &inSchema,
                                                                 const VantorDBC &withConnectionDetails)
{
    QString query;
    MSSQLScriptCatalog::readRowsAndReport(
        withConnectionDetails, QStringLiteral("Table_CreationQuery"),
        {{QStringLiteral("TABLE_SCHEMA"), inSchema}, {QStringLiteral("TABLE_NAME"), table}},
        "mssql.queryLoader.createTableQuery",
        [&](const DatabaseResultSet &row) { query = row.stringForColumnIndex(0); });
    return query;
}

QString MSSQLScriptCreateTableQueryLoader::script(const VantorDBC &details) const
{
    return creationQueryForTable(m_tableName, m_targetSchema, details);
}
