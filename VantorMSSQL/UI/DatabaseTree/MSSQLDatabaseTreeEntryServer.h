#pragma once

#include "Database/VantorDatabaseClient.h"
#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "Foundation/KNNotificationCenter.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

class MSSQLDatabaseTreeEntryDatabase;

/// The root of the tree of one SQL Server: its databases, then the agent. Its details are the server's
/// version. After every load, and after the application has created or dropped a table, it loads the
/// searchable objects of the databases.
class MSSQLDatabaseTreeEntryServer : public DatabaseTreeEntryServerRoot
{
public:
    /// Creates a root that observes notifications.
    static std::shared_ptr<MSSQLDatabaseTreeEntryServer> create();
    MSSQLDatabaseTreeEntryServer();
    /// A copy for search results with these children.
    explicit MSSQLDatabaseTreeEntryServer(List searchResults);

    /// Null is a programming error.
    void setDatabaseConnectionDetails(const VantorDBC *details) override;
    QString displayName() const override;
    QString image() const override { return QStringLiteral("DatabaseTree-Server-MSSQL"); }
    int tableCellHeight() const override;
    QString tableCellIdentifier() const override;
    QStringList allDatabaseNames() const override;
    KNMenu menu() override;
    KNObjectPropertiesLoader propertiesLoader() const override;

    bool updateSearchEntries(KNError *error) override;
    Ptr copyWithSearchResults(const QString &text) override;

protected:
    std::optional<List> loadEntries(KNError *error) override;
    void didLoadEntries(const Children &children) override;
    void willFinishLoading() override;
    KNMenu additionalMenu() override;

private:
    using Database = std::shared_ptr<MSSQLDatabaseTreeEntryDatabase>;

    const MSSQLDatabaseConnectionDetails &settings() const;
    List loadDatabases(QStringList *allDatabaseNames, KNError *error);
    List entriesBesideDatabases(List systemDatabases, VantorDatabaseClient &client);
    Ptr databaseForRow(const DatabaseResultSet &row, const QString &name);
    Ptr loadAgent(VantorDatabaseClient &client, KNError *error);

    /// The result of one load of searchable objects.
    struct SearchFeed
    {
        quint64 number = 0; ///< counted from 1
        Children entries;   ///< entries that received their objects
        bool isSearched = true;
        KNError error;
    };

    void loadSearchResults(const Children &entries);
    void runSearchFeed(const Children &entries);
    SearchFeed lastSearchFeed() const;
    bool updateSearchEntries(const Children &entries, KNError *error);
    bool updateSearchEntriesAzure(const std::vector<Database> &databases, KNError *error);

    struct Loaded
    {
        QString version;
        QStringList databaseNames;
    };
    Loaded m_loaded; ///< set by a load, taken by willFinishLoading()
    mutable std::mutex m_namesMutex;
    QStringList m_internalDatabaseNames; ///< guarded by m_namesMutex
    KNSemaphore m_searchLoadSemaphore;   ///< held while a search feed runs
    mutable std::mutex m_searchFeedMutex;
    SearchFeed m_lastSearchFeed; ///< guarded by m_searchFeedMutex
    KNNotificationCenter::Token m_tableAdded;
    KNNotificationCenter::Token m_tableRemoved;
};
