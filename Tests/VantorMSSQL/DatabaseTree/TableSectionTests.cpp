#include "Foundation/KNAssert.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntryDatabaseTableColumn.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableIndex.h"
#include "UI/DatabaseTree/Triggers/MSSQLDatabaseTreeEntryTableTrigger.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

class TableSection : public TreeTest
{
protected:
    /// A section of a table or a view; not loaded.
    Ptr section(const char *name, const char *table = "Orders", bool isView = false)
    {
        tree = root();
        m_table = std::make_shared<MSSQLDatabaseTreeEntryDatabaseTable>(
            QString::fromUtf8(table), QStringLiteral("dbo"), QString::fromUtf8(table));
        m_table->setIsView(isView);
        tree->adopt(*m_table);
        return find(m_table, list({name}));
    }

    QString loaderText(const KNMenuItem &menuItem)
    {
        const auto loader = std::dynamic_pointer_cast<StaticQueryLoader>(
            std::get<std::shared_ptr<KNQueryLoader>>(menuItem.representedObject));
        return loader ? loader->query() : QString();
    }

    QString scriptText(const KNMenu &menu, const char *script)
    {
        return loaderText(item(menu, list({"Script as", script, "New query tab"})));
    }

private:
    std::shared_ptr<MSSQLDatabaseTreeEntryDatabaseTable> m_table;
};

QStringList detailsOf(const Ptr &entry)
{
    QStringList texts;
    for (const Ptr &child : *entry->childEntries())
        texts.append(child->details());
    return texts;
}

QStringList imagesOf(const Ptr &entry)
{
    QStringList texts;
    for (const Ptr &child : *entry->childEntries())
        texts.append(child->image());
    return texts;
}

} // namespace

TEST_F(TableSection, ColumnsTellKeyTypeAndNullability)
{
    server->answer("ColumnsForTable", {{"id", "int", nullptr, 10, 0, 0, 1},
                                       {"name", "nvarchar", 100, 0, 0, 1, 0},
                                       {"notes", "nvarchar", -1, 0, 0, 1, nullptr},
                                       {"price", "decimal(18,2)", nullptr, 18, 2, 0, 0}});
    const Ptr columns = section("Columns");
    EXPECT_TRUE(load(columns));
    EXPECT_EQ(names(columns), list({"id", "name", "notes", "price"}));
    EXPECT_EQ(detailsOf(columns), list({"PK, int, not null", "nvarchar(50), null", "nvarchar(max), null",
                                        "decimal(18,2), not null"}));
    EXPECT_EQ(imagesOf(columns),
              list({"DatabaseTree-PK", "DatabaseTree-Column", "DatabaseTree-Column", "DatabaseTree-Column"}));
    EXPECT_EQ(columns->dragDropString(), QStringLiteral("id, name, notes, price"));
    EXPECT_EQ(columns->insertedText(), QStringLiteral("id, name, notes, price"));
    EXPECT_TRUE(delegate->eventsOf(*columns)[1].onMainThread);
    const auto id = std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryDatabaseTableColumn>(
        columns->childEntries()->front());
    EXPECT_EQ(id->schema(), QStringLiteral("dbo"));
    EXPECT_EQ(id->tableName(), QStringLiteral("Orders"));
    EXPECT_EQ(id->columnName(), QStringLiteral("id"));
    EXPECT_EQ(id->dragDropString(), QStringLiteral("id"));
    EXPECT_EQ(id->tableCellHeight(), 23);
    EXPECT_EQ(id->tableCellIdentifier(), QStringLiteral("ColumnDetailsTableCellView"));
    EXPECT_FALSE(id->canHaveChildren());
}

TEST_F(TableSection, ColumnsAreInsertedInBracketsWhereAStatementNeedsThem)
{
    server->answer("ColumnsForTable", {{"order id", "int", nullptr, 10, 0, 0, 1},
                                       {"name", "nvarchar", 100, 0, 0, 1, 0},
                                       {"a]b", "int", nullptr, 10, 0, 0, 0}});
    const Ptr columns = section("Columns");
    EXPECT_TRUE(load(columns));
    EXPECT_EQ(columns->dragDropString(), QStringLiteral("order id, name, a]b"));
    EXPECT_EQ(columns->insertedText(), QStringLiteral("[order id], name, [a]]b]"));
    EXPECT_EQ(columns->childEntries()->front()->dragDropString(), QStringLiteral("order id"));
    EXPECT_EQ(columns->childEntries()->front()->insertedText(), QStringLiteral("[order id]"));
}

