#include "Autocomplete/KNAutocompleteHelper.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntryFunction.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

class DatabaseNode : public TreeTest
{
protected:
    using TreeTest::TreeTest;

    /// A database with these objects for the search.
    std::shared_ptr<MSSQLDatabaseTreeEntryDatabase> searchable(const KNDatabaseSearchResults &objects)
    {
        const auto made = std::make_shared<MSSQLDatabaseTreeEntryDatabase>();
        made->setDisplayName(QStringLiteral("shop"));
        made->setDatabaseName(QStringLiteral("shop"));
        made->setDatabaseConnectionDetails(server->settings().get());
        made->setDelegate(delegate);
        EXPECT_TRUE(made->updateSearchResults(objects));
        return made;
    }
};

class AzureDatabaseNode : public DatabaseNode
{
protected:
    AzureDatabaseNode()
        : DatabaseNode("Microsoft SQL AZURE (RTM) - 12.0.2000.8")
    {
    }
};

KNDatabaseSearchResult object(const char *display, const char *schema, const char *name, const char *type)
{
    return {QString::fromLatin1(display), QString::fromLatin1(schema), QString::fromLatin1(name),
            QString::fromLatin1(type)};
}

/// Notes for which databases entries were asked.
class Counting : public KNAutocompleteHelper
{
public:
    void requestEntriesForDatabaseConnectionDetails(const VantorDBC &details, bool) override
    {
        databases.append(details.database());
    }
    QStringList databases;
};

} // namespace

TEST_F(DatabaseNode, ShowsSectionsWithoutQuery)
{
    const Ptr shop = entry({"shop"});
    const auto queries = server->titles();
    EXPECT_FALSE(load(shop));
    EXPECT_EQ(names(shop), list({"Tables", "Views", "Programmability"}));
    EXPECT_EQ(server->titles(), queries);
    for (const Ptr &section : *shop->childEntries()) {
        EXPECT_EQ(section->parent(), shop);
        EXPECT_EQ(section->delegate(), delegate);
        EXPECT_EQ(section->databaseConnectionDetails()->database(), QStringLiteral("shop"));
        EXPECT_EQ(section->image(), QStringLiteral("DatabaseTree-Folder"));
        EXPECT_TRUE(section->canHaveChildren());
    }
    EXPECT_TRUE(delegate->eventsOf(*shop)[1].onMainThread);
    EXPECT_EQ(shop->image(), QStringLiteral("DatabaseTree-Database"));
    EXPECT_EQ(shop->dragDropString(), QStringLiteral("shop"));
}

TEST_F(AzureDatabaseNode, ShowsItsFederationsAsWell)
{
    const Ptr shop = entry({"shop"});
    load(shop);
    EXPECT_EQ(names(shop), list({"Tables", "Views", "Programmability", "Federations"}));
}

TEST_F(AzureDatabaseNode, HidesFederationsOfFederationMember)
{
    const auto settings = server->settings();
    settings->setFederationStatement(QStringLiteral("USE FEDERATION F1 (id = 1) WITH RESET"));
    const auto node = root(settings);
    const Ptr shop = find(node, list({"shop"}));
    load(shop);
    EXPECT_EQ(names(shop), list({"Tables", "Views", "Programmability"}));
}

TEST_F(DatabaseNode, AForcedLoadEmptiesItAtOnceEvenWhileAnotherRuns)
{
    const Ptr shop = entry({"shop"});
    load(shop);
    EXPECT_FALSE(shop->loadEntriesAsync(true)); // runs until the main queue is served
    EXPECT_EQ(shop->childEntries(), nullptr);
    EXPECT_TRUE(shop->loadEntriesAsync(true));
    EXPECT_EQ(shop->childEntries(), nullptr);
    EXPECT_TRUE(settle());
    EXPECT_EQ(names(shop), list({"Tables", "Views", "Programmability"}));
    EXPECT_EQ(delegate->begins(*shop), 2);
}

TEST_F(DatabaseNode, IgnoresRemovalOfNonChild)
{
    const Ptr shop = entry({"shop"});
    load(shop);
    shop->removeChild(shop);
    EXPECT_EQ(names(shop).size(), 3);
    shop->removeChild(shop->childEntries()->front());
    EXPECT_EQ(names(shop), list({"Views", "Programmability"}));
}

