#include "Foundation/KNAssert.h"
#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntryFunction.h"
#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntrySectionFunctionsSection.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"
#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntryProgrammabilityType.h"
#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntrySectionTypeSection.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

class Programmability : public TreeTest
{
protected:
    Ptr section(std::initializer_list<const char *> path)
    {
        return entry(list({"shop", "Programmability"}) + list(path));
    }
};

/// Answers with the rows of the filter that stands in the query; all of them without one.
FakeCatalog::Server::Answer filtered(const char *filter, const FakeCatalog::Rows &with,
                                     const FakeCatalog::Rows &without)
{
    return [=](const QString &sql, KNError *) {
        return sql.contains(QString::fromLatin1(filter)) ? with : without;
    };
}

void expectNoChild(const Ptr &section, const char *message)
{
    try {
        section->removeChild(section);
        ADD_FAILURE();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QString::fromLatin1(message));
    }
}

} // namespace

TEST_F(Programmability, HasThreeChildrenWithoutAsking)
{
    const Ptr node = section({});
    const auto queries = server->titles();
    EXPECT_FALSE(load(node));
    EXPECT_EQ(names(node), list({"Stored Procedures", "Functions", "Types"}));
    EXPECT_EQ(server->titles(), queries);
    EXPECT_EQ(node->menu().title, QStringLiteral("Test"));
    EXPECT_EQ(titles(node->menu()), list({"New query"}));
}

TEST_F(Programmability, FunctionsAndTypesShowTwoKindsEach)
{
    const Ptr functions = section({"Functions"});
    EXPECT_FALSE(load(functions));
    EXPECT_EQ(names(functions), list({"Table-valued Functions", "Scalar-valued Functions"}));
    const Ptr types = section({"Types"});
    EXPECT_FALSE(load(types));
    EXPECT_EQ(names(types), list({"User-Defined Data Types", "User-Defined Table Types"}));
}

TEST_F(Programmability, KindsHaveTheirNames)
{
    const auto function = [](int kind) {
        return MSSQLDatabaseTreeEntrySectionFunctionsSection(kind).displayName();
    };
    EXPECT_EQ(function(2), QStringLiteral("Aggregate Functions"));
    EXPECT_EQ(function(3), QStringLiteral("Functions"));
    EXPECT_EQ(function(-1), QStringLiteral("Functions"));
    const auto type = [](int kind) { return MSSQLDatabaseTreeEntrySectionTypeSection(kind).displayName(); };
    EXPECT_EQ(type(2), QStringLiteral("User-Defined Types"));
    EXPECT_EQ(type(3), QStringLiteral("User-Defined Data Types"));
}

TEST_F(Programmability, ProceduresAlwaysShowTheirSchema)
{
    server->answer("List_StoredProceduresInDatabase_NonSystem", {{"dbo", "p"}, {"sales", "q"}});
    const Ptr procedures = section({"Stored Procedures"});
    EXPECT_TRUE(load(procedures));
    EXPECT_EQ(names(procedures), list({"dbo.p", "sales.q"}));
    EXPECT_FALSE(delegate->eventsOf(*procedures)[1].onMainThread);
    expectNoChild(procedures, "Procedure does not exist in parent.");
    EXPECT_EQ(titles(procedures->menu()), list({"New Stored Procedure", "New query", "Refresh"}));
    procedures->removeChild(procedures->childEntries()->front());
    EXPECT_EQ(names(procedures), list({"sales.q"}));
}

TEST_F(Programmability, AProcedureExpandsIntoItsParameters)
{
    server->answer("List_StoredProceduresInDatabase_NonSystem", {{"dbo", "it's"}});
    server->answer("List_ParametersForStoredProcedure",
                   {{"@id", "int", 1, 0}, {"@name", "nvarchar(50)", 2, 1}});
    const Ptr procedure = section({"Stored Procedures", "dbo.it's"});
    EXPECT_TRUE(procedure->canHaveChildren());
    EXPECT_TRUE(load(procedure));
    EXPECT_EQ(names(procedure), list({"@id", "@name"}));
    EXPECT_EQ(procedure->childEntries()->at(1)->details(), QStringLiteral("nvarchar(50)"));
    EXPECT_EQ(procedure->childEntries()->at(1)->image(),
              QStringLiteral("DatabaseTree-StoredProcedureParameter"));
    const QString sql = server->texts("List_ParametersForStoredProcedure").first();
    EXPECT_TRUE(sql.contains(QStringLiteral("N'dbo'")));
    EXPECT_TRUE(sql.contains(QStringLiteral("N'it''s'")));
    expectNoChild(procedure, "Procedure does not exist in parent.");
}

TEST_F(Programmability, AProcedureHasItsMenu)
{
    server->answer("List_StoredProceduresInDatabase_NonSystem", {{"dbo", "my proc"}});
    const Ptr procedure = section({"Stored Procedures", "dbo.my proc"});
    const KNMenu menu = procedure->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Test"));
    EXPECT_EQ(titles(menu), list({"New Stored Procedure", "Modify", "Execute stored procedure", "New query",
                                  "Script as", "Drop procedure"}));
    EXPECT_EQ(item(menu, list({"New Stored Procedure"})).action, QStringLiteral("addQueryTab:"));
    EXPECT_EQ(text(item(menu, list({"New Stored Procedure"}))),
              MSSQLTreeCatalog::text(*tree, "NewStoredProcedure"));
    EXPECT_EQ(item(menu, list({"Modify"})).action, QStringLiteral("addQueryTabWithQueryLoader:"));
    EXPECT_EQ(item(menu, list({"Execute stored procedure"})).action,
              QStringLiteral("executeStoredProcedure:"));
    EXPECT_EQ(text(item(menu, list({"Execute stored procedure"}))), QStringLiteral("dbo.[my proc]"));
    EXPECT_EQ(item(menu, list({"Drop procedure"})).action, QStringLiteral("confirmDropProcedure:"));
    EXPECT_EQ(TreeTesting::entry(item(menu, list({"Drop procedure"}))), procedure);
    EXPECT_EQ(titles(*item(menu, list({"Script as"})).submenu),
              list({"CREATE to", "ALTER to", "DROP to", "DROP and CREATE to"}));
}

