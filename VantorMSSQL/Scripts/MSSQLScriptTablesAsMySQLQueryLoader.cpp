#include "Scripts/MSSQLScriptTablesAsMySQLQueryLoader.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Database/KNRowStream.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"

#include <QBuffer>

#include <utility>

QString MSSQLScriptTablesAsMySQLQueryLoader::doActualLoading(const VantorDBC &details,
                                                             KNQueryReport *report) const
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    KNQueryReport own;
    if (!writeQuery(details, buffer, report ? report : &own)) {
        const QString text = QStringLiteral("Failed to load table list");
        if (report)
            report->unsafeLength = text.size(); // it is no SQL
        return text;
    }
    const QString script = QString::fromUtf8(buffer.data());
    return script.isNull() ? QStringLiteral("") : script;
}

bool MSSQLScriptTablesAsMySQLQueryLoader::writeQuery(const VantorDBC &details, QIODevice &device,
                                                     KNQueryReport *report) const
{
    const QString list = MSSQLCatalogReader::tableList(
        details, QStringLiteral("SELECT QUOTENAME(SCHEMA_NAME(schema_id)) + '.' + QUOTENAME(name), "
                                "SCHEMA_NAME(schema_id), name AS "
                                "SchemaTable FROM sys.tables ORDER BY QUOTENAME(SCHEMA_NAME(schema_id)) asc, "
                                "QUOTENAME(name) ASC"));
    QList<std::pair<QString, QString>> tables;
    const KNError error = KNRowStream::eachRow(details, list, [&](const KNRow &row) {
        tables.append({row.value(1).text(), row.value(2).text()});
    });
    if (error) {
        report->failure = MSSQLCatalogReader::reported(error, "mssql.queryLoader.tablesAsMySQL", list);
        return false;
    }
    bool isFirst = true;
    for (const auto &[schema, table] : std::as_const(tables)) {
        if (!std::exchange(isFirst, false))
            device.write("\r\n\r\n");
        KNQueryReport tableReport;
        MSSQLScriptTableAsMySQLQueryLoader::writeCreationQueryForTable(table, schema, true, true, true,
                                                                       details, device, &tableReport);
        if (!report->failure)
            report->failure = tableReport.failure;
    }
    return true;
}
