#include "TableDesign/MSSQLTableScript.h"

#include "Foundation/KNFormat.h"
#include "TableDesign/MSSQLRenameScript.h"
#include "TableDesign/MSSQLStatementCaution.h"

#include <algorithm>

QString MSSQLTableScript::acceptedName(const QString &entered, Dialog dialog)
{
    const QString name = entered.trimmed();
    const QList<uint> characters = name.toUcs4();
    const bool isAccepted = std::all_of(characters.begin(), characters.end(), [dialog](char32_t c) {
        return QChar::isLetterOrNumber(c) || c == U'_' || (c == U'-' && dialog == Dialog::Create);
    });
    return isAccepted && !name.isEmpty() ? name : QString();
}

QStringList MSSQLTableScript::columnDefinitions(const QList<MSSQLColumnRecord> &columns)
{
    QStringList definitions;
    QStringList keys;
    for (const MSSQLColumnRecord &column : columns) {
        const QString name = MSSQLDesignedTable{{}, column.columnName}.quoted();
        QString definition = KNFormat("%@ %@", name, column.displayType());
        if (column.isIdentity)
            definition += QLatin1String(" IDENTITY (1,1)");
        definition += QLatin1String(column.isNullable && !column.isPrimaryKey ? " NULL" : " NOT NULL");
        if (!column.defaultValue.isEmpty())
            definition += QLatin1String(" DEFAULT ") + column.defaultValue;
        definitions.append(definition);
        if (column.isPrimaryKey)
            keys.append(name);
    }
    if (!keys.isEmpty())
        definitions.append(KNFormat("PRIMARY KEY (%@)", keys.join(QStringLiteral(", "))));
    return definitions;
}

KNStatementPair MSSQLTableScript::creationQueryForColumns(const QStringList &columns,
                                                          const MSSQLDesignedTable &table)
{
    const QString path = table.exactPath();
    MSSQLStatementCaution caution;
    caution.addUnlessRead(path, {table.schema, table.name});
    const QString definitions =
        columns.isEmpty() ? QStringLiteral("Column1 int") : columns.join(QLatin1String(",\r\n"));
    return {KNFormat("CREATE TABLE %@ (\r\n%@\r\n);", path, definitions),
            KNFormat("CREATE TABLE %@ (\r\n%@\r\n);", table.quoted(), definitions), caution.text()};
}

KNStatementPair MSSQLTableScript::rename(const MSSQLDesignedTable &table, const QString &newName)
{
    const QString path = table.exactPath();
    const QString sent = MSSQLDesignedTable::escaped(newName);
    MSSQLStatementCaution caution;
    // Keywords need no brackets in the literal; where names have them, they are read as in a statement.
    caution.addUnlessRead(path, {table.schema, table.name});
    for (const QString &text : {path, sent})
        caution.addUnlessReadInLiteral(text, false);
    if (sent != newName)
        caution.add(
            KNFormat(MSSQLStatementCaution::tr("This would make the brackets part of the name %@."), sent));
    return {KNFormat("sp_rename '%@', '%@'", path, sent),
            MSSQLRenameScript::table(table, newName) + QLatin1Char(';'), caution.text()};
}
