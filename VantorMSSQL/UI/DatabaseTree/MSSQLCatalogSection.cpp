#include "UI/DatabaseTree/MSSQLCatalogSection.h"

#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
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
    KNError failure;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *queryFailure) {
            entries.emplace();
            const auto rows = client.executeQuery(sql, queryFailure);
            // A list that was cut short would pass for a whole one.
            if (rows && !*queryFailure)
                readRows(*rows, &*entries);
        },
        MSSQLTreeCatalog::settings(*this), &failure, m_load.retry == Retry::OnError);
    if (!failure && entries)
        didReadRows(*entries, &failure);
    if (failure) {
        *error = failure.inDomain(QString::fromLatin1(m_load.errorDomain));
        KNLogHelper::sharedInstance()->logError(*error, {{QStringLiteral("Query"), sql}});
    }
    return entries;
}
