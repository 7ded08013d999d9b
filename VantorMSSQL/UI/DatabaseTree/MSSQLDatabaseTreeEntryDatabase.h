#pragma once

#include "DatabaseTree/KNDatabaseSearchResult.h"
#include "DatabaseTree/KNDatabaseTreeLoadingEntry.h"

/// A user database. Its sections are created without a query. It stores the searchable objects of the
/// database.
class MSSQLDatabaseTreeEntryDatabase : public KNDatabaseTreeLoadingEntry
{
public:
    MSSQLDatabaseTreeEntryDatabase();
    /// A copy for search results with these children.
    explicit MSSQLDatabaseTreeEntryDatabase(List searchResults);

    /// The name; for a federation member that of the connection's database.
    QString databaseName() const { return m_databaseName; }
    void setDatabaseName(const QString &databaseName) { m_databaseName = databaseName; }

    QString image() const override { return QStringLiteral("DatabaseTree-Database"); }
    QList<QStringList> dragNames() const override { return {{displayName()}}; }
    KNMenu menu() override;
    KNObjectPropertiesLoader propertiesLoader() const override;

    /// Sets the objects that copyWithSearchResults() searches; always returns true. Both on the UI thread.
    bool updateSearchResults(const KNDatabaseSearchResults &results);
    Ptr copyWithSearchResults(const QString &text) override;

protected:
    KNMenu additionalMenu() override;
    void willBeginLoading() override;
    std::optional<List> loadEntries(KNError *error) override;

private:
    Ptr entryForSearchResult(const KNDatabaseSearchResult &result);
    KNMenuItem createExportMenu() const;
    KNMenuItem createScriptAsMenu() const;

    QString m_databaseName;
    KNDatabaseSearchResults m_searchResults;
};
