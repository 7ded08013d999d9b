#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Catalog/MSSQLObjectProperties.h"
#include "Foundation/KNLogHelper.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionFederations.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTables.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/DatabaseTree/MSSQLTreePreferences.h"
#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntryFunction.h"
#include "UI/DatabaseTree/Programmability/MSSQLDatabaseTreeEntrySectionProgrammability.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"
#include "UI/DatabaseTree/Security/MSSQLDatabaseTreeEntrySectionSecurity.h"
#include "UI/DatabaseTree/Views/MSSQLDatabaseTreeEntrySectionViews.h"

MSSQLDatabaseTreeEntryDatabase::MSSQLDatabaseTreeEntryDatabase()
    : KNDatabaseTreeLoadingEntry(
          {.clearsFirst = true, .returnsOnceStarted = false, .finishes = Finishes::OnMainQueue},
          QStringLiteral("MSSQLDatabaseTreeEntryDatabase"))
{
}

MSSQLDatabaseTreeEntryDatabase::MSSQLDatabaseTreeEntryDatabase(List searchResults)
    : MSSQLDatabaseTreeEntryDatabase()
{
    setCanRefresh(false);
    setChildEntries(std::move(searchResults));
}

void MSSQLDatabaseTreeEntryDatabase::willBeginLoading()
{
    if (KNAutocompleteHelper *helper = databaseConnectionDetails()->sharedAutocompleteHelper())
        helper->requestEntriesForDatabaseConnectionDetails(*databaseConnectionDetails());
}

std::optional<KNDatabaseTreeEntry::List> MSSQLDatabaseTreeEntryDatabase::loadEntries(KNError *)
{
    const auto tables = MSSQLDatabaseTreeEntrySectionTables::create();
    adopt(*tables);
    List sections = {tables, make<MSSQLDatabaseTreeEntrySectionViews>(),
                     make<MSSQLDatabaseTreeEntrySectionProgrammability>()};
    const Ptr server = parent();
    const bool isAzure = server && server->details().contains(QLatin1String("azure"), Qt::CaseInsensitive);
    if (isAzure && MSSQLTreeCatalog::settings(*this).federationStatement().isEmpty())
        sections.push_back(make<MSSQLDatabaseTreeEntrySectionFederations>());
    if (MSSQLTreePreferences::isOn(MSSQLTreePreferences::ShowSecurity))
        sections.push_back(make<MSSQLDatabaseTreeEntrySectionSecurity>(MSSQLPrincipalScope::Database));
    return sections;
}

bool MSSQLDatabaseTreeEntryDatabase::updateSearchResults(const KNDatabaseSearchResults &results)
{
    m_searchResults = results;
    return true;
}

KNDatabaseTreeEntry::Ptr
MSSQLDatabaseTreeEntryDatabase::entryForSearchResult(const KNDatabaseSearchResult &result)
{
    const auto isType = [&](const char *type) {
        return result.type.compare(QLatin1String(type), Qt::CaseInsensitive) == 0;
    };
    if (isType("TABLE") || isType("VIEW")) {
        auto table =
            make<MSSQLDatabaseTreeEntryDatabaseTable>(result.display, result.schema, result.objectName);
        table->setIsView(isType("VIEW"));
        table->setDetails(result.schema);
        return table;
    }
    if (isType("FUNCTION")) {
        const QString name = result.display.contains(QLatin1Char('.'))
                                 ? result.display
                                 : KNFormat("%@.%@", result.schema, result.objectName);
        return make<MSSQLDatabaseTreeEntryFunction>(name, result.schema, result.objectName);
    }
    if (isType("PROCEDURE")) {
        auto procedure =
            make<MSSQLDatabaseTreeEntryStoredProcedure>(result.display, result.schema, result.objectName);
        procedure->setDetails(result.schema);
        return procedure;
    }
    KNLogHelper::sharedInstance()->logMessage(QStringLiteral("Unknown"));
    return nullptr;
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntryDatabase::copyWithSearchResults(const QString &text)
{
    List matches;
    for (const KNDatabaseSearchResult &result : std::as_const(m_searchResults)) {
        if (result.display.isNull() || !result.display.contains(text, Qt::CaseInsensitive))
            continue;
        if (Ptr match = entryForSearchResult(result))
            matches.push_back(std::move(match));
    }
    if (matches.empty())
        return nullptr;
    const auto found = std::make_shared<MSSQLDatabaseTreeEntryDatabase>(matches);
    found->setDisplayName(displayName());
    found->setDatabaseName(m_databaseName);
    found->setDatabaseConnectionDetails(databaseConnectionDetails().get());
    for (const Ptr &match : matches)
        match->setParent(found);
    return found;
}

KNMenu MSSQLDatabaseTreeEntryDatabase::menu()
{
    return {QStringLiteral("Root"),
            {newQueryMenuItem(), KNMenuItem::separator(), createExportMenu(), importMenuItem(),
             KNMenuItem::separator(), createScriptAsMenu()}};
}

KNMenuItem MSSQLDatabaseTreeEntryDatabase::createExportMenu() const
{
    const QString title = QStringLiteral("Export");
    // An export as T-SQL is not offered.
    return KNMenuItem::withSubmenu(
        title, {title, {actionItem("MySQL", "exportDatabaseAsMySQL:", QStringLiteral(""))}});
}

KNMenuItem MSSQLDatabaseTreeEntryDatabase::createScriptAsMenu() const
{
    const QString title = QStringLiteral("Script");
    const auto script = [&](const char *text, const char *queryTitle) {
        return createScriptToOptionsMenu(
            text, std::make_shared<StaticQueryLoader>(MSSQLTreeCatalog::text(*this, queryTitle)));
    };
    return KNMenuItem::withSubmenu(
        title, {title,
                {script("Clear database", "Script_ClearDatabase"), script("sp_who3", "Script_SPWHO3"),
                 script("Table sizes", "Script_TableSizes"),
                 script("Long running queries", "Script_LongRunningQueries"),
                 script("List connections", "Script_ListConnections")}});
}

KNMenu MSSQLDatabaseTreeEntryDatabase::additionalMenu()
{
    const QString title = QStringLiteral("Script");
    const KNMenuItem generate = actionItem("Generate Scripts…", "generateScripts:", shared_from_this());
    return {{}, {KNMenuItem::withSubmenu(title, {title, {generate}})}};
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryDatabase::propertiesLoader() const
{
    return MSSQLObjectProperties::loader(databaseConnectionDetails(), "Properties_Database");
}
