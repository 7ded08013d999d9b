#include "Scripts/MSSQLScriptTablesAsMySQLQueryLoader.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Database/KNRowStream.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"

QString MSSQLScriptTablesAsMySQLQueryLoader::doActualLoading(const VantorDBC &details,
                                                             KNQueryReport *report) const
{
    const QString list = QStringLiteral(
        "SELECT QUOTENAME(SCHEMA_NAME(schema_id)) + '.' + QUOTENAME(name), SCHEMA_NAME(schema_id), name AS "
        "SchemaTable FROM sys.tables ORDER BY QUOTENAME(SCHEMA_NAME(schema_id)) asc, QUOTENAME(name) ASC");
    QList<std::pair<QString, QString>> tables;
    const KNError error = KNRowStream::eachRow(details, list, [&](const KNRow &row) {
        tables.append({row.value(1).text(), row.value(2).text()});
    });
    if (error) {
        const KNError failure = MSSQLCatalogReader::reported(error, "mssql.queryLoader.tablesAsMySQL", list);
        const QString text = QStringLiteral("Failed to load table list");
        if (report) {
            report->failure = failure;
            report->unsafeLength = text.size(); // it is no SQL
        }
        return text;
    }
    QString script = QStringLiteral("");
    for (const auto &[schema, table] : std::as_const(tables)) {
        script += script.isEmpty() ? QLatin1String("") : QLatin1String("\r\n\r\n");
        KNQueryReport tableReport;
        script += MSSQLScriptTableAsMySQLQueryLoader::creationQueryForTable(table, schema, true, true, true,
                                                                            details, &tableReport);
        if (report && !report->failure)
            report->failure = tableReport.failure;
    }
    return script;
}
