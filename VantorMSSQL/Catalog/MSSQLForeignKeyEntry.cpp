#include "Catalog/MSSQLForeignKeyEntry.h"

namespace {

QString displayOfRule(qint64 rule)
{
    static const QStringList texts = {QStringLiteral("No Action"), QStringLiteral("Cascade"),
                                      QStringLiteral("SET NULL"), QStringLiteral("SET DEFAULT")};
    return rule >= 0 && rule < texts.size() ? texts[rule] : QStringLiteral("");
}

} // namespace

MSSQLCatalogReader::Values MSSQLForeignKeyEntry::values(const QString &schema, const QString &table)
{
    return {{QStringLiteral("TABLE_NAME"), table}, {QStringLiteral("TABLE_SCHEMA"), schema}};
}

QList<MSSQLForeignKeyEntry> MSSQLForeignKeyEntry::listFrom(DatabaseResultSet &rows)
{
    const bool knowsState = rows.columnNames().contains(QStringLiteral("is_not_trusted"));
    QList<MSSQLForeignKeyEntry> keys;
    while (rows.next()) {
        const QString name = rows.stringForColumn(QStringLiteral("keyName"));
        if (keys.isEmpty() || keys.last().keyName != name) {
            MSSQLForeignKeyEntry key;
            key.keyName = name;
            key.targetTable = rows.stringForColumn(QStringLiteral("referencedTableName"));
            key.targetTableSchema = rows.stringForColumn(QStringLiteral("referencedTableSchema"));
            key.deleteRule = rows.numberForColumn(QStringLiteral("delete_referential_action")).toInt64();
            key.updateRule = rows.numberForColumn(QStringLiteral("update_referential_action")).toInt64();
            if (knowsState) {
                key.isEnabled = !rows.numberForColumn(QStringLiteral("is_disabled")).toBool();
                key.isTrusted = !rows.numberForColumn(QStringLiteral("is_not_trusted")).toBool();
            }
            keys.append(key);
        }
        keys.last().localColumns.append(rows.stringForColumn(QStringLiteral("localColumnName")));
        keys.last().targetColumns.append(rows.stringForColumn(QStringLiteral("referencedColumnName")));
    }
    return keys;
}

QString MSSQLForeignKeyEntry::deleteRuleDisplay() const
{
    return displayOfRule(deleteRule);
}

QString MSSQLForeignKeyEntry::updateRuleDisplay() const
{
    return displayOfRule(updateRule);
}
