#include "TableDesign/MSSQLPrimaryKeyScript.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "TableDesign/MSSQLStatementCaution.h"

#include <algorithm>

MSSQLPrimaryKeyScript::MSSQLPrimaryKeyScript(MSSQLDesignedTable table, QString dropTemplate)
    : m_table(std::move(table))
    , m_dropTemplate(std::move(dropTemplate))
{
}

bool MSSQLPrimaryKeyScript::needsNotNull(const MSSQLColumnRecord &column, bool becomesKey)
{
    return becomesKey && column.isNullable;
}

KNStatementPair MSSQLPrimaryKeyScript::change(const QList<MSSQLColumnRecord> &columns,
                                              const QString &columnName, bool becomesKey,
                                              const MSSQLPrimaryKeyRecord &key) const
{
    const auto edited = std::find_if(columns.begin(), columns.end(), [&](const MSSQLColumnRecord &column) {
        return column.columnName == columnName;
    });
    if (edited == columns.end() || edited->isPrimaryKey == becomesKey || needsNotNull(*edited, becomesKey))
        return {};
    QStringList names;
    bool hadKey = false;
    for (const MSSQLColumnRecord &column : columns) {
        hadKey = hadKey || column.isPrimaryKey;
        if (column.isPrimaryKey && column.columnName != columnName)
            names.append(column.columnName);
    }
    if (becomesKey)
        names.append(columnName);
    KNStatementPair pair = addition(names, key);
    if (!hadKey)
        return pair;
    const QString drop =
        KNQueryTemplate::filled(m_dropTemplate, {{QStringLiteral("TABLE_SCHEMA"), m_table.schema},
                                                 {QStringLiteral("TABLE_NAME"), m_table.name}});
    const QString between =
        names.isEmpty() ? QString() : QStringLiteral("\r\n\r\n-- Now update with our new keys\r\n");
    return {drop + between + pair.exact, drop + between + pair.corrected, pair.difference};
}

/// Without names the texts are empty.
KNStatementPair MSSQLPrimaryKeyScript::addition(const QStringList &names,
                                                const MSSQLPrimaryKeyRecord &key) const
{
    if (names.isEmpty())
        return {QStringLiteral(""), QStringLiteral(""), {}};
    MSSQLStatementCaution caution;
    caution.addToExactName(m_table);
    for (const QString &name : names)
        caution.addUnlessRead(name, {name});
    const QString corrected = correctedAddition(names, key);
    if (corrected != correctedAddition(names, {}))
        caution.add(MSSQLStatementCaution::tr(
            "This would lose the name of the key, the order of its columns or the kind of its index."));
    return {
        KNFormat("ALTER TABLE %@ ADD PRIMARY KEY(%@);", m_table.exactName(), names.join(QLatin1String(", "))),
        corrected, caution.text()};
}

QString MSSQLPrimaryKeyScript::correctedAddition(const QStringList &names,
                                                 const MSSQLPrimaryKeyRecord &key) const
{
    QStringList listed;
    QStringList rest = names;
    for (const MSSQLPrimaryKeyRecord::Column &column : key.columns) {
        if (rest.removeOne(column.name))
            listed.append(MSSQLQuoting::quotedName(column.name) +
                          QLatin1String(column.isDescending ? " DESC" : ""));
    }
    for (const QString &name : rest)
        listed.append(MSSQLQuoting::quotedName(name));
    const QString constraint = key.name.isNull()
                                   ? QStringLiteral("")
                                   : KNFormat("CONSTRAINT %@ ", MSSQLQuoting::quotedName(key.name));
    return KNFormat("ALTER TABLE %@ ADD %@PRIMARY KEY%@(%@);", m_table.quoted(), constraint,
                    key.isClustered ? "" : " NONCLUSTERED ", listed.join(QLatin1String(", ")));
}
