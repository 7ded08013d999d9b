#include "TableDesign/MSSQLForeignKeyScript.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "TableDesign/MSSQLStatementCaution.h"

KNStatementPair MSSQLForeignKeyScript::drop(const MSSQLDesignedTable &table, const QString &keyName)
{
    return {KNFormat("ALTER TABLE `%@` DROP FOREIGN KEY `%@`", table.name, keyName),
            KNFormat("ALTER TABLE %@ DROP CONSTRAINT %@", table.quoted(), MSSQLQuoting::quotedName(keyName)),
            MSSQLStatementCaution::tr("SQL Server does not accept backticks or DROP FOREIGN KEY.")};
}

namespace {

QString quotedList(const QStringList &names)
{
    QStringList quoted;
    for (const QString &name : names)
        quoted.append(MSSQLQuoting::quotedName(name));
    return quoted.join(QStringLiteral(", "));
}

/// "ON DELETE CASCADE"; the default needs no words.
QString rule(const char *event, qint64 action)
{
    static const QStringList actions = {QString(), QStringLiteral("CASCADE"), QStringLiteral("SET NULL"),
                                        QStringLiteral("SET DEFAULT")};
    const QString text = actions.value(action);
    return text.isEmpty() ? QStringLiteral("") : KNFormat(" ON %@ %@", event, text);
}

} // namespace

QString MSSQLForeignKeyScript::create(const MSSQLDesignedTable &table, const MSSQLForeignKeyEntry &key)
{
    const MSSQLDesignedTable target{key.targetTableSchema, key.targetTable};
    QString script =
        KNFormat("ALTER TABLE %@ WITH %@ ADD CONSTRAINT %@ FOREIGN KEY (%@) REFERENCES %@ (%@)%@%@%@;",
                 table.quoted(), key.isTrusted ? "CHECK" : "NOCHECK", MSSQLQuoting::quotedName(key.keyName),
                 quotedList(key.localColumns), target.quoted(), quotedList(key.targetColumns),
                 rule("UPDATE", key.updateRule), rule("DELETE", key.deleteRule),
                 key.isNotForReplication ? " NOT FOR REPLICATION" : "");
    if (!key.isEnabled)
        script += KNFormat("\r\nALTER TABLE %@ NOCHECK CONSTRAINT %@;", table.quoted(),
                           MSSQLQuoting::quotedName(key.keyName));
    return script;
}

QString MSSQLForeignKeyScript::change(const MSSQLDesignedTable &table, const MSSQLForeignKeyEntry &oldKey,
                                      const MSSQLForeignKeyEntry &newKey)
{
    if (oldKey == newKey)
        return {};
    return KNFormat("ALTER TABLE %@ DROP CONSTRAINT %@;\r\n%@", table.quoted(),
                    MSSQLQuoting::quotedName(oldKey.keyName), create(table, newKey));
}
