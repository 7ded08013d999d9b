#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTables.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

const KNError FailureWithFact(QStringLiteral("SQLClient"), 911, QStringLiteral("No."),
                              {{QStringLiteral("key"), QStringLiteral("fact")}});

class Tables : public TreeTest
{
protected:
    /// The section of a tree whose database has these tables; loaded.
    Ptr tables(const FakeCatalog::Rows &rows)
    {
        server->answer("DatabaseTree_ListTables", rows);
        const Ptr section = entry({"shop", "Tables"});
        EXPECT_FALSE(load(section));
        return section;
    }

    void postAdded(const char *name, const QString &schema, const char *database = "shop")
    {
        KNDatabaseNotificationTable::postAdditionNotificationForTable(QString::fromLatin1(name), schema,
                                                                      *settingsFor(database));
    }
    void postRemoved(const char *name, const char *schema, const char *database = "shop")
    {
        KNDatabaseNotificationTable::postRemovalNotificationForTable(
            QString::fromLatin1(name), QString::fromLatin1(schema), *settingsFor(database));
    }

private:
    std::shared_ptr<MSSQLDatabaseConnectionDetails> settingsFor(const char *database)
    {
        const auto details = server->settings();
        details->setDatabase(QString::fromLatin1(database));
        return details;
    }
};

} // namespace

TEST_F(Tables, ThoseOfTheDefaultSchemaHaveBareNames)
{
    const Ptr section = tables({{1, "dbo", "Orders"}, {2, "sales", "Orders"}, {3, "DBO", "Other"}});
    EXPECT_EQ(names(section), list({"Orders", "sales.Orders", "DBO.Other"}));
    EXPECT_EQ(server->databases("DatabaseTree_ListTables"), list({"shop"}));
    EXPECT_TRUE(delegate->eventsOf(*section)[1].onMainThread);
    const Ptr first = section->childEntries()->front();
    EXPECT_EQ(first->parent(), section);
    EXPECT_EQ(first->delegate(), delegate);
    EXPECT_TRUE(first->canHaveChildren());
    EXPECT_EQ(first->image(), QStringLiteral("DatabaseTree-Table"));
}

TEST_F(Tables, KeepTheOrderOfTheQuery)
{
    EXPECT_EQ(names(tables({{1, "dbo", "b"}, {2, "dbo", "a"}, {3, "dbo", "C"}})), list({"b", "a", "C"}));
}

TEST_F(Tables, WithoutADefaultSchemaAllHaveTheirSchema)
{
    server->answer("General_FindDefaultUserSchema", {});
    EXPECT_EQ(names(tables({{1, "dbo", "Orders"}, {2, "sales", "Orders"}})),
              list({"dbo.Orders", "sales.Orders"}));
}

TEST_F(Tables, RowsWithoutASchemaOrANameAreLoggedAndShown)
{
    const Ptr section = tables({{1, nullptr, "Orders"}, {2, "dbo", nullptr}});
    EXPECT_EQ(names(section).size(), 2);
    EXPECT_EQ(names(section).first(), QStringLiteral("(null).Orders"));
    EXPECT_EQ(timesLogged("Warning: Failed to get schema."), 1);
    EXPECT_EQ(timesLogged("Warning: Schema or table name is nil."), 2);
    postAdded("Added", QString());
    EXPECT_EQ(names(section).size(), 3);
}

TEST_F(Tables, OddNamesComeThroughAsTheyAre)
{
    const QString longest(128, QLatin1Char('x'));
    const QString emoji = QString::fromUtf8("📦 'a/b' [c] \"d\" \\ \n;--");
    server->answer(QStringLiteral("DatabaseTree_ListTables"), [=](const QString &, KNError *) {
        return FakeCatalog::Rows{{1, "dbo", longest}, {2, "dbo", emoji}, {3, "a.b", "c.d"}};
    });
    const Ptr section = entry({"shop", "Tables"});
    load(section);
    EXPECT_EQ(names(section), QStringList({longest, emoji, QStringLiteral("a.b.c.d")}));
}

TEST_F(Tables, AFailureIsLoggedAndShown)
{
    server->fail("DatabaseTree_ListTables", FailureWithFact);
    const Ptr section = entry({"shop", "Tables"});
    load(section);
    EXPECT_EQ(names(section), list({"No."}));
    EXPECT_TRUE(wasLogged("Error mssqsql.databaseTree.loadTables 911: No."));
    EXPECT_TRUE(wasLogged("key: fact"));
    EXPECT_TRUE(wasLogged("Query: "));
    server->answer("DatabaseTree_ListTables", {{1, "dbo", "Orders"}});
    load(section, true);
    EXPECT_EQ(names(section), list({"Orders"}));
}

