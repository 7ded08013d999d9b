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
    Sparse
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
             .defaultValue = rows.stringForColumnIndex(Default),
             .hasKeyFlag = rows.numberForColumnIndex(PrimaryKey).toBool(),
             .isIdentity = rows.numberForColumnIndex(Identity).toBool(),
             .isComputed = rows.columnCount() > Computed && rows.numberForColumnIndex(Computed).toBool(),
             .collation = rows.columnCount() > Collation ? rows.stringForColumnIndex(Collation) : QString(),
             .isSparse = rows.columnCount() > Sparse && rows.numberForColumnIndex(Sparse).toBool()});
    }
    return columns;
}

bool MSSQLColumnRecord::isWritable() const
{
    const bool isRowVersion =
        typeName == QLatin1String("timestamp") || typeName == QLatin1String("rowversion");
    return !isIdentity && !isComputed && !isRowVersion;
}

QString MSSQLColumnRecord::displayType() const
{
    return MSSQLQuoting::displayForColumnType(typeName, maxLength, precision, scale);
}
