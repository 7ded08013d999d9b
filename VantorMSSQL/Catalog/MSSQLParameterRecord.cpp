#include "Catalog/MSSQLParameterRecord.h"

MSSQLCatalogReader::Values MSSQLParameterRecord::values(const QString &schema, const QString &procedure)
{
    return {{QStringLiteral("SCHEMA"), schema}, {QStringLiteral("PROCEDURE_NAME"), procedure}};
}

QList<MSSQLParameterRecord> MSSQLParameterRecord::listFrom(DatabaseResultSet &rows)
{
    constexpr qsizetype IsOutput = 3;
    constexpr qsizetype BaseType = 4;
    QList<MSSQLParameterRecord> parameters;
    while (rows.next())
        parameters.append({rows.stringForColumnIndex(0), rows.stringForColumnIndex(1),
                           rows.numberForColumnIndex(IsOutput).toBool(),
                           rows.stringForColumnIndex(BaseType)});
    return parameters;
}