TEST_F(TableSection, AColumnThatIsListedTwiceAppearsOnceAsListedFirst)
{
    server->answer("ColumnsForTable", {{"id", "int", nullptr, 10, 0, 0, 1},
                                       {"id", "bigint", nullptr, 19, 0, 1, 0},
                                       {"ID", "int", nullptr, 10, 0, 0, 0}});
    const Ptr columns = section("Columns");
    load(columns);
    EXPECT_EQ(names(columns), list({"id", "ID"}));
    EXPECT_EQ(detailsOf(columns).first(), QStringLiteral("PK, int, not null"));
}

TEST_F(TableSection, OnlyOneMarksAPrimaryKey)
{
    server->answer("ColumnsForTable", {{"id", "int", nullptr, 10, 0, 2, 2}});
    const Ptr columns = section("Columns");
    load(columns);
    EXPECT_EQ(detailsOf(columns), list({"int, null"}));
    EXPECT_EQ(imagesOf(columns), list({"DatabaseTree-Column"}));
}

TEST_F(TableSection, RemovingAColumnThatIsNotThereIsAProgrammingError)
{
    server->answer("ColumnsForTable",
                   {{"id", "int", nullptr, 10, 0, 0, 1}, {"b", "int", nullptr, 1, 0, 0, 0}});
    const Ptr columns = section("Columns");
    load(columns);
    columns->removeChild(columns->childEntries()->front());
    EXPECT_EQ(names(columns), list({"b"}));
    try {
        columns->removeChild(columns);
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Column does not exist in parent."));
        EXPECT_EQ(failure.sourcePath(),
                  QStringLiteral("UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntrySectionTableColumns"));
    }
}

TEST_F(TableSection, AColumnCanBeDropped)
{
    server->answer("ColumnsForTable", {{"id", "int", nullptr, 10, 0, 0, 1}});
    const Ptr columns = section("Columns");
    load(columns);
    EXPECT_EQ(titles(columns->menu()), list({"Refresh"}));
    const Ptr id = columns->childEntries()->front();
    const KNMenu menu = id->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Root"));
    EXPECT_EQ(titles(menu), list({"Drop column"}));
    EXPECT_EQ(item(menu, list({"Drop column"})).action, QStringLiteral("confirmDropColumn:"));
    EXPECT_EQ(TreeTesting::entry(item(menu, list({"Drop column"}))), id);
}

TEST_F(TableSection, KeysAreLeavesOfTwoKinds)
{
    server->answer("List_KeysForTable", {{"PK_Orders", 1}, {"FK_Orders", 0}, {"UQ_Orders", 2}});
    const Ptr keys = section("Keys");
    EXPECT_TRUE(load(keys));
    EXPECT_EQ(names(keys), list({"PK_Orders", "FK_Orders", "UQ_Orders"}));
    EXPECT_EQ(imagesOf(keys), list({"DatabaseTree-PK", "DatabaseTree-Column", "DatabaseTree-Column"}));
    EXPECT_EQ(titles(keys->menu()), list({"Refresh"}));
    EXPECT_TRUE(keys->childEntries()->front()->menu().items.empty());
    EXPECT_TRUE(delegate->eventsOf(*keys)[1].onMainThread);
}

TEST_F(TableSection, IndexesCanBeDroppedAndThoseWithoutANameAreNotShown)
{
    server->answer("List_IndexesForTable", {{"IX_a"}, {nullptr}, {"IX_b"}});
    const Ptr indexes = section("Indexes");
    EXPECT_TRUE(load(indexes));
    EXPECT_EQ(names(indexes), list({"IX_a", "IX_b"}));
    const auto index =
        std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryTableIndex>(indexes->childEntries()->front());
    EXPECT_EQ(index->indexName(), QStringLiteral("IX_a"));
    EXPECT_EQ(index->schema(), QStringLiteral("dbo"));
    EXPECT_EQ(index->tableName(), QStringLiteral("Orders"));
    EXPECT_EQ(index->dragDropString(), QStringLiteral("IX_a"));
    EXPECT_EQ(index->image(), QStringLiteral("DatabaseTree-Index"));
    const KNMenuItem drop = item(index->menu(), list({"Drop index"}));
    EXPECT_EQ(drop.action, QStringLiteral("confirmDropIndex:"));
    EXPECT_EQ(TreeTesting::entry(drop), index);
    EXPECT_EQ(server->count("List_IndexesForView"), 0);
}

