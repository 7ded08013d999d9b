#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "Scripts/MSSQLTableTypeScript.h"

namespace {

/// Columns of the catalog query.
enum Column { Name = 0, Schema = 1, Size = 5, AllowsNull = 10, BaseType = 17 };

QString createStatement(const DatabaseResultSet &row)
{
    const QString base =
        KNFormat("%@(%@)", row.stringForColumnIndex(BaseType), row.stringForColumnIndex(Size));
    return KNFormat("CREATE TYPE %@.%@ FROM %@ %@", row.stringForColumnIndex(Schema),
                    row.stringForColumnIndex(Name), base,
                    row.numberForColumnIndex(AllowsNull).toBool() ? "NULL" : "NOT NULL");
}

/// The statement without the GO behind it; null with an error.
QString createTableType(const VantorDBC &details, const QString &schema, const QString &type, KNError *error)
{
    const QString go = QStringLiteral("\r\nGO\r\n");
    QString script = MSSQLTableTypeScript::text(details, schema, type, error);
    if (script.endsWith(go))
        script.chop(go.size());
    return script;
}

} // namespace

QString MSSQLScriptCreateTypeQueryLoader::creationQueryForType(const QString &type, const QString &inSchema,
                                                               int, const VantorDBC &withConnectionDetails,
                                                               KNQueryReport *report)
{
    QString query = QStringLiteral("Unhandled");
    bool isFirst = true;
    KNError failure =
        MSSQLCatalogReader::read(withConnectionDetails, QStringLiteral("UserDefinedDataType_CreationQuery"),
                                 {{QStringLiteral("TYPE"), type}, {QStringLiteral("SCHEMA"), inSchema}},
                                 "mssql.queryLoader.createType", [&](const DatabaseResultSet &row) {
                                     if (std::exchange(isFirst, false))
                                         query = createStatement(row);
                                 });
    if (!failure && isFirst && MSSQLCorrectedStatements::areUsed()) {
        const QString tableType = createTableType(withConnectionDetails, inSchema, type, &failure);
        isFirst = tableType.isNull();
        query = isFirst ? query : tableType;
    } else if (!failure && isFirst) {
        failure = KNError(QStringLiteral("mssql.queryLoader.createType"), 0,
                          KNFormat("%@.%@ is no alias type, or may not be seen by this login. Only corrected "
                                   "statements, a preference, create table types.",
                                   inSchema, type));
    }
    if (report) {
        report->failure = failure;
        report->unsafeLength = isFirst ? query.size() : 0; // "Unhandled" is no SQL
    }
    return query;
}

QString MSSQLScriptCreateTypeQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    return creationQueryForType(m_targetType, m_targetSchema, m_targetQueryLoaderType, details, report);
}