TEST_F(DatabaseNode, LoadingItAsksForItsCompletionEntries)
{
    Counting helper;
    server->autocompleteHelper = &helper;
    const Ptr shop = entry({"shop"});
    EXPECT_EQ(helper.databases, QStringList());
    load(shop);
    load(shop);
    EXPECT_EQ(helper.databases, list({"shop"}));
    load(shop, true);
    EXPECT_EQ(helper.databases, list({"shop", "shop"}));
}

TEST_F(DatabaseNode, ASearchFindsATableByAPartOfItsNameInAnyCase)
{
    const auto shop = searchable({object("dbo.Orders", "dbo", "Orders", "table")});
    const Ptr found = shop->copyWithSearchResults(QStringLiteral("ord"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->displayName(), QStringLiteral("shop"));
    ASSERT_EQ(names(found), list({"dbo.Orders"}));
    const auto table =
        std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryDatabaseTable>(found->childEntries()->front());
    ASSERT_NE(table, nullptr);
    EXPECT_FALSE(table->isView());
    EXPECT_EQ(table->schema(), QStringLiteral("dbo"));
    EXPECT_EQ(table->tableName(), QStringLiteral("Orders"));
    EXPECT_EQ(table->parent(), found);
    EXPECT_EQ(table->delegate(), delegate);
    EXPECT_EQ(shop->copyWithSearchResults(QStringLiteral("customer")), nullptr);
}

TEST_F(DatabaseNode, ASearchMakesTheRightKindOfEntry)
{
    const auto shop =
        searchable({object("vw", "dbo", "vw", "View"), object("fn", "dbo", "fn", "FUNCTION"),
                    object("sales.fn", "sales", "fn", "function"), object("p", "dbo", "p", "Procedure")});
    const Ptr found = shop->copyWithSearchResults(QStringLiteral(""));
    ASSERT_EQ(names(found), list({"vw", "dbo.fn", "sales.fn", "p"}));
    const auto &children = *found->childEntries();
    EXPECT_TRUE(dynamic_cast<MSSQLDatabaseTreeEntryDatabaseTable &>(*children[0]).isView());
    EXPECT_EQ(dynamic_cast<MSSQLDatabaseTreeEntryFunction &>(*children[1]).functionName(),
              QStringLiteral("fn"));
    EXPECT_EQ(dynamic_cast<MSSQLDatabaseTreeEntryStoredProcedure &>(*children[3]).procedureName(),
              QStringLiteral("p"));
}

TEST_F(DatabaseNode, SearchSkipsUnknownKindsAndUnnamedObjects)
{
    KNDatabaseSearchResult nameless = object("", "dbo", "x", "TABLE");
    nameless.display = QString();
    const auto shop = searchable({object("trigger", "dbo", "trigger", "TRIGGER"), nameless});
    EXPECT_EQ(shop->copyWithSearchResults(QStringLiteral("t")), nullptr);
    EXPECT_EQ(timesLogged("Unknown"), 1);
}

TEST_F(DatabaseNode, HasItsMenu)
{
    const Ptr shop = entry({"shop"});
    const KNMenu menu = shop->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Root"));
    EXPECT_EQ(titles(menu), list({"New query", "-", "Export", "Import", "-", "Script"}));
    EXPECT_EQ(titles(*item(menu, list({"Export"})).submenu), list({"MySQL"}));
    EXPECT_EQ(item(menu, list({"Export", "MySQL"})).action, QStringLiteral("exportDatabaseAsMySQL:"));
    EXPECT_EQ(text(item(menu, list({"Export", "MySQL"}))), QStringLiteral(""));
    EXPECT_EQ(titles(*item(menu, list({"Script"})).submenu),
              list({"Clear database", "sp_who3", "Table sizes", "Long running queries", "List connections"}));
}

TEST_F(DatabaseNode, ItsScriptsAreTheTextsOfTheQueriesAndTheMenuAsksNoServer)
{
    const Ptr shop = entry({"shop"});
    const auto queries = server->titles();
    const KNMenuItem script = item(shop->menu(), list({"Script", "Table sizes", "New query tab"}));
    EXPECT_EQ(server->titles(), queries);
    const auto loader = std::dynamic_pointer_cast<StaticQueryLoader>(
        std::get<std::shared_ptr<KNQueryLoader>>(script.representedObject));
    ASSERT_NE(loader, nullptr);
    EXPECT_FALSE(loader->query().isEmpty());
    EXPECT_EQ(loader->query(), MSSQLTreeCatalog::text(*tree, "Script_TableSizes"));
    EXPECT_EQ(script.action, QStringLiteral("addQueryTabWithQueryLoader:"));
    EXPECT_FALSE(script.isEnabled());
}
