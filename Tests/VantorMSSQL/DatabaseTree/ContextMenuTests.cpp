#include "UI/DatabaseTree/MSSQLTreePreferences.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

/// Switches a preference on while a test runs.
class Preference
{
public:
    explicit Preference(const char *key)
        : m_key(QString::fromLatin1(key))
    {
        KNUserDefaults::standardUserDefaults()->setObject(m_key, true);
    }
    ~Preference() { KNUserDefaults::standardUserDefaults()->removeObject(m_key); }

private:
    const QString m_key;
};

class ContextMenu : public TreeTest
{
protected:
    ContextMenu()
    {
        server->answer("DatabaseTree_ListTables", {{100, "dbo", "Orders"}, {200, "dbo", "my table"}});
        server->answer("General_FindDefaultUserSchema", {{"dbo"}});
        server->answer("List_KeysForTable", {{"PK_Orders", 1}, {"FK a", 0}});
        server->answer("List_StoredProceduresInDatabase_NonSystem", {{"hr", "Raise all"}});
    }
};

} // namespace

TEST_F(ContextMenu, OfATableEndsWithItsNameAndProperties)
{
    const KNMenu menu = entry({"shop", "Tables", "my table"})->contextMenu();
    EXPECT_EQ(titles(menu).mid(titles(menu).size() - 4), list({"Refresh", "-", "Copy name", "Properties"}));
    EXPECT_EQ(text(item(menu, list({"Copy name"}))), QStringLiteral("[my table]"));
    EXPECT_EQ(titles(*item(menu, list({"Script as"})).submenu),
              list({"CREATE to", "DROP to", "DROP and CREATE to", "SELECT to", "INSERT to", "UPDATE to"}));
}

TEST_F(ContextMenu, OfAKeyHasItsScriptNameAndProperties)
{
    const Ptr key = entry({"shop", "Tables", "my table", "Keys", "FK a"});
    const KNMenu menu = key->contextMenu();
    EXPECT_EQ(titles(menu), list({"Rename key", "Script as", "-", "Copy name", "Properties"}));
    EXPECT_EQ(text(item(menu, list({"Copy name"}))), QStringLiteral("[FK a]"));
    EXPECT_TRUE(key->propertiesLoader());
}

TEST_F(ContextMenu, OfAProcedureOffersItsExecution)
{
    const Ptr procedure = entry({"shop", "Programmability", "Stored Procedures", "hr.Raise all"});
    const KNMenu menu = procedure->contextMenu();
    EXPECT_EQ(titles(*item(menu, list({"Script as"})).submenu).last(), QStringLiteral("EXECUTE to"));
    EXPECT_EQ(text(item(menu, list({"Copy name"}))), QStringLiteral("hr.[Raise all]"));
}

TEST_F(ContextMenu, OfAnEntryWithoutNameHasNothingMore)
{
    const Ptr section = entry({"shop", "Programmability"});
    EXPECT_EQ(titles(section->contextMenu()), titles(section->menu()));
}

TEST_F(ContextMenu, PropertiesAreTheColumnsThatAreNotNull)
{
    server->answer("Properties_Object", {{"Orders", nullptr, 1234567}});
    KNError error;
    const KNObjectProperties properties = entry({"shop", "Tables", "Orders"})->propertiesLoader()(&error);
    EXPECT_FALSE(error);
    ASSERT_EQ(properties.size(), 2);
    EXPECT_EQ(properties[0].value, QStringLiteral("Orders"));
    EXPECT_EQ(properties[1].value, QLocale().toString(1234567));
}

TEST_F(ContextMenu, PropertiesOfARefusedQueryAreAnError)
{
    server->fail("Properties_Object", Failure);
    KNError error;
    EXPECT_TRUE(entry({"shop", "Tables", "Orders"})->propertiesLoader()(&error).isEmpty());
    EXPECT_EQ(error.localizedDescription(), Failure.localizedDescription());
}

TEST_F(ContextMenu, TheTreeShowsNoRowCountsSystemDatabasesOrSecurityByDefault)
{
    EXPECT_EQ(entry({"shop", "Tables", "Orders"})->details(), QString());
    EXPECT_EQ(names(tree), list({"Sales", "shop"}));
    const Ptr shop = entry({"shop"});
    load(shop);
    EXPECT_EQ(names(shop), list({"Tables", "Views", "Programmability"}));
}

TEST_F(ContextMenu, RowCountsAreDetailsOfTheirTables)
{
    const Preference preference(MSSQLTreePreferences::ShowRowCounts);
    server->answer("List_TableRowCounts", {{200, 1}, {100, 12345}});
    const Ptr tables = entry({"shop", "Tables"});
    load(tables);
    EXPECT_EQ(find(tables, list({"Orders"}))->details(), QLocale().toString(12345) + QStringLiteral(" rows"));
    EXPECT_EQ(find(tables, list({"my table"}))->details(), QStringLiteral("1 row"));
}

TEST_F(ContextMenu, RefusedRowCountsLeaveTheTables)
{
    const Preference preference(MSSQLTreePreferences::ShowRowCounts);
    server->fail("List_TableRowCounts", Failure);
    const Ptr tables = entry({"shop", "Tables"});
    load(tables);
    EXPECT_EQ(names(tables), list({"Orders", "my table"}));
}

TEST_F(ContextMenu, SystemDatabasesAreTogetherBelowTheOthers)
{
    const Preference preference(MSSQLTreePreferences::ShowSystemDatabases);
    const Ptr folder = entry({"System Databases"});
    EXPECT_EQ(names(tree), list({"Sales", "shop", "System Databases"}));
    EXPECT_TRUE(folder->isDimmed());
    load(folder);
    EXPECT_EQ(names(folder), list({"master", "model", "msdb", "tempdb"}));
    const Ptr master = find(folder, list({"master"}));
    EXPECT_EQ(master->parent(), folder);
    EXPECT_EQ(master->databaseConnectionDetails()->database(), QStringLiteral("master"));
}

TEST_F(ContextMenu, SecurityListsPrincipalsByTheirKind)
{
    const Preference preference(MSSQLTreePreferences::ShowSecurity);
    server->answer("List_ServerPrincipals",
                   {{"sa", "SQL_LOGIN", 0}, {"old", "SQL_LOGIN", 1}, {"sysadmin", "SERVER_ROLE", 0}});
    server->answer("List_DatabasePrincipals", {{"dbo", "SQL_USER", 0}, {"db_owner", "DATABASE_ROLE", 0}});
    const Ptr logins = entry({"Security", "Logins"});
    load(logins);
    EXPECT_EQ(names(logins), list({"sa", "old"}));
    EXPECT_EQ(find(logins, list({"old"}))->details(), QStringLiteral("sql login, disabled"));
    const Ptr roles = entry({"shop", "Security", "Roles"});
    load(roles);
    EXPECT_EQ(names(roles), list({"db_owner"}));
}
