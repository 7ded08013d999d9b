#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Scripts/MSSQLScriptAlterFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptAlterStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptAlterViewQueryLoader.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptDropFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropViewQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"
#include "Scripts/MSSQLScriptTablesAsMySQLQueryLoader.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

class ScriptMenus : public TreeTest
{
protected:
    ScriptMenus()
    {
        server->answer("DatabaseTree_ListTables", {{1, "dbo", "Order Details"}});
        server->answer("List_ViewsInDatabase_NonSystem", {{1, "hr", "vw"}});
        server->answer("List_StoredProceduresInDatabase_NonSystem", {{"dbo", "p"}});
        server->answer("List_FunctionsByTypeInDatabase_NonSystem", {{"dbo", "fn"}});
        server->answer("List_UserTypesByTypeInDatabase_NonSystem", {{"dbo", "Ids"}});
    }

    /// The loader of an item, which must be of this kind; for a script the same one in all its destinations.
    template <typename Loader>
    std::shared_ptr<Loader> loader(const KNMenuItem &menuItem)
    {
        const KNMenuItem &carrier = menuItem.submenu ? menuItem.submenu->items.front() : menuItem;
        if (menuItem.submenu) {
            for (const KNMenuItem &destination : menuItem.submenu->items)
                EXPECT_EQ(destination.representedObject, carrier.representedObject);
        }
        const auto found = std::dynamic_pointer_cast<Loader>(
            std::get<std::shared_ptr<KNQueryLoader>>(carrier.representedObject));
        EXPECT_NE(found, nullptr) << menuItem.title.toStdString();
        return found;
    }
    template <typename Loader>
    std::shared_ptr<Loader> script(const KNMenu &menu, const char *title)
    {
        return loader<Loader>(item(menu, list({"Script as", title})));
    }
};

} // namespace

TEST_F(ScriptMenus, OfATable)
{
    const KNMenu menu = entry({"shop", "Tables", "Order Details"})->menu();
    const auto create = script<MSSQLScriptCreateTableQueryLoader>(menu, "CREATE to");
    EXPECT_EQ(create->tableName(), QStringLiteral("Order Details"));
    EXPECT_EQ(create->targetSchema(), QStringLiteral("dbo"));
    const auto drop = script<MSSQLScriptDropViewQueryLoader>(menu, "DROP to"); // that of views, indeed
    EXPECT_EQ(drop->targetViewName(), QStringLiteral("Order Details"));
    EXPECT_EQ(drop->targetSchema(), QStringLiteral("dbo"));
    script<MSSQLScriptDropAndCreateTableQueryLoader>(menu, "DROP and CREATE to");
    loader<MSSQLScriptTableAsMySQLQueryLoader>(item(menu, list({"Export", "MySQL"})));
    loader<MSSQLScriptTablesAsMySQLQueryLoader>(
        item(entry({"shop", "Tables"})->menu(), list({"Export", "MySQL"})));
}

TEST_F(ScriptMenus, OfAView)
{
    const KNMenu menu = entry({"shop", "Views", "hr.vw"})->menu();
    const auto alter = loader<MSSQLScriptAlterViewQueryLoader>(item(menu, list({"Alter view"})));
    EXPECT_EQ(alter->targetView(), QStringLiteral("vw"));
    script<MSSQLScriptCreateViewQueryLoader>(menu, "CREATE to");
    script<MSSQLScriptDropViewQueryLoader>(menu, "DROP to");
    script<MSSQLScriptDropAndCreateViewQueryLoader>(menu, "DROP and CREATE to");
}

