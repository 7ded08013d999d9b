#include "Scripts/MSSQLScriptDeleteDataFromTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropColumnInTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropIndexQueryLoader.h"
#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropViewQueryLoader.h"
#include "Support/TestText.h"
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

QString deletion(const QStringList &columns, const QList<QList<KNValue>> &rows)
{
    return textAtOnce<MSSQLScriptDeleteDataFromTableQueryLoader>(QStringList{q("sales"), q("Order Lines")},
                                                                 columns, rows);
}

} // namespace

TEST(DropScript, BracketsTheNamesThatNeedIt)
{
    EXPECT_EQ(textAtOnce<MSSQLScriptDropTableQueryLoader>(q("Orders"), q("dbo")), q("DROP TABLE dbo.Orders"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropTableQueryLoader>(q("Order Lines"), q("my sales")),
              q("DROP TABLE [my sales].[Order Lines]"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropViewQueryLoader>(q("a view"), q("dbo")), q("DROP VIEW dbo.[a view]"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropStoredProcedureQueryLoader>(q("do it"), q("dbo")),
              q("DROP PROCEDURE dbo.[do it]"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropIndexQueryLoader>(q("IX one"), q("a table"), q("dbo")),
              q("DROP INDEX dbo.[a table].[IX one]"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropColumnInTableQueryLoader>(q("a column"), q("t"), q("s")),
              q("ALTER TABLE s.t DROP COLUMN [a column]"));
}

TEST(DropScript, NamesFunctionsAndTypesAsTheyAre)
{
    EXPECT_EQ(textAtOnce<MSSQLScriptDropFunctionQueryLoader>(q("my function"), q("my schema")),
              q("DROP FUNCTION my schema.my function"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropTypeQueryLoader>(q("Phone Number"), q("dbo"), 1),
              q("DROP TYPE dbo.Phone Number\r\nGO"));
}

TEST(DropScript, LeavesOutASchemaThatIsNotThereForProceduresOnly)
{
    EXPECT_EQ(textAtOnce<MSSQLScriptDropStoredProcedureQueryLoader>(q("p"), q("")), q("DROP PROCEDURE p"));
    EXPECT_EQ(textAtOnce<MSSQLScriptDropViewQueryLoader>(q("v"), q("")), q("DROP VIEW .v"));
}

TEST(DeleteScript, DeletesOneRowWithEveryStatement)
{
    EXPECT_EQ(deletion({q("Id"), q("the name")}, {{KNValue(1), text("O'Brien")}, {KNValue(2), KNValue()}}),
              q("DELETE TOP (1) FROM sales.[Order Lines] WHERE Id = 1 AND [the name] = 'O''Brien';\r\n"
                "DELETE TOP (1) FROM sales.[Order Lines] WHERE Id = 2 AND [the name] = NULL;"));
}

TEST(DeleteScript, NamesNothingButTheTableAndItsColumns)
{
    const auto of = [](const QStringList &path) {
        return textAtOnce<MSSQLScriptDeleteDataFromTableQueryLoader>(
            path, QStringList{q("a] = 1; DROP TABLE v; --")}, QList<QList<KNValue>>{{KNValue(1)}});
    };
    const QString condition = q(" WHERE [a]] = 1; DROP TABLE v; --] = 1;");
    EXPECT_EQ(of({q("dbo"), q("a.b")}), q("DELETE TOP (1) FROM dbo.[a.b]") + condition);
    EXPECT_EQ(of({q("dbo"), q("a]b")}), q("DELETE TOP (1) FROM dbo.[a]]b]") + condition);
    EXPECT_EQ(of({q("dbo.Order Lines")}), q("DELETE TOP (1) FROM dbo.[Order Lines]") + condition);
    EXPECT_EQ(of({q("t; DROP TABLE v")}), q("DELETE TOP (1) FROM [t; DROP TABLE v]") + condition);
}

TEST(DeleteScript, RendersBytesAsHexadecimal)
{
    EXPECT_EQ(deletion({q("b")}, {{KNValue(QByteArray("\x00\xff", 2))}}),
              q("DELETE TOP (1) FROM sales.[Order Lines] WHERE b = 0x00ff;"));
}

TEST(DeleteScript, WithoutRowsIsEmpty)
{
    EXPECT_EQ(deletion({q("Id")}, {}), q(""));
}

TEST(DeleteScript, WithoutColumnsHasNoCondition)
{
    EXPECT_EQ(deletion({}, {{}}), q("DELETE TOP (1) FROM sales.[Order Lines] WHERE ;"));
}
