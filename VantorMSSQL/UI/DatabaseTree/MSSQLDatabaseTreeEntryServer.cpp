#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryServer.h"

#include "Catalog/MSSQLObjectProperties.h"
#include "Catalog/MSSQLVersionHelper.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLErrorReport.h"
#include "UI/DatabaseTree/Agent/MSSQLDatabaseTreeEntrySectionAgent.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySystemDatabases.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/DatabaseTree/MSSQLTreePreferences.h"
#include "UI/DatabaseTree/Security/MSSQLDatabaseTreeEntrySectionSecurity.h"

#include <algorithm>

namespace {

bool isSystemDatabase(const QString &name)
{
    return name == QLatin1String("model") || name == QLatin1String("master") ||
           name == QLatin1String("msdb") || name == QLatin1String("tempdb");
}

} // namespace

MSSQLDatabaseTreeEntryServer::MSSQLDatabaseTreeEntryServer()
    : DatabaseTreeEntryServerRoot({.finishes = Finishes::OnMainQueue},
                                  QStringLiteral("MSSQLDatabaseTreeEntryServer::dataLoad"))
    , m_searchLoadSemaphore(QStringLiteral("MSSQLDatabaseTreeEntryServer::searchLoad"))
{
    setDetails(QStringLiteral("Loading version"));
}

MSSQLDatabaseTreeEntryServer::MSSQLDatabaseTreeEntryServer(List searchResults)
    : MSSQLDatabaseTreeEntryServer()
{
    setCanRefresh(false);
    setChildEntries(std::move(searchResults));
}

std::shared_ptr<MSSQLDatabaseTreeEntryServer> MSSQLDatabaseTreeEntryServer::create()
{
    const auto server = std::make_shared<MSSQLDatabaseTreeEntryServer>();
    const auto observe = [&](const QString &name) {
        return KNNotificationCenter::defaultCenter()->addObserver(
            name, [observer = std::weak_ptr(server)](const QString &, const QVariantMap &) {
                if (const auto alive = observer.lock())
                    alive->loadSearchResults(alive->childEntries());
            });
    };
    server->m_tableAdded = observe(KNDatabaseNotificationTable::TableAddedNotificationName);
    server->m_tableRemoved = observe(KNDatabaseNotificationTable::TableRemovedNotificationName);
    return server;
}

const MSSQLDatabaseConnectionDetails &MSSQLDatabaseTreeEntryServer::settings() const
{
    return MSSQLTreeCatalog::settings(*this);
}

void MSSQLDatabaseTreeEntryServer::setDatabaseConnectionDetails(const VantorDBC *details)
{
    KNAssert(details != nullptr, "Cannot set database connection details to be nil.",
             "UI/DatabaseTree/MSSQLDatabaseTreeEntryServer");
    DatabaseTreeEntryServerRoot::setDatabaseConnectionDetails(details);
}

QString MSSQLDatabaseTreeEntryServer::displayName() const
{
    if (!settings().federationName().isNull())
        return KNFormat("%@: %@", settings().host(), settings().federationName());
    const QString alias = settings().alias();
    return KNFormat("%@ (%@)", alias.isEmpty() ? settings().host() : alias, settings().username());
}

int MSSQLDatabaseTreeEntryServer::tableCellHeight() const
{
    return settings().federationName().isEmpty() ? 34 : 49;
}

QString MSSQLDatabaseTreeEntryServer::tableCellIdentifier() const
{
    return settings().federationName().isEmpty() ? QStringLiteral("HeaderCell")
                                                 : QStringLiteral("HeaderCellFederated");
}

QStringList MSSQLDatabaseTreeEntryServer::allDatabaseNames() const
{
    const std::lock_guard lock(m_namesMutex);
    return m_internalDatabaseNames;
}

KNMenu MSSQLDatabaseTreeEntryServer::menu()
{
    KNMenuItem agent = actionItem("Enable Agent (beta)", "toggleAgentBeta:");
    agent.isChecked = MSSQLTreePreferences::isOn(MSSQLTreePreferences::AgentEnabled);
    return {QStringLiteral("Root"),
            {newQueryMenuItem(), KNMenuItem::separator(), actionItem("Connect", "openConnectionDialog:"),
             disconnectMenuItem(), KNMenuItem::separator(), agent, KNMenuItem::separator(),
             refreshMenuItem()}};
}

KNMenu MSSQLDatabaseTreeEntryServer::additionalMenu()
{
    return {{}, {actionItem("Activity", "showActivity:")}};
}

std::optional<KNDatabaseTreeEntry::List> MSSQLDatabaseTreeEntryServer::loadEntries(KNError *)
{
    m_loaded.version = MSSQLVersionHelper::sharedInstance()->versionForDBC(settings());
    m_loaded.databaseNames.clear();
    KNError error;
    List entries = loadDatabases(&m_loaded.databaseNames, &error);
    // The result of a failed refresh replaces all children; only an empty root shows the error.
    const Children shown = childEntries();
    if (error && (!shown || shown->empty())) {
        m_loaded.databaseNames.clear();
        return List{createErrorDetailsTreeEntry(error)};
    }
    return entries;
}

void MSSQLDatabaseTreeEntryServer::didLoadEntries(const Children &children)
{
    m_loaded.databaseNames.removeDuplicates();
    std::sort(m_loaded.databaseNames.begin(), m_loaded.databaseNames.end(),
              [](const QString &left, const QString &right) {
                  return MSSQLTreeCatalog::compareNames(left, right) < 0;
              });
    loadSearchResults(children);
}

