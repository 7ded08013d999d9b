#include "Scripts/MSSQLScriptAlterViewQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "Scripts/MSSQLScriptCatalog.h"

namespace {

QString onOrOff(std::optional<bool> setting)
{
    return setting.value_or(false) ? QStringLiteral("ON") : QStringLiteral("OFF");
}

} // namespace

QString MSSQLScriptAlterViewQueryLoader::alterQueryForView(const QString &view, const QString &inSchema,
                                                           const VantorDBC &withConnectionDetails)
{
    KNError error;
    QString query = loadQueryForDatabaseConnection(withConnectionDetails, view, inSchema, &error);
    if (error)
        query = KNFormat("/* Failed to load query for view %@. Error was:\r\n%@\r\n*/", view,
                         error.localizedDescription());

    error.clear();
    const QString indexes = loadIndexesForDatabaseConnection(withConnectionDetails, view, inSchema, &error);
    if (!indexes.isEmpty())
        query =
            KNFormat("%@\r\nGO\r\n\r\n-- For a view, we need to re-create all indexes, as they get dropped "
                     "when an alter view executes.\r\n%@",
                     query, indexes);
    if (error)
        query = KNFormat("%@\r\n/* Failed to load query for view %@. Error was:\r\n%@\r\n*/", query, view,
                         error.localizedDescription());
    return query;
}

QString MSSQLScriptAlterViewQueryLoader::loadQueryForDatabaseConnection(const VantorDBC &details,
                                                                        const QString &targetView,
                                                                        const QString &targetSchema,
                                                                        KNError *error)
{
    const QString name = KNFormat("%@.%@", MSSQLClient::escapeTableNameIfRequired(targetSchema),
                                  MSSQLClient::escapeTableNameIfRequired(targetView));
    QString query = QStringLiteral("");
    *error = MSSQLScriptCatalog::readRowsAndReport(
        details, QStringLiteral("View_AlterQuery"), {{QStringLiteral("VIEW_NAME"), name}},
        "mssql.queryLoader.alterView", [&](const DatabaseResultSet &row) {
            query += KNFormat("SET ANSI_NULLS %@\r\nGO\r\n", onOrOff(row.boolForColumnIndex(1)));
            query += KNFormat("SET QUOTED_IDENTIFIER %@\r\nGO\r\n\r\n", onOrOff(row.boolForColumnIndex(0)));
            query += row.objectForColumnIndex(2).text().trimmed();
            query.replace(QLatin1String("CREATE VIEW"), QLatin1String("ALTER VIEW"), Qt::CaseInsensitive);
        });
    return query;
}

QString MSSQLScriptAlterViewQueryLoader::loadIndexesForDatabaseConnection(const VantorDBC &details,
                                                                          const QString &targetView,
                                                                          const QString &, KNError *error)
{
    const QString clause = KNQueryTemplate::filled(QStringLiteral("t.object_id = OBJECT_ID('{0}')"),
                                                   {{QStringLiteral("0"), targetView}});
    QStringList statements;
    *error = MSSQLScriptCatalog::readRows(details, QStringLiteral("INDEX_CREATION_QUERY"),
                                          {{QStringLiteral("VIEW_NAME"), targetView},
                                           {QStringLiteral("INDEX_SRC"), QStringLiteral("sys.views")},
                                           {QStringLiteral("INDEX_CLAUSE"), clause}},
                                          [&](const DatabaseResultSet &row) {
                                              QString statement = row.stringForColumnIndex(0).trimmed();
                                              if (!statement.endsWith(QLatin1Char(';')))
                                                  statement += QLatin1Char(';');
                                              statements.append(statement);
                                          });
    return statements.join(QStringLiteral("\r\nGO\r\n\r\n"));
}

QString MSSQLScriptAlterViewQueryLoader::script(const VantorDBC &details) const
{
    return alterQueryForView(m_targetView, m_targetSchema, details);
}
