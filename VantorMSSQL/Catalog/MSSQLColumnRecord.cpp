#include "Catalog/MSSQLColumnRecord.h"

#include "Implementations/MSSQLQuoting.h"

#include <QSet>

namespace {

enum Position {
    Name,
    Type,
    MaxLength,
    Precision,
    Scale,
    Nullable,
    PrimaryKey,
    Default,
    Identity,
    Computed,
    Collation,
    Sparse,
    BaseType
};

} // namespace

MSSQLCatalogReader::Values MSSQLColumnRecord::values(const QString &schema, const QString &table)
{
    return {{QStringLiteral("TABLE_NAME"), table}, {QStringLiteral("SCHEMA_NAME"), schema}};
}

QList<MSSQLColumnRecord> MSSQLColumnRecord::listFrom(DatabaseResultSet &rows)
{
    QList<MSSQLColumnRecord> columns;
    QSet<QString> seen;
    while (rows.next()) {
        const QString name = rows.stringForColumnIndex(Name);
        if (seen.contains(name))
            continue;
        seen.insert(name);
        columns.append(
            {.columnName = name,
             .typeName = rows.stringForColumnIndex(Type),
             .maxLength = rows.objectForColumnIndex(MaxLength),
             .precision = rows.objectForColumnIndex(Precision),
             .scale = rows.objectForColumnIndex(Scale),
             .isNullable = rows.numberForColumnIndex(Nullable).toBool(),
             .isPrimaryKey = rows.numberForColumnIndex(PrimaryKey).toInt64() == 1,
             .hasKeyFlag = rows.numberForColumnIndex(PrimaryKey).toBool(),
             .defaultValue = rows.stringForColumnIndex(Default),
             .isIdentity = rows.numberForColumnIndex(Identity).toBool(),
             .isComputed = rows.columnCount() > Computed && rows.numberForColumnIndex(Computed).toBool(),
             .collation = rows.columnCount() > Collation ? rows.stringForColumnIndex(Collation) : QString(),
             .isSparse = rows.columnCount() > Sparse && rows.numberForColumnIndex(Sparse).toBool(),
             .baseType = rows.columnCount() > BaseType ? rows.stringForColumnIndex(BaseType) : QString()});
    }
    return columns;
}

bool MSSQLColumnRecord::isWritable() const
{
    const bool isRowVersion =
        typeName == QLatin1String("timestamp") || typeName == QLatin1String("rowversion");
    return !isIdentity && !isComputed && !isRowVersion;
}

bool MSSQLColumnRecord::isBasedOn(const char *systemType) const
{
    return (baseType.isNull() ? typeName : baseType) == QLatin1String(systemType);
}

QString MSSQLColumnRecord::displayType() const
{
    return MSSQLQuoting::displayForColumnType(typeName, maxLength, precision, scale);
}