void MSSQLDatabaseTreeEntryServer::willFinishLoading()
{
    setDetails(m_loaded.version);
    const std::lock_guard lock(m_namesMutex);
    m_internalDatabaseNames = m_loaded.databaseNames;
}

KNDatabaseTreeEntry::List MSSQLDatabaseTreeEntryServer::loadDatabases(QStringList *allDatabaseNames,
                                                                      KNError *error)
{
    const QString sql = MSSQLTreeCatalog::text(*this, "General_ListDatabases");
    const bool showsSystemDatabases = MSSQLTreePreferences::isOn(MSSQLTreePreferences::ShowSystemDatabases);
    List entries;
    KNError failure;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *queryFailure) {
            allDatabaseNames->clear();
            entries.clear();
            List systemDatabases;
            const auto rows = client.executeQuery(sql, queryFailure);
            while (rows && !*queryFailure && rows->next()) {
                const QString name = rows->stringForColumnIndex(0);
                const bool isSystem = isSystemDatabase(name);
                if (name.isEmpty() || (isSystem && !showsSystemDatabases))
                    continue;
                allDatabaseNames->append(name);
                if (Ptr database = databaseForRow(*rows, name))
                    (isSystem ? systemDatabases : entries).push_back(std::move(database));
            }
            if (*queryFailure)
                return;
            const List others = entriesBesideDatabases(std::move(systemDatabases), client);
            entries.insert(entries.end(), others.begin(), others.end());
        },
        settings(), &failure, true);
    if (failure) {
        *error = failure.inDomain(QStringLiteral("mssqsql.databaseTree.loadServer"));
        if (MSSQLErrorReport::reportError(*error, {{QStringLiteral("Query"), sql}}))
            tellFailLoading(*error);
    }
    return entries;
}

KNDatabaseTreeEntry::List MSSQLDatabaseTreeEntryServer::entriesBesideDatabases(List systemDatabases,
                                                                               VantorDatabaseClient &client)
{
    List entries;
    if (!systemDatabases.empty())
        entries.push_back(make<MSSQLDatabaseTreeEntrySystemDatabases>(std::move(systemDatabases)));
    if (MSSQLTreePreferences::isOn(MSSQLTreePreferences::ShowSecurity) &&
        !MSSQLVersionHelper::sharedInstance()->isDBCAzure(settings()))
        entries.push_back(make<MSSQLDatabaseTreeEntrySectionSecurity>(MSSQLPrincipalScope::Server));
    if (MSSQLTreePreferences::isOn(MSSQLTreePreferences::AgentEnabled)) {
        KNError failure; // ignored: the databases are useful without the agent
        if (Ptr agent = loadAgent(client, &failure))
            entries.push_back(std::move(agent));
        if (failure)
            KNLogHelper::sharedInstance()->logError(failure, {});
    }
    return entries;
}

/// Null for a database that this connection does not show.
KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntryServer::databaseForRow(const DatabaseResultSet &row,
                                                                      const QString &name)
{
    const bool isFederated = !settings().federationStatement().isEmpty();
    const QString boundTo = settings().database();
    if (!isFederated && !boundTo.isEmpty() && name.compare(boundTo, Qt::CaseInsensitive) != 0)
        return nullptr;
    constexpr qint64 FirstUserDatabase = 5;
    if (isFederated && row.numberForColumnIndex(1).toInt64() < FirstUserDatabase)
        return nullptr;
    auto database = make<MSSQLDatabaseTreeEntryDatabase>();
    database->setDisplayName(name);
    database->setDatabaseName(isFederated ? boundTo : name);
    // The reason why it cannot be opened; servers without this column, as in tests, give none.
    if (constexpr qsizetype Unavailable = 2; row.columnCount() > Unavailable)
        database->setDetails(row.stringForColumnIndex(Unavailable));
    const VantorDBCPtr details = settings().copy();
    details->setDatabase(database->databaseName());
    database->setDatabaseConnectionDetails(details.get());
    return database;
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntryServer::loadAgent(VantorDatabaseClient &client, KNError *error)
{
    MSSQLVersionHelper *versions = MSSQLVersionHelper::sharedInstance();
    if (versions->isSQL2000(settings()) || versions->isDBCAzure(settings()))
        return nullptr;
    Ptr agent;
    const auto rows = client.executeQuery(MSSQLTreeCatalog::text(*this, "IsSQLServerAgentAvailable"), error);
    while (rows && !*error && rows->next()) {
        if (rows->objectForColumnIndex(0).toBool())
            agent = make<MSSQLDatabaseTreeEntrySectionAgent>();
    }
    return agent;
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntryServer::copyWithSearchResults(const QString &text)
{
    const Children children = childEntries();
    if (!children)
        return nullptr;
    List found;
    for (const Ptr &child : *children) {
        if (!dynamic_cast<MSSQLDatabaseTreeEntryDatabase *>(child.get()))
            continue;
        if (Ptr copy = child->copyWithSearchResults(text))
            found.push_back(std::move(copy));
    }
    if (found.empty())
        return nullptr;
    const auto root = std::make_shared<MSSQLDatabaseTreeEntryServer>(found);
    root->setDatabaseConnectionDetails(&settings());
    root->setDetails(details());
    root->setDelegate(delegate());
    root->setContextHelper(contextHelper());
    for (const Ptr &copy : found) {
        copy->setParent(root);
        copy->setDelegate(delegate());
    }
    return root;
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryServer::propertiesLoader() const
{
    return MSSQLObjectProperties::loader(databaseConnectionDetails(), "Properties_Server");
}
