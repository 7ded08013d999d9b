#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

class Table : public TreeTest
{
protected:
    Ptr table(const char *schema, const char *name, bool isView = false)
    {
        m_parent = root();
        m_parent->setContextHelper(helper);
        const auto made = std::make_shared<MSSQLDatabaseTreeEntryDatabaseTable>(
            QString::fromUtf8(name), QString::fromUtf8(schema), QString::fromUtf8(name));
        made->setIsView(isView);
        m_parent->adopt(*made);
        return made;
    }

    const std::shared_ptr<KNDatabaseTreeContextHelper> helper =
        std::make_shared<KNDatabaseTreeContextHelper>();

private:
    std::shared_ptr<MSSQLDatabaseTreeEntryServer> m_parent;
};

} // namespace

TEST_F(Table, ExpandsIntoFourSectionsWithoutAsking)
{
    const Ptr orders = table("dbo", "Orders");
    EXPECT_FALSE(load(orders));
    EXPECT_EQ(names(orders), list({"Columns", "Keys", "Indexes", "Triggers"}));
    const auto before = orders->childEntries();
    EXPECT_FALSE(load(orders, true));
    EXPECT_EQ(orders->childEntries(), before);
    EXPECT_EQ(server->titles(), QStringList());
    for (const Ptr &section : *before) {
        EXPECT_EQ(section->parent(), orders);
        EXPECT_EQ(section->delegate(), delegate);
        EXPECT_EQ(section->image(), QStringLiteral("DatabaseTree-Folder"));
        EXPECT_EQ(section->databaseConnectionDetails()->host(), server->settings()->host());
    }
}

TEST_F(Table, IsDraggedByItsDisplayName)
{
    const Ptr orders = table("dbo", "Orders");
    EXPECT_EQ(orders->dragDropString(), QStringLiteral("Orders"));
    EXPECT_NE(orders->dragDropEntry(), nullptr);
}

TEST_F(Table, IsInsertedInBracketsWhereItsNameWouldReadAsSomethingElse)
{
    EXPECT_EQ(table("dbo", "Orders")->insertedText(), QStringLiteral("Orders"));
    const Ptr hostile = table("dbo", "a]; DROP TABLE victim; --");
    EXPECT_EQ(hostile->dragDropString(), QStringLiteral("a]; DROP TABLE victim; --"));
    EXPECT_EQ(hostile->insertedText(), QStringLiteral("[a]]; DROP TABLE victim; --]"));
    EXPECT_EQ(table("dbo", "DROP TABLE victim")->insertedText(), QStringLiteral("[DROP TABLE victim]"));
    const Ptr other = table("my schema", "a.b");
    other->setDisplayName(QStringLiteral("my schema.a.b"));
    EXPECT_EQ(other->dragDropString(), QStringLiteral("my schema.a.b"));
    EXPECT_EQ(other->insertedText(), QStringLiteral("[my schema].[a.b]"));
}

TEST_F(Table, AViewHasTheImageOfATableAndAnIconOfItsOwn)
{
    const auto view = std::make_shared<MSSQLDatabaseTreeEntryDatabaseTable>(
        QStringLiteral("v"), QStringLiteral("dbo"), QStringLiteral("v"));
    EXPECT_EQ(view->iconName(), QStringLiteral("DatabaseTree-Table"));
    view->setIsView(true);
    EXPECT_EQ(view->image(), QStringLiteral("DatabaseTree-Table"));
    EXPECT_EQ(view->iconName(), QStringLiteral("DatabaseTree-View"));
}

TEST_F(Table, ADoubleClickSelectsFromItWithBothNamesEscaped)
{
    QStringList executed;
    helper->addAction(QStringLiteral("executeQueryTab:"), [&](const KNMenuRepresentedObject &object) {
        executed.append(std::get<QString>(object));
    });
    table("dbo", "Order Details")->onDoubleClicked();
    table("my schema", "Orders")->cmdDown();
    EXPECT_EQ(executed, list({"SELECT TOP 100 * FROM dbo.[Order Details];",
                              "SELECT TOP 100 * FROM [my schema].Orders;"}));
}

