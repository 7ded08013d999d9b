#include "Foundation/KNAssert.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

constexpr char CurrentSchema[] = "SELECT SCHEMA_NAME()";

class Views : public TreeTest
{
protected:
    Ptr views(const FakeCatalog::Rows &rows)
    {
        server->answer("List_ViewsInDatabase_NonSystem", rows);
        const Ptr section = entry({"shop", "Views"});
        EXPECT_TRUE(load(section));
        return section;
    }
};

} // namespace

TEST_F(Views, AllInTheCurrentSchemaHaveBareNames)
{
    server->answer(CurrentSchema, {{"dbo"}});
    const Ptr section = views({{1, "dbo", "vw_orders"}, {2, "dbo", "vw_sales"}});
    EXPECT_EQ(names(section), list({"vw_orders", "vw_sales"}));
    EXPECT_FALSE(delegate->eventsOf(*section)[1].onMainThread);
    const auto view =
        std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryDatabaseTable>(section->childEntries()->front());
    EXPECT_TRUE(view->isView());
    EXPECT_EQ(view->schema(), QStringLiteral("dbo"));
    EXPECT_EQ(view->tableName(), QStringLiteral("vw_orders"));
    load(view);
    EXPECT_EQ(names(view), list({"Columns", "Keys", "Indexes", "Triggers"}));
}

TEST_F(Views, OfTwoSchemasKeepTheirSchemas)
{
    server->answer(CurrentSchema, {{"dbo"}});
    EXPECT_EQ(names(views({{1, "sales", "vw_sales"}, {2, "dbo", "vw_orders"}})),
              list({"sales.vw_sales", "dbo.vw_orders"}));
    EXPECT_EQ(server->count(CurrentSchema), 0);
}

TEST_F(Views, AllInAnotherSchemaKeepIt)
{
    server->answer(CurrentSchema, {{"dbo"}});
    EXPECT_EQ(names(views({{1, "sales", "a"}, {2, "sales", "b"}})), list({"sales.a", "sales.b"}));
    EXPECT_EQ(server->count(CurrentSchema), 1);
    server->answer(CurrentSchema, {{nullptr}, {"SALES"}});
    EXPECT_EQ(names(views({{1, "sales", "a"}})), list({"sales.a"}));
}

TEST_F(Views, AnEmptyDatabaseIsNotAskedForItsSchema)
{
    EXPECT_EQ(names(views({})), QStringList());
    EXPECT_EQ(server->count(CurrentSchema), 0);
}

TEST_F(Views, WhenTheCurrentSchemaIsNotToBeHadTheSchemasStay)
{
    server->fail(CurrentSchema, Failure);
    EXPECT_EQ(names(views({{1, "dbo", "a"}})), list({"dbo.a"}));
    EXPECT_TRUE(wasLogged("Error mssqsql.databaseTree.loadViews 911: No."));
}

TEST_F(Views, AFailureIsLoggedAndShown)
{
    server->fail("List_ViewsInDatabase_NonSystem", Failure);
    const Ptr section = entry({"shop", "Views"});
    load(section);
    EXPECT_EQ(names(section), list({"No."}));
    EXPECT_TRUE(wasLogged("Error mssqsql.databaseTree.loadViews 911: No."));
    EXPECT_EQ(server->count(CurrentSchema), 0);
}

TEST_F(Views, RemovingAViewThatIsNotThereIsAProgrammingError)
{
    const Ptr section = views({{1, "dbo", "a"}, {2, "sales", "b"}});
    section->removeChild(section->childEntries()->front());
    EXPECT_EQ(names(section), list({"sales.b"}));
    try {
        section->removeChild(section);
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("View does not exist in parent."));
        EXPECT_EQ(failure.sourcePath(),
                  QStringLiteral("UI/DatabaseTree/Views/MSSQLDatabaseTreeEntrySectionViews"));
    }
}

TEST_F(Views, TheSectionHasItsMenu)
{
    const KNMenu menu = entry({"shop", "Views"})->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Root"));
    EXPECT_EQ(titles(menu), list({"New query", "-", "Refresh"}));
}
