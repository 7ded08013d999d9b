#include "Scripts/MSSQLScriptDeleteDataFromTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropColumnInTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropIndexQueryLoader.h"
#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropViewQueryLoader.h"
#include "VantorMSSQL/Scripts/ScriptTest.h"

using namespace ScriptTest;

namespace {

/// The text of a loader that asks no server: it comes at once, on the caller's thread.
template <typename Loader, typename... Arguments>
QString textAtOnce(const Arguments &...arguments)
{
    FakeDatabase::Server server;
    const auto loader = std::make_shared<Loader>(arguments...);
    const auto receiver = std::make_shared<Receiver>();
    loader->setDelegate(receiver);
    loader->beginLoadingQuery(FakeDatabase::Settings(server));
    EXPECT_EQ(receiver->texts().size(), 1);
    EXPECT_FALSE(receiver->cameOnAnotherThread());
    EXPECT_EQ(server.logins, 0);
    return receiver->texts().value(0);
}

QString name(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QString deletion(const QStringList &columns, const QList<QList<KNValue>> &rows)
{
    return textAtOnce<MSSQLScriptDeleteDataFromTableQueryLoader>(
        QStringList{name("sales"), name("Order Lines")}, columns, rows);
}

} // namespace

TEST(DropScript, BracketsTheNamesThatNeedIt)
{
    EXPECT_EQ(textAtOnce<MSSQLScriptDropTableQueryLoader>(name("Orders"), name("dbo")),
              name("DROP TABLE dbo.Orders"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropTableQueryLoader>(name("Order Lines"), name("my sales")),
              name("DROP TABLE [my sales].[Order Lines]"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropViewQueryLoader>(name("a view"), name("dbo")),
              name("DROP VIEW dbo.[a view]"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropStoredProcedureQueryLoader>(name("do it"), name("dbo")),
              name("DROP PROCEDURE dbo.[do it]"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropIndexQueryLoader>(name("IX one"), name("a table"), name("dbo")),
              name("DROP INDEX dbo.[a table].[IX one]"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropColumnInTableQueryLoader>(name("a column"), name("t"), name("s")),
              name("ALTER TABLE s.t DROP COLUMN [a column]"));
}

TEST(DropScript, NamesFunctionsAndTypesAsTheyAre)
{
    EXPECT_EQ(textAtOnce<MSSQLScriptDropFunctionQueryLoader>(name("my function"), name("my schema")),
              name("DROP FUNCTION my schema.my function"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropTypeQueryLoader>(name("Phone Number"), name("dbo"), 1),
              name("DROP TYPE dbo.Phone Number\r\nGO"));
}

TEST(DropScript, LeavesOutASchemaThatIsNotThereForProceduresOnly)
{
    EXPECT_EQ(textAtOnce<MSSQLScriptDropStoredProcedureQueryLoader>(name("p"), name("")),
              name("DROP PROCEDURE p"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropViewQueryLoader>(name("v"), name("")), name("DROP VIEW .v"));
}

TEST(DeleteScript, DeletesOneRowWithEveryStatement)
{
    EXPECT_EQ(
        deletion({name("Id"), name("the name")}, {{KNValue(1), text("O'Brien")}, {KNValue(2), KNValue()}}),
        name("DELETE TOP (1) FROM sales.[Order Lines] WHERE Id = 1 AND [the name] = 'O''Brien';\r\n"
             "DELETE TOP (1) FROM sales.[Order Lines] WHERE Id = 2 AND [the name] = NULL;"));
}

TEST(DeleteScript, NamesNothingButTheTableAndItsColumns)
{
    const auto of = [](const QStringList &path) {
        return textAtOnce<MSSQLScriptDeleteDataFromTableQueryLoader>(
            path, QStringList{name("a] = 1; DROP TABLE v; --")}, QList<QList<KNValue>>{{KNValue(1)}});
    };
    const QString condition = name(" WHERE [a]] = 1; DROP TABLE v; --] = 1;");
    EXPECT_EQ(of({name("dbo"), name("a.b")}), name("DELETE TOP (1) FROM dbo.[a.b]") + condition);
    EXPECT_EQ(of({name("dbo"), name("a]b")}), name("DELETE TOP (1) FROM dbo.[a]]b]") + condition);
    EXPECT_EQ(of({name("dbo.Order Lines")}), name("DELETE TOP (1) FROM dbo.[Order Lines]") + condition);
    EXPECT_EQ(of({name("t; DROP TABLE v")}), name("DELETE TOP (1) FROM [t; DROP TABLE v]") + condition);
}

TEST(DeleteScript, RendersBytesAsHexadecimal)
{
    EXPECT_EQ(deletion({name("b")}, {{KNValue(QByteArray("\x00\xff", 2))}}),
              name("DELETE TOP (1) FROM sales.[Order Lines] WHERE b = 0x00ff;"));
}

TEST(DeleteScript, WithoutRowsIsEmpty)
{
    EXPECT_EQ(deletion({name("Id")}, {}), name(""));
}

TEST(DeleteScript, WithoutColumnsHasNoCondition)
{
    EXPECT_EQ(deletion({}, {{}}), name("DELETE TOP (1) FROM sales.[Order Lines] WHERE ;"));
}
