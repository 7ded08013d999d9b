#include "TableDesign/MSSQLPrimaryKeyScript.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "TableDesign/MSSQLStatementCaution.h"

#include <algorithm>

MSSQLPrimaryKeyScript::MSSQLPrimaryKeyScript(MSSQLDesignedTable table, QString dropTemplate,
                                             MSSQLIndexSyntax syntax)
    : m_table(std::move(table))
    , m_dropTemplate(std::move(dropTemplate))
    , m_syntax(syntax)
{
}

bool MSSQLPrimaryKeyScript::needsNotNull(const MSSQLColumnRecord &column, bool becomesKey)
{
    return becomesKey && column.isNullable;
}

KNStatementPair MSSQLPrimaryKeyScript::change(const QList<MSSQLColumnRecord> &columns,
                                              const QString &columnName, bool becomesKey,
                                              const MSSQLPrimaryKeyRecord &key,
                                              const MSSQLIndexDefinition &index) const
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
    KNStatementPair pair = addition(names, key, index);
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
KNStatementPair MSSQLPrimaryKeyScript::addition(const QStringList &names, const MSSQLPrimaryKeyRecord &key,
                                                const MSSQLIndexDefinition &index) const
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
    const MSSQLIndexCreation kept = creation(key, index);
    caution.add(MSSQLIndexCreation::lossSentence(kept.lostWithoutOptions()));
    return {
        KNFormat("ALTER TABLE %@ ADD PRIMARY KEY(%@);", m_table.exactName(), names.join(QLatin1String(", "))),
        KNFormat("%@%@;", corrected, kept.storage()), caution.text()};
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
    return KNFormat("ALTER TABLE %@ ADD %@PRIMARY KEY%@(%@)", m_table.quoted(), constraint,
                    key.isClustered ? "" : " NONCLUSTERED ", listed.join(QLatin1String(", ")));
}

/// The index of the key with what a constraint takes. A constraint of SQL Server 2000 takes a fill factor and
/// a filegroup; the new key is always enabled.
MSSQLIndexCreation MSSQLPrimaryKeyScript::creation(const MSSQLPrimaryKeyRecord &key,
                                                   const MSSQLIndexDefinition &index) const
{
    MSSQLIndexDefinition kept = index;
    kept.descendingKeys.clear(); // the list of columns keeps them
    kept.isDisabled = false;
    if (m_syntax == MSSQLIndexSyntax::SQL2000) {
        kept = {};
        kept.fillFactor = index.fillFactor;
        kept.dataSpace = index.dataSpace;
    }
    MSSQLIndexEntry entry;
    entry.isUnique = true;
    entry.isNonClustered = !key.isClustered;
    return {m_table, entry, kept, m_syntax};
}
