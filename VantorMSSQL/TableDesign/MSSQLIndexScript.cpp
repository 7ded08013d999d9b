#include "TableDesign/MSSQLIndexScript.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "TableDesign/MSSQLRenameScript.h"
#include "TableDesign/MSSQLStatementCaution.h"

namespace {

QString columnList(const MSSQLIndexEntry &index)
{
    QStringList names;
    for (const MSSQLIndexColumnEntry &column : index.columns)
        names.append(MSSQLDesignedTable::escaped(column.name));
    return names.isEmpty() ? QStringLiteral("") : names.join(QLatin1String(", "));
}

bool haveSameDefinition(const MSSQLIndexEntry &oldIndex, const MSSQLIndexEntry &newIndex)
{
    return oldIndex.isUnique == newIndex.isUnique && oldIndex.isNonClustered == newIndex.isNonClustered &&
           oldIndex.columns == newIndex.columns;
}

} // namespace

MSSQLIndexScript::MSSQLIndexScript(MSSQLDesignedTable table, MSSQLIndexSyntax syntax)
    : m_table(std::move(table))
    , m_syntax(syntax)
{
}

bool MSSQLIndexScript::isRename(const MSSQLIndexEntry &oldIndex, const MSSQLIndexEntry &newIndex)
{
    return haveSameDefinition(oldIndex, newIndex) &&
           oldIndex.indexName.compare(newIndex.indexName, Qt::CaseInsensitive) != 0;
}

KNStatementPair MSSQLIndexScript::queryForUpdateIndex(const MSSQLIndexEntry &oldIndex,
                                                      const MSSQLIndexEntry &newIndex, bool isNewIndex,
                                                      const MSSQLIndexDefinition &definition) const
{
    if (oldIndex == newIndex)
        return {};
    if (!isNewIndex && isRename(oldIndex, newIndex))
        return rename(oldIndex.indexName, newIndex.indexName);

    MSSQLStatementCaution caution;
    const MSSQLIndexCreation creation(m_table, newIndex, definition, m_syntax);
    KNStatementPair pair{exactCreation(newIndex), creation.statements(), {}};
    caution.addWithoutSchema(m_table);
    caution.addUnlessRead(MSSQLDesignedTable::escaped(m_table.name), {m_table.name});
    caution.addUnlessRead(MSSQLDesignedTable::escaped(newIndex.indexName), {newIndex.indexName});
    for (const MSSQLIndexColumnEntry &column : newIndex.columns)
        caution.addUnlessRead(MSSQLDesignedTable::escaped(column.name), {column.name});
    if (!newIndex.isNonClustered)
        caution.add(MSSQLStatementCaution::tr("This would create an index that is not clustered."));
    if (!isNewIndex) {
        const QString lineEnd = QStringLiteral("\r\n");
        const QString oldName = MSSQLDesignedTable::escaped(oldIndex.indexName);
        pair.exact.prepend(KNFormat("DROP INDEX %@;", oldName) + lineEnd);
        pair.corrected.prepend(correctedDrop(oldIndex.indexName) + QLatin1Char(';') + lineEnd);
        caution.addUnlessRead(oldName, {oldIndex.indexName});
        caution.add(
            MSSQLStatementCaution::tr("SQL Server does not accept DROP INDEX without the index's table."));
        caution.add(MSSQLIndexCreation::lossSentence(creation.lostWithoutOptions()));
        // The name differs in the case of its letters only: the exact statements drop and create.
        if (haveSameDefinition(oldIndex, newIndex))
            pair.corrected = rename(oldIndex.indexName, newIndex.indexName).corrected;
    }
    pair.difference = caution.text();
    return pair;
}

QString MSSQLIndexScript::lossBy(const MSSQLIndexEntry &newIndex,
                                 const MSSQLIndexDefinition &definition) const
{
    return MSSQLIndexCreation::lossSentence(
        MSSQLIndexCreation(m_table, newIndex, definition, m_syntax).lost());
}

KNStatementPair MSSQLIndexScript::rename(const QString &oldName, const QString &newName) const
{
    MSSQLStatementCaution caution;
    caution.addWithoutSchema(m_table);
    caution.addUnlessReadInRename({m_table.name, oldName});
    caution.addUnlessReadInLiteral(newName, true);
    return {
        KNFormat("EXEC sp_rename N'%@.%@', N'%@', N'INDEX';", m_table.name, oldName, newName),
        MSSQLRenameScript::index(m_table, oldName, newName) + QLatin1Char(';'),
        caution.text(),
    };
}

QString MSSQLIndexScript::exactCreation(const MSSQLIndexEntry &index) const
{
    return KNFormat("CREATE %@%@INDEX %@ ON %@  (%@);", index.isUnique ? "UNIQUE " : "",
                    index.isNonClustered ? "NONCLUSTERED " : "", MSSQLDesignedTable::escaped(index.indexName),
                    MSSQLDesignedTable::escaped(m_table.name), columnList(index));
}

QString MSSQLIndexScript::correctedDrop(const QString &indexName) const
{
    const QString name = MSSQLQuoting::quotedName(indexName);
    return m_syntax == MSSQLIndexSyntax::SQL2000 ? KNFormat("DROP INDEX %@.%@", m_table.quoted(), name)
                                                 : KNFormat("DROP INDEX %@ ON %@", name, m_table.quoted());
}

KNStatementPair MSSQLIndexScript::dropIndex(const QString &indexName) const
{
    const QString path = m_table.exactPath() + QLatin1Char('.') + MSSQLDesignedTable::escaped(indexName);
    MSSQLStatementCaution caution;
    caution.addUnlessRead(path, {m_table.schema, m_table.name, indexName});
    return {QLatin1String("DROP INDEX ") + path, correctedDrop(indexName), caution.text()};
}