TEST_F(TableSection, TheIndexesOfAViewHaveTheirOwnQuery)
{
    server->answer("List_IndexesForView", {{"IX_v"}});
    const Ptr indexes = section("Indexes", "vw", true);
    load(indexes);
    EXPECT_EQ(names(indexes), list({"IX_v"}));
    EXPECT_EQ(server->count("List_IndexesForTable"), 0);
}

TEST_F(TableSection, TriggersCarryTheirScripts)
{
    server->answer("List_TriggersForTableWithDetails",
                   {{"trg", "AFTER", "INSERT", " \r\nCREATE TRIGGER trg ON Orders\r\n-- CREATE\r\n", 1}});
    const Ptr triggers = section("Triggers");
    EXPECT_TRUE(load(triggers));
    EXPECT_EQ(names(triggers), list({"trg"}));
    EXPECT_FALSE(delegate->eventsOf(*triggers)[1].onMainThread);
    const auto trigger =
        std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryTableTrigger>(triggers->childEntries()->front());
    EXPECT_EQ(trigger->schema(), QStringLiteral("dbo"));
    EXPECT_EQ(trigger->image(), QStringLiteral("DatabaseTree-Trigger"));
    EXPECT_EQ(trigger->dragDropString(), QStringLiteral("trg"));
    const KNMenu menu = trigger->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Test"));
    EXPECT_EQ(titles(menu), list({"New query", "New trigger", "Modify", "Script as"}));
    EXPECT_EQ(titles(*item(menu, list({"Script as"})).submenu),
              list({"CREATE to", "ALTER to", "DROP to", "DROP and CREATE to"}));
    EXPECT_EQ(scriptText(menu, "CREATE to"), QStringLiteral("CREATE TRIGGER trg ON Orders\r\n-- CREATE"));
    EXPECT_EQ(scriptText(menu, "ALTER to"), QStringLiteral("ALTER TRIGGER trg ON Orders\r\n-- CREATE"));
    EXPECT_EQ(scriptText(menu, "DROP to"), QStringLiteral("DROP TRIGGER trg\r\nGO"));
    EXPECT_EQ(
        scriptText(menu, "DROP and CREATE to"),
        QStringLiteral("DROP TRIGGER trg\r\nGO\r\n\r\nCREATE TRIGGER trg ON Orders\r\n-- CREATE\r\nGO"));
    EXPECT_EQ(item(menu, list({"Modify"})).action, QStringLiteral("addQueryTabWithQueryLoader:"));
    EXPECT_EQ(loaderText(item(menu, list({"Modify"}))), trigger->alterTriggerSQL());
}

TEST_F(TableSection, TriggersKeepTheirStoredText)
{
    server->answer(
        "List_TriggersForTableWithDetails",
        {{"trg", "AFTER", "INSERT", "create trigger dbo.old on Orders after insert as select 1", 1}});
    const Ptr triggers = section("Triggers");
    EXPECT_TRUE(load(triggers));
    const auto trigger =
        std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryTableTrigger>(triggers->childEntries()->front());
    EXPECT_EQ(trigger->alterTriggerSQL(),
              QStringLiteral("ALTER trigger dbo.old on Orders after insert as select 1"));
}

TEST_F(TableSection, ReportsUnreadableTriggerDefinition)
{
    server->answer("List_TriggersForTableWithDetails", {{"trg", "AFTER", "INSERT", nullptr, 1}});
    const Ptr triggers = section("Triggers");
    load(triggers);
    const auto trigger =
        std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryTableTrigger>(triggers->childEntries()->front());
    EXPECT_EQ(trigger->triggerSQL(), QStringLiteral("-- Failed to load trigger SQL for dbo.Orders.trg."));
    EXPECT_EQ(trigger->alterTriggerSQL(), trigger->triggerSQL());
    EXPECT_EQ(trigger->dropTriggerSQL(), QStringLiteral("DROP TRIGGER trg\r\nGO"));
}