TEST_F(Table, CmdRightAltersIt)
{
    Ptr altered;
    helper->addAction(QStringLiteral("alterTable:"),
                      [&](const KNMenuRepresentedObject &object) { altered = std::get<Ptr>(object); });
    const Ptr orders = table("dbo", "Orders");
    orders->cmdRight();
    EXPECT_EQ(altered, orders);
}

TEST_F(Table, ActionsWithoutHandlerDoNothing)
{
    const Ptr orders = table("dbo", "Orders");
    tree = nullptr;
    const auto alone = std::make_shared<MSSQLDatabaseTreeEntryDatabaseTable>(QString(), QString(), QString());
    alone->onDoubleClicked();
    alone->cmdRight();
    orders->cmdDown(); // the action is not known
}

TEST_F(Table, HasItsMenu)
{
    const Ptr orders = table("dbo", "Order Details");
    const KNMenu menu = orders->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Root"));
    EXPECT_EQ(titles(menu),
              list({"New query", "-", "New table", "Alter table", "Rename table", "Drop table", "Insert row",
                    "-", "Select top 100 rows", "Script as", "-", "Export", "Import", "-", "Refresh"}));
    const auto action = [&](const char *title) { return item(menu, list({title})).action; };
    EXPECT_EQ(action("New table"), QStringLiteral("addNewTable:"));
    EXPECT_EQ(action("Alter table"), QStringLiteral("alterTable:"));
    EXPECT_EQ(action("Rename table"), QStringLiteral("renameTable:"));
    EXPECT_EQ(action("Drop table"), QStringLiteral("confirmDropTable:"));
    EXPECT_EQ(action("Insert row"), QStringLiteral("displayInsertDialog:"));
    EXPECT_EQ(action("Select top 100 rows"), QStringLiteral("executeQueryTab:"));
    for (const char *title : {"Alter table", "Rename table", "Drop table", "Insert row"})
        EXPECT_EQ(TreeTesting::entry(item(menu, list({title}))), orders);
    EXPECT_EQ(text(item(menu, list({"Select top 100 rows"}))),
              QStringLiteral("SELECT TOP 100 * FROM dbo.[Order Details];"));
    EXPECT_EQ(titles(*item(menu, list({"Script as"})).submenu),
              list({"CREATE to", "DROP to", "DROP and CREATE to"}));
}

TEST_F(Table, ItsExportNamesTheTableInOneText)
{
    const KNMenu menu = table("dbo", "Order Details")->menu();
    EXPECT_EQ(titles(*item(menu, list({"Export"})).submenu), list({"CSV", "-", "MySQL"}));
    const KNMenuItem csv = item(menu, list({"Export", "CSV"}));
    EXPECT_EQ(csv.action, QStringLiteral("exportTableAsCSV:"));
    EXPECT_EQ(text(csv), QStringLiteral("dbo.[Order Details]"));
    // Dots of names are not those between them.
    EXPECT_EQ(text(item(table("a.b", "c.d")->menu(), list({"Export", "CSV"}))),
              QStringLiteral("[a.b].[c.d]"));
}

TEST_F(Table, AViewHasItsOwnMenu)
{
    const Ptr view = table("dbo", "vw", true);
    const KNMenu menu = view->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Root"));
    EXPECT_EQ(titles(menu), list({"New query", "-", "Alter view", "Drop view", "-", "Select top 100 rows",
                                  "Script as", "-", "-", "Refresh"}));
    EXPECT_EQ(item(menu, list({"Alter view"})).action, QStringLiteral("addQueryTabWithQueryLoader:"));
    EXPECT_EQ(item(menu, list({"Drop view"})).action, QStringLiteral("confirmDropView:"));
    EXPECT_EQ(TreeTesting::entry(item(menu, list({"Drop view"}))), view);
    EXPECT_EQ(titles(*item(menu, list({"Script as"})).submenu),
              list({"CREATE to", "DROP to", "DROP and CREATE to"}));
}