TEST_F(ScriptMenus, AppendTriggersAndPropertiesOfAView)
{
    server->answer("List_ViewTriggerStatements",
                   {{"OBJECT", "hr", "vw", "OBJECT_ID(N'[hr].[tr]') IS NULL", "CREATE TRIGGER hr.tr",
                     "TRIGGER", "SET ANSI_NULLS ON\r\nGO\r\n"}});
    server->answer("List_ExtendedPropertyStatements",
                   {{"OBJECT", "hr", "vw", nullptr, "EXEC sp_addextendedproperty N'a'", nullptr, nullptr}});
    const MSSQLScriptSubject view{QStringLiteral("VIEW"), QStringLiteral("hr"), QStringLiteral("vw"),
                                  server->settings()};
    const QString create = QStringLiteral("CREATE VIEW hr.vw AS SELECT 1 AS a");
    const QString additions =
        QStringLiteral("SET ANSI_NULLS ON\r\nGO\r\nCREATE TRIGGER hr.tr\r\nGO\r\nEXEC sp_addextendedproperty "
                       "N'a'\r\nGO\r\n");
    for (const char *const end : {"", "\r\nGO", "\r\nGO\r\n"}) {
        QString script = create + QLatin1String(end);
        KNQueryReport report;
        view.complete(&script, &report);
        EXPECT_EQ(script, create + QLatin1String("\r\nGO\r\n") + additions);
        EXPECT_FALSE(report.failure);
    }
    EXPECT_TRUE(server->texts("List_ExtendedPropertyStatements")
                    .first()
                    .contains(QStringLiteral("q.schema_name = N'hr' AND q.object_name = N'vw'")));
    server->fail("List_ExtendedPropertyStatements",
                 KNError(QStringLiteral("SQLClient"), 229, QStringLiteral("No.")));
    QString script = create;
    KNQueryReport report;
    view.complete(&script, &report);
    EXPECT_EQ(report.failure.code(), 229);
    EXPECT_TRUE(script.endsWith(QStringLiteral("CREATE TRIGGER hr.tr\r\nGO\r\n")));
}

TEST_F(ScriptMenus, OfAStoredProcedure)
{
    const KNMenu menu = entry({"shop", "Programmability", "Stored Procedures", "dbo.p"})->menu();
    loader<MSSQLScriptAlterStoredProcedureQueryLoader>(item(menu, list({"Modify"})));
    const auto create = script<MSSQLScriptCreateStoredProcedureQueryLoader>(menu, "CREATE to");
    EXPECT_EQ(create->targetStoredProcedure(), QStringLiteral("p"));
    script<MSSQLScriptAlterStoredProcedureQueryLoader>(menu, "ALTER to");
    script<MSSQLScriptDropStoredProcedureQueryLoader>(menu, "DROP to");
    script<MSSQLScriptDropAndCreateStoredProcedureQueryLoader>(menu, "DROP and CREATE to");
}

TEST_F(ScriptMenus, OfAFunction)
{
    const KNMenu menu =
        entry({"shop", "Programmability", "Functions", "Scalar-valued Functions", "dbo.fn"})->menu();
    loader<MSSQLScriptAlterFunctionQueryLoader>(item(menu, list({"Modify"})));
    const auto create = script<MSSQLScriptCreateFunctionQueryLoader>(menu, "CREATE to");
    EXPECT_EQ(create->targetFunction(), QStringLiteral("dbo.fn"));
    script<MSSQLScriptAlterFunctionQueryLoader>(menu, "ALTER to");
    script<MSSQLScriptDropFunctionQueryLoader>(menu, "DROP to");
    script<MSSQLScriptDropAndCreateFunctionQueryLoader>(menu, "DROP and CREATE to");
}

TEST_F(ScriptMenus, OfAType)
{
    const KNMenu menu =
        entry({"shop", "Programmability", "Types", "User-Defined Table Types", "dbo.Ids"})->menu();
    const auto create = script<MSSQLScriptCreateTypeQueryLoader>(menu, "CREATE to");
    EXPECT_EQ(create->targetType(), QStringLiteral("Ids"));
    EXPECT_EQ(create->targetQueryLoaderType(), 1);
    script<MSSQLScriptDropTypeQueryLoader>(menu, "DROP to");
    script<MSSQLScriptDropAndCreateTypeQueryLoader>(menu, "DROP and CREATE to");
}

TEST_F(ScriptMenus, AreEnabledWithScriptReceiver)
{
    const auto helper = std::make_shared<KNDatabaseTreeContextHelper>();
    helper->addAction(QStringLiteral("addQueryTabWithQueryLoader:"), [](const KNMenuRepresentedObject &) {});
    const Ptr table = entry({"shop", "Tables", "Order Details"});
    EXPECT_FALSE(item(table->menu(), list({"Script as"})).isEnabled());
    tree->setContextHelper(helper);
    EXPECT_TRUE(item(table->menu(), list({"Script as"})).isEnabled());
    EXPECT_TRUE(item(table->menu(), list({"Export"})).isEnabled());
    EXPECT_FALSE(item(table->menu(), list({"Drop table"})).isEnabled());
}
