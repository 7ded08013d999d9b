#include "Catalog/MSSQLKeyRecord.h"

#include "Foundation/KNFormat.h"

MSSQLCatalogReader::Values MSSQLKeyRecord::values(const QString &schema, const QString &table)
{
    return {{QStringLiteral("TABLE_NAME"), KNFormat("%@.%@", schema, table)},
            {QStringLiteral("SCHEMA"), schema},
            {QStringLiteral("TABLE"), table}};
}

QList<MSSQLKeyRecord> MSSQLKeyRecord::listFrom(DatabaseResultSet &rows)
{
    QList<MSSQLKeyRecord> keys;
    while (rows.next())
        keys.append({rows.stringForColumnIndex(0), rows.numberForColumnIndex(1).toInt64() == 1});
    return keys;
}
