#include "Catalog/MSSQLIndexDefinition.h"

MSSQLCatalogReader::Values MSSQLIndexDefinition::values(const QString &schema, const QString &table)
{
    return {{QStringLiteral("TABLE_NAME"), table}, {QStringLiteral("TABLE_SCHEMA"), schema}};
}

QList<MSSQLIndexDefinition> MSSQLIndexDefinition::listFrom(DatabaseResultSet &rows)
{
    enum Position {
        Name,
        Column,
        Included,
        Descending,
        FillFactor,
        Padded,
        IgnoresDuplicates,
        WithoutRecompute,
        RowLocks,
        PageLocks,
        Disabled,
        Filter,
        Compression,
        Sequential,
        DataSpace,
        PartitionColumn,
        PrimaryKey
    };
    const auto flag = [&rows](Position position) { return rows.numberForColumnIndex(position).toBool(); };
    QList<MSSQLIndexDefinition> indexes;
    while (rows.next()) {
        const QString name = rows.stringForColumnIndex(Name);
        if (indexes.isEmpty() || indexes.last().indexName != name)
            indexes.append({.indexName = name,
                            .fillFactor = static_cast<int>(rows.numberForColumnIndex(FillFactor).toInt64()),
                            .isPadded = flag(Padded),
                            .ignoresDuplicates = flag(IgnoresDuplicates),
                            .isWithoutRecompute = flag(WithoutRecompute),
                            .allowsRowLocks = flag(RowLocks),
                            .allowsPageLocks = flag(PageLocks),
                            .isDisabled = flag(Disabled),
                            .filter = rows.stringForColumnIndex(Filter),
                            .compression = rows.stringForColumnIndex(Compression),
                            .isSequential = flag(Sequential),
                            .dataSpace = rows.stringForColumnIndex(DataSpace),
                            .partitionColumn = rows.stringForColumnIndex(PartitionColumn),
                            .isPrimaryKey = flag(PrimaryKey)});
        const QString column = rows.stringForColumnIndex(Column);
        if (flag(Included))
            indexes.last().includedColumns.append(column);
        else if (flag(Descending))
            indexes.last().descendingKeys.append(column);
    }
    return indexes;
}
