#include "Scripts/MSSQLTableTypeScript.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Scripts/MSSQLHiddenPart.h"

namespace {

constexpr auto TableTypeDomain = "mssql.export.tableType";

/// Columns of the catalog query.
enum TableTypeColumn { SectionColumn, ItemColumn, HeadColumn, PartColumn, TailColumn, MemoryColumn };

/// A column, key, index or check.
struct TableTypeItem
{
    qint64 section;
    qint64 number;
    QString head;
    QStringList columns;
    QString tail;

    QString text() const
    {
        const QString list =
            columns.isEmpty() ? QStringLiteral("") : KNFormat(" (%@)", columns.join(QStringLiteral(", ")));
        return head + list + tail;
    }
};

} // namespace

QString MSSQLTableTypeScript::text(const VantorDBC &details, const QString &schema, const QString &name,
                                   KNError *error)
{
    QList<TableTypeItem> items;
    bool isMemoryOptimized = false;
    *error = MSSQLCatalogReader::read(
        details, QStringLiteral("TableType_CreationQuery"),
        {{QStringLiteral("TABLE_SCHEMA"), schema}, {QStringLiteral("TABLE_NAME"), name}}, TableTypeDomain,
        [&](const DatabaseResultSet &row) {
            const qint64 section = row.numberForColumnIndex(SectionColumn).toInt64();
            const qint64 number = row.numberForColumnIndex(ItemColumn).toInt64();
            const QString head = row.stringForColumnIndex(HeadColumn);
            const QString column = row.stringForColumnIndex(PartColumn);
            isMemoryOptimized = isMemoryOptimized || row.numberForColumnIndex(MemoryColumn).toBool();
            const bool isNew = column.isNull() || items.isEmpty() || items.last().section != section ||
                               items.last().number != number;
            if (isNew)
                items.append({section, number, head, {}, row.stringForColumnIndex(TailColumn)});
            if (!column.isNull())
                items.last().columns.append(column);
        });
    if (!*error && items.isEmpty())
        *error = KNError(QString::fromLatin1(TableTypeDomain), 0,
                         KNFormat("The table type %@.%@ may not be seen by this login, or is not there any "
                                  "more.",
                                  schema, name));
    QStringList texts;
    for (const TableTypeItem &item : std::as_const(items))
        texts.append(QLatin1Char('\t') + item.text());
    if (!*error && MSSQLHiddenPart::isIn(texts.join(QLatin1Char('\n'))))
        *error =
            KNError(QString::fromLatin1(TableTypeDomain), 0,
                    KNFormat("Parts of the table type %@.%@ may not be seen by this login.", schema, name));
    if (*error)
        return {};
    const QString note =
        isMemoryOptimized
            ? QStringLiteral("-- Not scripted: this table type is memory-optimized, this script makes one on "
                             "disk.\r\n")
            : QStringLiteral("");
    return KNFormat("%@CREATE TYPE %@.%@ AS TABLE (\r\n%@\r\n)\r\nGO\r\n", note,
                    MSSQLObjectPath::bracketed(schema), MSSQLObjectPath::bracketed(name),
                    texts.join(QStringLiteral(",\r\n")));
}
