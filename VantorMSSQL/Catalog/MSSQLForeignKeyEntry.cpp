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
    // A column that an answer lacks reads as null.
    const QStringList columns = rows.columnNames();
    const auto value = [&](const char *column) {
        return rows.objectForColumnIndex(columns.indexOf(QLatin1String(column)));
    };
    const bool knowsState = columns.contains(QStringLiteral("is_not_trusted"));
    QList<MSSQLForeignKeyEntry> keys;
    while (rows.next()) {
        const QString name = value("keyName").displayText();
        if (keys.isEmpty() || keys.last().keyName != name) {
            MSSQLForeignKeyEntry key;
            key.keyName = name;
            key.targetTable = value("referencedTableName").displayText();
            key.targetTableSchema = value("referencedTableSchema").displayText();
            key.deleteRule = value("delete_referential_action").toInt64();
            key.updateRule = value("update_referential_action").toInt64();
            if (knowsState) {
                key.isEnabled = !value("is_disabled").toBool();
                key.isTrusted = !value("is_not_trusted").toBool();
                key.isNotForReplication = value("is_not_for_replication").toBool();
            }
            keys.append(key);
        }
        keys.last().localColumns.append(value("localColumnName").displayText());
        keys.last().targetColumns.append(value("referencedColumnName").displayText());
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