TEST_F(TableSection, TheFirstCreateOfATriggerIsReplacedInAnyCase)
{
    MSSQLDatabaseTreeEntryTableTrigger trigger(QStringLiteral("dbo"), QStringLiteral("trg"));
    trigger.setTriggerSQL(QStringLiteral("create trigger trg ON t AS CREATE TABLE #x (y int)"));
    EXPECT_EQ(trigger.alterTriggerSQL(), QStringLiteral("ALTER trigger trg ON t AS CREATE TABLE #x (y int)"));
}

TEST_F(TableSection, ATriggerNeedsItsNameBeforeItsText)
{
    MSSQLDatabaseTreeEntryTableTrigger trigger(QStringLiteral("dbo"), QString());
    try {
        trigger.setTriggerSQL(QStringLiteral("CREATE"));
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Trigger name must be set before the SQL can be set."));
    }
}

TEST_F(TableSection, TriggersHaveAMenuWithATemplate)
{
    const KNMenu menu = section("Triggers")->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Root"));
    EXPECT_EQ(titles(menu), list({"New query", "New trigger", "Refresh"}));
    EXPECT_EQ(item(menu, list({"New trigger"})).action, QStringLiteral("addQueryTab:"));
    EXPECT_EQ(text(item(menu, list({"New trigger"}))), MSSQLTreeCatalog::text(*tree, "NewTrigger"));
}

TEST_F(TableSection, NamesStandInTheQueriesAsTheyAreButForApostrophes)
{
    const char *const table = "O'Reilly [x] \"y\" / 📦";
    const QString inLiteral = QString::fromUtf8("O''Reilly [x] \"y\" / 📦");
    load(section("Columns", table));
    load(section("Keys", table));
    load(section("Indexes", table));
    load(section("Triggers", table));
    EXPECT_TRUE(server->texts("ColumnsForTable").first().contains(QStringLiteral("N'%1'").arg(inLiteral)));
    EXPECT_TRUE(server->texts("ColumnsForTable").first().contains(QStringLiteral("N'dbo'")));
    const QString path = QStringLiteral("QUOTENAME(N'dbo') + N'.' + QUOTENAME(N'%1')").arg(inLiteral);
    EXPECT_TRUE(server->texts("List_KeysForTable").first().contains(path));
    EXPECT_TRUE(server->texts("List_IndexesForTable").first().contains(path));
    const QString triggers = server->texts("List_TriggersForTableWithDetails").first();
    EXPECT_TRUE(triggers.contains(QStringLiteral("N'%1'").arg(inLiteral)));
    EXPECT_TRUE(triggers.contains(QStringLiteral("N'dbo'")));
}

TEST_F(TableSection, FailuresAreLoggedUnderTheirDomainsAndShown)
{
    const struct
    {
        const char *section;
        const char *title;
        const char *domain;
    } cases[] = {
        {"Columns", "ColumnsForTable", "loadColumns"},
        {"Keys", "List_KeysForTable", "loadTableKeys"},
        {"Indexes", "List_IndexesForTable", "loadIndexes"},
        {"Triggers", "List_TriggersForTableWithDetails", "loadTriggers"},
    };
    for (const auto &expected : cases) {
        server->fail(expected.title, Failure);
        const Ptr failing = section(expected.section);
        load(failing);
        EXPECT_EQ(names(failing), list({"No."})) << expected.section;
        const QString record = QStringLiteral("Error mssqsql.databaseTree.%1 911: No.")
                                   .arg(QString::fromLatin1(expected.domain));
        EXPECT_EQ(timesLogged(record.toUtf8().constData()), 1);
        server->answer(expected.title, {});
        load(failing, true);
        EXPECT_EQ(names(failing), QStringList()) << expected.section;
    }
}

TEST_F(TableSection, ColumnsAndIndexesAreAskedForAgainOnALostConnectionKeysAndTriggersAreNot)
{
    const struct
    {
        const char *section;
        const char *title;
        int attempts;
    } cases[] = {
        {"Columns", "ColumnsForTable", 2},
        {"Keys", "List_KeysForTable", 1},
        {"Indexes", "List_IndexesForTable", 2},
        {"Triggers", "List_TriggersForTableWithDetails", 1},
    };
    for (const auto &expected : cases) {
        server->loseConnection(expected.title);
        const Ptr losing = section(expected.section);
        load(losing);
        EXPECT_EQ(server->count(expected.title), expected.attempts) << expected.section;
        EXPECT_EQ(names(losing), expected.attempts == 2 ? QStringList() : list({"The connection was lost."}));
    }
}
