#include "Catalog/MSSQLPrimaryKeyRecord.h"

MSSQLCatalogReader::Values MSSQLPrimaryKeyRecord::values(const QString &schema, const QString &table)
{
    return {{QStringLiteral("SCHEMA"), schema}, {QStringLiteral("TABLE"), table}};
}

QList<MSSQLPrimaryKeyRecord> MSSQLPrimaryKeyRecord::listFrom(DatabaseResultSet &rows)
{
    enum Position { ColumnName, KeyName, Clustered, Descending };
    MSSQLPrimaryKeyRecord key;
    while (rows.next()) {
        key.name = rows.stringForColumnIndex(KeyName);
        key.isClustered = rows.numberForColumnIndex(Clustered).toBool();
        key.columns.append(
            {rows.stringForColumnIndex(ColumnName), rows.numberForColumnIndex(Descending).toBool()});
    }
    return key.columns.isEmpty() ? QList<MSSQLPrimaryKeyRecord>() : QList{key};
}
