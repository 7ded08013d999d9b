#include "Catalog/MSSQLIndexEntry.h"

#include <algorithm>

MSSQLCatalogReader::Values MSSQLIndexEntry::values(const QString &schema, const QString &table)
{
    return {{QStringLiteral("TABLE_NAME"), table}, {QStringLiteral("TABLE_SCHEMA"), schema}};
}

QList<MSSQLIndexEntry> MSSQLIndexEntry::listFrom(DatabaseResultSet &rows)
{
    enum Position { IndexId, Name, Unique, NonClustered, ColumnName };
    QList<MSSQLIndexEntry> indexes;
    while (rows.next()) {
        const QString name = rows.stringForColumnIndex(Name);
        auto index = std::find_if(indexes.begin(), indexes.end(), [&](const MSSQLIndexEntry &entry) {
            return entry.indexName.compare(name, Qt::CaseInsensitive) == 0;
        });
        if (index == indexes.end()) {
            indexes.append({.indexName = name,
                            .isUnique = rows.numberForColumnIndex(Unique).toBool(),
                            .isNonClustered = rows.numberForColumnIndex(NonClustered).toBool(),
                            .columns = {}});
            index = std::prev(indexes.end());
        }
        index->columns.append({rows.stringForColumnIndex(ColumnName)});
    }
    return indexes;
}