TEST_F(Tables, AConnectionThatIsLostTwiceIsShownAndARefreshRecovers)
{
    server->answer("DatabaseTree_ListTables", {{1, "dbo", "Orders"}});
    server->loseConnection("DatabaseTree_ListTables");
    server->loseConnection("DatabaseTree_ListTables");
    const Ptr section = entry({"shop", "Tables"});
    load(section);
    EXPECT_EQ(names(section), list({"The connection was lost."}));
    load(section, true);
    EXPECT_EQ(names(section), list({"Orders"}));
}

TEST_F(Tables, AForcedLoadEmptiesTheListAtOnce)
{
    const Ptr section = tables({{1, "dbo", "Orders"}});
    EXPECT_FALSE(section->loadEntriesAsync(true));
    EXPECT_EQ(section->childEntries(), nullptr);
    EXPECT_TRUE(section->loadEntriesAsync(false));
    EXPECT_TRUE(settle());
    EXPECT_EQ(names(section), list({"Orders"}));
    EXPECT_EQ(server->count("General_FindDefaultUserSchema"), 1);
}

TEST_F(Tables, AnAddedTableOfTheDefaultSchemaInAnyCaseHasABareNameAndTheListIsSorted)
{
    const Ptr section = tables(
        {{1, "zoo", "Apes"}, {2, "dbo", "b"}, {3, "dbo", "Z"}, {4, "Sales", "x"}, {5, "archive", "y"}});
    postAdded("a", QStringLiteral("DBO"));
    EXPECT_EQ(names(section), list({"Z", "a", "b", "archive.y", "Sales.x", "zoo.Apes"}));
    EXPECT_EQ(delegate->finishes(*section), 2);
    postAdded("w", QStringLiteral("sales"));
    EXPECT_EQ(names(section), list({"Z", "a", "b", "archive.y", "sales.w", "Sales.x", "zoo.Apes"}));
}

TEST_F(Tables, AnAddedTableWithoutASchemaBelongsToTheDefaultOne)
{
    const Ptr section = tables({{1, "dbo", "Orders"}});
    postAdded("Added", QString());
    EXPECT_EQ(names(section), list({"Added", "Orders"}));
    const auto added =
        std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryDatabaseTable>(section->childEntries()->front());
    EXPECT_EQ(added->schema(), QStringLiteral("dbo"));
    EXPECT_EQ(added->parent(), section);
}

TEST_F(Tables, ARemovedTableLeavesTheList)
{
    const Ptr section = tables({{1, "dbo", "Orders"}, {2, "sales", "Orders"}, {3, "sales", "Lines"}});
    postAdded("Added", QStringLiteral("dbo"));
    postRemoved("Orders", "sales");
    EXPECT_EQ(names(section), list({"Added", "Orders", "sales.Lines"}));
    postAdded("More", QStringLiteral("sales"));
    EXPECT_EQ(names(section), list({"Added", "Orders", "sales.Lines", "sales.More"}));
    EXPECT_TRUE(wasLogged("tableWasRemoved: "));
}

TEST_F(Tables, RemovingATableThatIsNotThereOnlyRedraws)
{
    const Ptr section = tables({{1, "dbo", "Orders"}});
    const auto before = section->childEntries();
    postRemoved("orders", "dbo");
    EXPECT_EQ(section->childEntries(), before);
    EXPECT_EQ(delegate->finishes(*section), 2);
}

TEST_F(Tables, TablesOfOtherConnectionsAndDatabasesAreIgnored)
{
    const Ptr section = tables({{1, "dbo", "Orders"}});
    postAdded("Added", QStringLiteral("dbo"), "Sales");
    postRemoved("Orders", "dbo", "Sales");
    const auto other = FakeCatalog::Server::create()->settings();
    KNDatabaseNotificationTable::postAdditionNotificationForTable(QStringLiteral("Added"),
                                                                  QStringLiteral("dbo"), *other);
    EXPECT_EQ(names(section), list({"Orders"}));
    EXPECT_EQ(delegate->finishes(*section), 1);
}

TEST_F(Tables, ATableAddedBeforeTheFirstLoadIsLeftToIt)
{
    const Ptr section = entry({"shop", "Tables"});
    postAdded("Added", QStringLiteral("dbo"));
    EXPECT_EQ(section->childEntries(), nullptr);
}

TEST_F(Tables, TheSectionHasItsMenu)
{
    const Ptr section = entry({"shop", "Tables"});
    const KNMenu menu = section->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Root"));
    EXPECT_EQ(titles(menu), list({"New query", "-", "New table", "-", "Export", "Import", "-", "Refresh"}));
    EXPECT_EQ(item(menu, list({"New table"})).action, QStringLiteral("addNewTable:"));
    EXPECT_EQ(text(item(menu, list({"New table"}))), MSSQLTreeCatalog::text(*tree, "NewTable"));
    EXPECT_EQ(titles(*item(menu, list({"Export"})).submenu), list({"MySQL"}));
}