TEST_F(Programmability, FunctionsAreListedByTheFilterOfTheirKind)
{
    server->answer(QStringLiteral("List_FunctionsByTypeInDatabase_NonSystem"),
                   filtered("AND DATA_TYPE = 'TABLE'", {{"dbo", "tvf"}}, {{"dbo", "scalar"}}));
    const Ptr functions = section({"Functions"});
    const Ptr tableValued = find(functions, list({"Table-valued Functions"}));
    const Ptr scalarValued = find(functions, list({"Scalar-valued Functions"}));
    EXPECT_TRUE(load(tableValued));
    EXPECT_TRUE(load(scalarValued));
    EXPECT_EQ(names(tableValued), list({"dbo.tvf"}));
    EXPECT_EQ(names(scalarValued), list({"dbo.scalar"}));
    EXPECT_TRUE(server->texts("List_FunctionsByTypeInDatabase_NonSystem")
                    .last()
                    .contains(QStringLiteral("AND DATA_TYPE != 'TABLE'")));
    expectNoChild(functions, "Function does not exist in parent.");
    expectNoChild(tableValued, "Function does not exist in parent.");
}

TEST_F(Programmability, FunctionsHaveTheirMenus)
{
    server->answer("List_FunctionsByTypeInDatabase_NonSystem", {{"dbo", "fn"}});
    const Ptr functions = section({"Functions"});
    const Ptr kind = find(functions, list({"Table-valued Functions"}));
    for (const Ptr &node : {functions, kind}) {
        EXPECT_EQ(node->menu().title, QStringLiteral("Root"));
        EXPECT_EQ(titles(node->menu()), list({"New Function", "Refresh"}));
        EXPECT_EQ(text(item(node->menu(), list({"New Function"}))),
                  MSSQLTreeCatalog::text(*tree, "NewFunction"));
    }
    const Ptr function = find(kind, list({"dbo.fn"}));
    EXPECT_FALSE(function->canHaveChildren());
    EXPECT_EQ(function->image(), QStringLiteral("DatabaseTree-Function"));
    const KNMenu menu = function->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Test"));
    EXPECT_EQ(titles(menu), list({"New function", "Modify", "New query", "Script as", "Drop function"}));
    EXPECT_EQ(item(menu, list({"Drop function"})).action, QStringLiteral("confirmDropFunction:"));
    EXPECT_EQ(TreeTesting::entry(item(menu, list({"Drop function"}))), function);
    EXPECT_EQ(titles(*item(menu, list({"Script as"})).submenu),
              list({"CREATE to", "ALTER to", "DROP to", "DROP and CREATE to"}));
}

TEST_F(Programmability, TypesAreListedByTheFilterOfTheirKind)
{
    server->answer(QStringLiteral("List_UserTypesByTypeInDatabase_NonSystem"),
                   filtered("AND is_table_type = 1", {{"dbo", "Ids"}}, {{"dbo", "Phone"}}));
    const Ptr types = section({"Types"});
    const Ptr tableTypes = find(types, list({"User-Defined Table Types"}));
    EXPECT_TRUE(load(tableTypes));
    EXPECT_EQ(names(tableTypes), list({"dbo.Ids"}));
    const Ptr phone = find(types, list({"User-Defined Data Types", "dbo.Phone"}));
    expectNoChild(tableTypes, "Type does not exist in parent.");
    EXPECT_EQ(phone->image(), QStringLiteral("DatabaseTree-UserType"));
    EXPECT_EQ(titles(types->menu()), list({"New Function", "Refresh"})); // offers a function indeed
    EXPECT_EQ(titles(tableTypes->menu()), list({"Refresh"}));
    EXPECT_EQ(phone->menu().title, QStringLiteral("Menu"));
    EXPECT_EQ(titles(phone->menu()), list({"Script as"}));
    EXPECT_EQ(titles(*item(phone->menu(), list({"Script as"})).submenu),
              list({"CREATE to", "DROP to", "DROP and CREATE to"}));
}

TEST_F(Programmability, FailuresAreLoggedUnderTheirDomainsAndShown)
{
    server->answer("List_StoredProceduresInDatabase_NonSystem", {{"dbo", "p"}});
    server->fail("List_ParametersForStoredProcedure", Failure);
    server->fail("List_FunctionsByTypeInDatabase_NonSystem", Failure);
    server->fail("List_UserTypesByTypeInDatabase_NonSystem", Failure);
    const auto expectFailure = [&](const Ptr &node, const char *record) {
        load(node);
        EXPECT_EQ(names(node), list({"No."})) << record;
        EXPECT_TRUE(wasLogged(record)) << record;
    };
    const Ptr procedures = section({"Stored Procedures"});
    expectFailure(find(procedures, list({"dbo.p"})), "mssqsql.databaseTree.loadParameterProcedures 911");
    expectFailure(section({"Functions", "Table-valued Functions"}), "mssqsql.databaseTree.loadFunctions 911");
    expectFailure(section({"Types", "User-Defined Data Types"}), "mssqsql.databaseTree.loadTypes 911");
    server->fail("List_StoredProceduresInDatabase_NonSystem", Failure);
    expectFailure(section({"Stored Procedures"}), "mssqsql.databaseTree.loadProcedures 911");
}
