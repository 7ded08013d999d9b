#include "TableDesign/MSSQLAlterIndexQueryLoader.h"

#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Catalog/MSSQLVersionHelper.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLCorrectedStatements.h"

#include <algorithm>

namespace {

constexpr auto IndexDomain = "MSSQLAlterIndex";

} // namespace

MSSQLAlterIndexQueryLoader::MSSQLAlterIndexQueryLoader(MSSQLDesignedTable table, MSSQLIndexEntry oldIndex,
                                                       MSSQLIndexEntry newIndex, bool isNewIndex)
    : m_table(std::move(table))
    , m_oldIndex(std::move(oldIndex))
    , m_newIndex(std::move(newIndex))
    , m_isNewIndex(isNewIndex)
{
}

QString MSSQLAlterIndexQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    const bool prefersCorrected = MSSQLCorrectedStatements::areUsed();
    MSSQLDesignedTable table = m_table;
    auto syntax = MSSQLIndexSyntax::Current;
    if (const auto *settings = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(&details)) {
        table.defaultSchema = MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(*settings);
        if (MSSQLVersionHelper::sharedInstance()->isSQL2000(*settings))
            syntax = MSSQLIndexSyntax::SQL2000;
    }
    MSSQLIndexDefinition definition;
    if (!m_isNewIndex && !MSSQLIndexScript::isRename(m_oldIndex, m_newIndex))
        definition = oldDefinition(details, &report->failure);
    if (report->failure)
        return {};
    const MSSQLIndexScript script(table, syntax);
    const KNStatementPair pair = script.queryForUpdateIndex(m_oldIndex, m_newIndex, m_isNewIndex, definition);
    if (!prefersCorrected && pair.differs())
        report->pair = pair;
    if (const QString loss = script.lossBy(m_newIndex, definition); prefersCorrected && !loss.isNull())
        report->notices.append(loss);
    return pair.preferred(prefersCorrected);
}

MSSQLIndexDefinition MSSQLAlterIndexQueryLoader::oldDefinition(const VantorDBC &details, KNError *error) const
{
    const auto definitions = MSSQLCatalogReader::records<MSSQLIndexDefinition>(
        details, m_table.schema, m_table.name, IndexDomain, error);
    const auto found = std::find_if(definitions.begin(), definitions.end(), [&](const auto &definition) {
        return definition.indexName == m_oldIndex.indexName && !definition.isPrimaryKey;
    });
    if (found != definitions.end())
        return *found;
    if (!*error)
        *error = KNError(QString::fromLatin1(IndexDomain), 0,
                         KNFormat("The index %@ is not there any more, or may not be seen by this login.",
                                  m_oldIndex.indexName));
    return {};
}
