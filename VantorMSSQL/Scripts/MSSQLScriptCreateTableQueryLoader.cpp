#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLHiddenPart.h"

namespace {

constexpr auto CreateTableDomain = "mssql.queryLoader.createTableQuery";

} // namespace

QString MSSQLScriptCreateTableQueryLoader::creationQueryForTable(const QString &table,
                                                                 const QString &inSchema,
                                                                 const VantorDBC &withConnectionDetails,
                                                                 KNQueryReport *report)
{
    QString query;
    KNError failure = MSSQLCatalogReader::read(
        withConnectionDetails, QStringLiteral("Table_CreationQuery"),
        {{QStringLiteral("TABLE_SCHEMA"), inSchema}, {QStringLiteral("TABLE_NAME"), table}},
        CreateTableDomain, [&](const DatabaseResultSet &row) { query = row.stringForColumnIndex(0); });
    const QString domain = QString::fromLatin1(CreateTableDomain);
    if (!failure && query.isNull())
        failure = KNError(
            domain, 0,
            KNFormat("The table %@.%@ is not there, or may not be seen by this login.", inSchema, table));
    else if (!failure && MSSQLHiddenPart::isIn(query))
        failure =
            KNError(domain, 0,
                    KNFormat("Parts of the table %@.%@ may not be seen by this login. Comments stand in "
                             "their place.",
                             inSchema, table));
    if (report)
        report->failure = failure;
    return query;
}

QString MSSQLScriptCreateTableQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    return creationQueryForTable(m_tableName, m_targetSchema, details, report);
}
