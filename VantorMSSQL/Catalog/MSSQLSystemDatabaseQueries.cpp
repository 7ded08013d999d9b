#include "Catalog/MSSQLSystemDatabaseQueries.h"

#include "Catalog/MSSQLQueryTrials.h"
#include "Catalog/MSSQLVersionHelper.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNPropertyList.h"

MSSQLSystemDatabaseQueries::MSSQLSystemDatabaseQueries(const MSSQLDatabaseConnectionDetails &dbc)
{
    setDbc(dbc);
}

void MSSQLSystemDatabaseQueries::setDbc(const MSSQLDatabaseConnectionDetails &dbc)
{
    m_dbc = std::static_pointer_cast<const MSSQLDatabaseConnectionDetails>(dbc.copy());
}

QString MSSQLSystemDatabaseQueries::queryByTitle(const QString &title) const
{
    return queryIn(allQueries(), title,
                   [this] { return MSSQLVersionHelper::sharedInstance()->isSQL2000(*m_dbc); });
}

QString MSSQLSystemDatabaseQueries::queryIn(const QHash<QString, QString> &queries, const QString &title,
                                            const std::function<bool()> &isSQL2000)
{
    const auto variant = queries.constFind(KNFormat("%@_2000", title));
    if (variant != queries.constEnd() && isSQL2000())
        return *variant;
    const QString query = queries.value(title);
    KNAssert(!query.isEmpty(), KNFormat("Unable to receive query for: %@", title),
             QStringLiteral("Implementations/MSSQLSystemDatabaseQueries"));
    return query.trimmed();
}

QStringList MSSQLSystemDatabaseQueries::titles() const
{
    QStringList titles = allQueries().keys();
    titles.removeIf([](const QString &title) { return title.endsWith(QLatin1String("_2000")); });
    titles.sort();
    return titles;
}

QString MSSQLSystemDatabaseQueries::plainQueryByTitle(const QString &title) const
{
    return allQueries().value(title).trimmed();
}

QList<KNQueryTrial> MSSQLSystemDatabaseQueries::trials() const
{
    MSSQLVersionHelper &versions = *MSSQLVersionHelper::sharedInstance();
    QList<KNQueryTrial> trials = MSSQLQueryTrials::all();
    QStringList unanswered;
    if (versions.isSQL2000(*m_dbc))
        unanswered = MSSQLQueryTrials::notOnSQL2000();
    else if (versions.isDBCAzure(*m_dbc))
        unanswered = MSSQLQueryTrials::notOnAzure();
    trials.removeIf([&](const KNQueryTrial &trial) { return unanswered.contains(trial.title); });
    return trials;
}

const QHash<QString, QString> &MSSQLSystemDatabaseQueries::allQueries()
{
    static const QHash<QString, QString> queries = [] {
        KNError error;
        auto read = KNPropertyList::stringDictionary(
            QStringLiteral(":/VantorMSSQL/MSSQLBackingQueries.plist"), &error);
        if (error)
            KNLogHelper::sharedInstance()->logError(error, {});
        return read;
    }();
    return queries;
}
