#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptCatalog.h"

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

} // namespace

QString MSSQLScriptCreateTypeQueryLoader::creationQueryForType(const QString &type, const QString &inSchema,
                                                               int, const VantorDBC &withConnectionDetails)
{
    QString query = QStringLiteral("Unhandled");
    bool isFirst = true;
    MSSQLScriptCatalog::readRowsAndReport(
        withConnectionDetails, QStringLiteral("UserDefinedDataType_CreationQuery"),
        {{QStringLiteral("TYPE"), type}, {QStringLiteral("SCHEMA"), inSchema}},
        "mssql.queryLoader.createType", [&](const DatabaseResultSet &row) {
            if (std::exchange(isFirst, false))
                query = createStatement(row);
        });
    return query;
}

QString MSSQLScriptCreateTypeQueryLoader::script(const VantorDBC &details) const
{
    return creationQueryForType(m_targetType, m_targetSchema, m_targetQueryLoaderType, details);
}
