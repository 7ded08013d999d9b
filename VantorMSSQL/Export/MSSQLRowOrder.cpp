#include "Export/MSSQLRowOrder.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Export/MSSQLScriptOrder.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"

#include <algorithm>

namespace {

/// Columns of the catalog query.
enum ForeignKeyColumn {
    KeySchemaColumn,
    KeyTableColumn,
    KeyNameColumn,
    ReferencedSchemaColumn,
    ReferencedTableColumn,
    IsDisabledColumn,
    IsNotTrustedColumn
};

struct RowOrderKey
{
    KNScriptObject table;
    QString name;
    QString referenced; ///< display name
    bool isTrusted;
};

using MSSQLObjectPath::bracketed;

QString pathOfTable(const KNScriptObject &table)
{
    return KNFormat("%@.%@", bracketed(table.schema), bracketed(table.name));
}

} // namespace

MSSQLRowOrder MSSQLRowOrder::read(const QList<KNScriptObject> &tables, const VantorDBC &details,
                                  KNError *error)
{
    QList<RowOrderKey> keys;
    *error = MSSQLCatalogReader::read(
        details, QStringLiteral("List_ForeignKeysForScripts"), {}, "mssql.export.rowOrder",
        [&](const DatabaseResultSet &row) {
            const KNScriptObject table{
                {}, row.stringForColumnIndex(KeySchemaColumn), row.stringForColumnIndex(KeyTableColumn)};
            const KNScriptObject referenced{{},
                                            row.stringForColumnIndex(ReferencedSchemaColumn),
                                            row.stringForColumnIndex(ReferencedTableColumn)};
            if (!row.numberForColumnIndex(IsDisabledColumn).toBool())
                keys.append({table, row.stringForColumnIndex(KeyNameColumn), referenced.displayName(),
                             !row.numberForColumnIndex(IsNotTrustedColumn).toBool()});
        });
    MSSQLScriptOrder::Dependencies references;
    for (const RowOrderKey &key : std::as_const(keys))
        references.insert(key.table.displayName(), key.referenced);
    MSSQLRowOrder order;
    order.m_tables = MSSQLScriptOrder(tables, references).objects();
    QHash<QString, qsizetype> positions;
    for (qsizetype i = 0; i < order.m_tables.size(); ++i)
        positions.insert(order.m_tables[i].displayName(), i);
    for (const RowOrderKey &key : std::as_const(keys)) {
        const qsizetype own = positions.value(key.table.displayName(), -1);
        if (own >= 0 && positions.value(key.referenced, -1) >= own)
            order.m_lateKeys.append({key.table, key.name, key.isTrusted});
    }
    return order;
}

QString MSSQLRowOrder::switchingOff() const
{
    QString script;
    for (const LateKey &key : m_lateKeys)
        script += KNFormat("ALTER TABLE %@ NOCHECK CONSTRAINT %@\r\nGO\r\n", pathOfTable(key.table),
                           bracketed(key.name));
    return script;
}

QString MSSQLRowOrder::switchingOn() const
{
    QString script;
    for (const LateKey &key : m_lateKeys)
        script += KNFormat("ALTER TABLE %@ WITH %@ CHECK CONSTRAINT %@\r\nGO\r\n", pathOfTable(key.table),
                           key.isTrusted ? QStringLiteral("CHECK") : QStringLiteral("NOCHECK"),
                           bracketed(key.name));
    return script;
}
