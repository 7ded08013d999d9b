#include "UI/DatabaseTree/MSSQLCatalogSection.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNLogHelper.h"

MSSQLCatalogSection::MSSQLCatalogSection(const Load &load)
    : KNDatabaseTreeLoadingEntry(load.protocol)
    , m_load(load)
{
}

void MSSQLCatalogSection::readRows(DatabaseResultSet &rows, List *entries)
{
    entries->reserve(static_cast<std::size_t>(rows.rowCount()));
    while (rows.next()) {
        if (Ptr entry = entryForRow(rows))
            entries->push_back(std::move(entry));
    }
}

std::optional<KNDatabaseTreeEntry::List> MSSQLCatalogSection::loadEntries(KNError *error)
{
    const QString sql = catalogQuery();
    std::optional<List> entries;
    KNError failure = MSSQLCatalogReader::run(MSSQLTreeCatalog::settings(*this),
                                              {sql, m_load.errorDomain, m_load.retry == Retry::OnError},
                                              [&](DatabaseResultSet *rows, const KNError &queryFailure) {
                                                  entries.emplace();
                                                  // A truncated list would look complete.
                                                  if (rows && !queryFailure)
                                                      readRows(*rows, &*entries);
                                              });
    if (!failure && entries)
        didReadRows(*entries, &failure);
    if (failure) {
        *error = failure.inDomain(QString::fromLatin1(m_load.errorDomain));
        KNLogHelper::sharedInstance()->logError(*error, {{QStringLiteral("Query"), sql}});
    }
    return entries;
}
