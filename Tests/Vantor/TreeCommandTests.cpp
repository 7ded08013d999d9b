#include "Support/HostileServerRelay.h"
#include "Support/LoginCounter.h"
#include "Vantor/Program.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

QString serverAt(quint16 port)
{
    return QStringLiteral("127.0.0.1,%1").arg(port);
}

/// Runs a command on a server that listens on this port.
Outcome runAt(quint16 port, const char *command, std::initializer_list<const char *> arguments)
{
    QStringList texts{QString::fromUtf8(command), QStringLiteral("--server"), serverAt(port),
                      QStringLiteral("--user"), QStringLiteral("sa")};
    for (const char *argument : arguments)
        texts.append(QString::fromUtf8(argument));
    return Program(texts).wait();
}

Outcome run(const SampleServerFixture &server, const char *command,
            std::initializer_list<const char *> arguments)
{
    return runAt(server.port(), command, arguments);
}

Outcome tree(std::initializer_list<const char *> arguments)
{
    return run(SampleServerFixture::shared(), "tree", arguments);
}

Outcome menu(std::initializer_list<const char *> arguments)
{
    return run(SampleServerFixture::shared(), "menu", arguments);
}

Outcome script(std::initializer_list<const char *> arguments)
{
    return run(SampleServerFixture::shared(), "script", arguments);
}

/// Runs statements on the shared server, of whose tables nobody else knows.
void execute(const char *sql)
{
    EXPECT_EQ(run(SampleServerFixture::shared(), "query", {"--database", "shop", sql}).status, 0);
}

/// The lines of a text with their indentation taken off.
QStringList lines(const QByteArray &output)
{
    QStringList texts;
    for (const QString &line : QString::fromUtf8(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        texts.append(line.trimmed());
    return texts;
}

} // namespace

// VANTOR_RENEW_GOLDEN=1 makes the test write the file anew instead of comparing with it.
TEST(TreeCommand, PrintsTheWholeSampleServerAsInTheGoldenFile)
{
    const Outcome outcome =
        Program({QStringLiteral("tree"), QStringLiteral("--sample"), QStringLiteral("--depth"),
                 QStringLiteral("5"), QStringLiteral("--details")})
            .wait();
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    QString printed = QString::fromUtf8(outcome.output);
    printed.replace(QRegularExpression(QStringLiteral("^127\\.0\\.0\\.1,\\d+")),
                    QStringLiteral("127.0.0.1,PORT"));
    QFile file(QStringLiteral(GOLDEN_FOLDER "/sample-tree.txt"));
    if (qEnvironmentVariableIsSet("VANTOR_RENEW_GOLDEN")) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(printed.toUtf8());
        return;
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(printed, QString::fromUtf8(file.readAll()));
}

TEST(TreeCommand, PrintsOneLevelBelowItsPath)
{
    const Outcome outcome = tree({"shop"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, QByteArray("shop\n  Tables\n  Views\n  Programmability\n"));
    EXPECT_EQ(tree({"--depth", "0", "shop/Tables"}).output, QByteArray("Tables\n"));
}

TEST(TreeCommand, ANameIsFoundByItsPathHoweverOddItIs)
{
    execute("CREATE TABLE [tree/odd \\ 'name' [x]] \"y\" 📦] (id int)");
    const Outcome list = tree({"shop/Tables"});
    const QByteArray escaped = "tree\\/odd \\\\ 'name' [x] \"y\" 📦";
    ASSERT_TRUE(list.output.contains("\n  " + escaped + '\n')) << list.output.toStdString();
    const Outcome columns =
        tree({QByteArray("shop/Tables/" + escaped + "/Columns").constData(), "--details"});
    EXPECT_EQ(columns.output, QByteArray("Columns\n  id  int, null\n"));
    execute("DROP TABLE [tree/odd \\ 'name' [x]] \"y\" 📦]");
}

TEST(TreeCommand, WritesJson)
{
    const Outcome outcome = tree({"--json", "--details", "--depth", "2", "shop/Tables/Customers"});
    EXPECT_EQ(outcome.status, 0);
    const QJsonObject customers = QJsonDocument::fromJson(outcome.output).object();
    EXPECT_EQ(customers[QStringLiteral("name")].toString(), QStringLiteral("Customers"));
    EXPECT_EQ(customers[QStringLiteral("image")].toString(), QStringLiteral("DatabaseTree-Table"));
    EXPECT_TRUE(customers[QStringLiteral("canHaveChildren")].toBool());
    const QJsonArray sections = customers[QStringLiteral("children")].toArray();
    ASSERT_EQ(sections.size(), 4);
    const QJsonObject column = sections[0].toObject()[QStringLiteral("children")].toArray()[0].toObject();
    EXPECT_EQ(column[QStringLiteral("name")].toString(), QStringLiteral("CustomerId"));
    EXPECT_EQ(column[QStringLiteral("details")].toString(), QStringLiteral("PK, int, not null"));
    EXPECT_FALSE(column.contains(QStringLiteral("children")));
}

TEST(TreeCommand, SearchesInEveryDatabase)
{
    execute("CREATE TABLE TreeSearched (id int)");
    EXPECT_EQ(lines(tree({"--search", "treesearch"}).output).mid(1),
              (QStringList{QStringLiteral("shop"), QStringLiteral("TreeSearched")}));
    EXPECT_EQ(lines(tree({"--search", "treesearch", "--depth", "1", "shop/TreeSearched"}).output).size(), 5);
    execute("DROP TABLE TreeSearched");
    const Outcome nothing = tree({"--search", "no such thing"});
    EXPECT_EQ(nothing.status, 0);
    EXPECT_EQ(nothing.output, QByteArray());
    EXPECT_EQ(nothing.errors, QByteArray("Nothing was found.\n"));
}

TEST(TreeCommand, SqlServer2000IsShownButNotSearched)
{
    const SampleServerFixture server(
        {.arguments = {"--version-banner", "Microsoft SQL Server  2000 - 8.00.2039 (Intel X86)"}});
    EXPECT_TRUE(run(server, "tree", {"shop/Tables"}).output.contains("  Customers\n"));
    const Outcome search = run(server, "tree", {"--search", "x"});
    EXPECT_EQ(search.status, 1);
    EXPECT_EQ(search.errors, QByteArray("Search is not supported for SQL Server 2000.\n"));
}

TEST(TreeCommand, APathThatLeadsNowhereIsAUsageError)
{
    const Outcome outcome = tree({"shop/Tables/a\\/b"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, QByteArray("There is no \"a\\/b\" in \"Tables\".\n"));
    EXPECT_EQ(tree({"shop\\x"}).status, 2);
    EXPECT_EQ(tree({"shop", "Tables"}).status, 2);
    EXPECT_EQ(tree({"--depth", "x"}).status, 2);
    EXPECT_EQ(Program({QStringLiteral("tree")}).wait().status, 2);
}

TEST(TreeCommand, ReportsUnreachableServer)
{
    quint16 port = 0;
    {
        const SampleServerFixture gone;
        port = gone.port();
    }
    const Outcome outcome = Program({QStringLiteral("tree"), QStringLiteral("--server"), serverAt(port),
                                     QStringLiteral("--user"), QStringLiteral("sa")})
                                .wait();
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, QByteArray());
    EXPECT_FALSE(outcome.errors.isEmpty());
}

TEST(TreeCommand, HelpListsOptions)
{
    const Outcome outcome = Program({QStringLiteral("tree"), QStringLiteral("--help")}).wait();
    EXPECT_EQ(outcome.status, 0);
    for (const char *option : {"--depth", "--details", "--search", "--json", "--sample", "PATH"})
        EXPECT_TRUE(outcome.output.contains(option)) << option;
}

TEST(MenuCommand, PrintsActionsAndTheirObjects)
{
    const Outcome outcome = menu({"shop/Tables/Customers"});
    EXPECT_EQ(outcome.status, 0);
    const QStringList items = lines(outcome.output);
    EXPECT_EQ(items.first(), QStringLiteral("Root"));
    EXPECT_TRUE(items.contains(QStringLiteral("Alter table  alterTable:  entry Customers  (disabled)")));
    EXPECT_TRUE(items.contains(QStringLiteral(
        "Select top 100 rows  executeQueryTab:  text \"SELECT TOP 100 * FROM dbo.Customers;\"  (disabled)")));
    EXPECT_TRUE(
        items.contains(QStringLiteral("New query tab  addQueryTabWithQueryLoader:  script  (disabled)")));
}

TEST(MenuCommand, PrintsWhatEveryNamedObjectHas)
{
    const Outcome outcome = menu({"shop/Tables/Customers/Keys/PK_Customers"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.endsWith("  ---\n  Copy name  copyName:  text \"PK_Customers\"  (disabled)\n"
                                        "  Properties  showProperties:  entry PK_Customers  (disabled)\n"));
    EXPECT_TRUE(menu({}).output.startsWith("Root\n  New query  newQuery:"));
}

TEST(ScriptCommand, ListsTheScriptsOfAnObject)
{
    const Outcome outcome = script({"shop/Tables/Orders"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_EQ(outcome.output,
              "CREATE to\nDROP to\nDROP and CREATE to\nSELECT to\nINSERT to\nUPDATE to\nMySQL\n");
    const Outcome nothing = script({"shop/Tables/Orders/Keys"});
    EXPECT_EQ(nothing.status, 0);
    EXPECT_EQ(nothing.output, "");
}

TEST(ScriptCommand, PrintsTheScriptWithThisTitle)
{
    EXPECT_TRUE(script({"shop/Tables/Orders", "drop TO"}).output.endsWith("\r\nDROP VIEW dbo.Orders\n"));
    const Outcome create = script({"shop/Tables/Order Details, \"quoted\"", "CREATE to"});
    EXPECT_EQ(create.status, 0) << create.errors.toStdString();
    EXPECT_TRUE(create.output.contains("CREATE TABLE [dbo].[Order Details, \"quoted\"] (\r\n"))
        << create.output.toStdString();
    const Outcome modify =
        script({"shop/Programmability/Functions/Scalar-valued Functions/sales.OrderTotal", "Modify"});
    EXPECT_TRUE(modify.output.contains("ALTER FUNCTION sales.OrderTotal")) << modify.output.toStdString();
}

TEST(ScriptCommand, AppendsExtendedPropertiesToTheCreationOfAnObject)
{
    const char *const property = "\r\nGO\r\nEXEC sp_addextendedproperty N'MS_Description', N'Two letters', "
                                 "N'SCHEMA', N'dbo', N'TABLE', N'Customers', N'COLUMN', N'Country'\r\nGO\r\n";
    for (const char *const title : {"CREATE to", "DROP and CREATE to"}) {
        const QByteArray output = script({"shop/Tables/Customers", title}).output;
        EXPECT_TRUE(output.contains(property)) << output.toStdString();
        EXPECT_GT(output.indexOf(property), output.indexOf("CREATE TABLE [dbo].[Customers]"));
    }
    EXPECT_FALSE(script({"shop/Tables/Orders", "CREATE to"}).output.contains("sp_addextendedproperty"));
}

TEST(ScriptCommand, ATitleThatIsNotThereEndsWithStatus2AndTheTitles)
{
    const Outcome outcome = script({"shop/Tables/Orders", "ALTER to"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.errors.contains("There is no script \"ALTER to\". There are:\nCREATE to\n"))
        << outcome.errors.toStdString();
    EXPECT_EQ(script({"shop/Tables/Nothing", "CREATE to"}).status, 2);
    EXPECT_EQ(script({"shop", "CREATE to", "more"}).status, 2);
}

TEST(ScriptCommand, PrintsNoticeAboutAnotherObject)
{
    const Outcome outcome = script({"shop/Tables/sales.Invoices", "DROP to"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "-- The statement below is DROP VIEW, but the script was asked for the table "
                              "sales.Invoices.\r\nDROP VIEW sales.Invoices\n");
    const Outcome anew =
        script({"shop/Programmability/Stored Procedures/sales.PlaceOrder", "DROP and CREATE to"});
    EXPECT_EQ(anew.status, 0);
    EXPECT_TRUE(anew.output.startsWith("-- The statement DROP PROCEDURE names no schema: "))
        << anew.output.toStdString();
}

TEST(ScriptCommand, NeverDropsObjectItCannotCreate)
{
    const Outcome outcome =
        script({"shop/Programmability/Stored Procedures/dbo.SecretProcedure", "DROP and CREATE to"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.contains("-- This script is incomplete: "));
    EXPECT_TRUE(outcome.output.contains("\n-- DROP PROCEDURE SecretProcedure\r\n-- GO\r\n"))
        << outcome.output.toStdString();
    EXPECT_FALSE(outcome.output.contains("\nDROP")) << outcome.output.toStdString();
    EXPECT_FALSE(outcome.errors.isEmpty());
}

TEST(TreeCommand, ASearchThatTheServerRefusesIsNoSearchWithoutResults)
{
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    relay.replaceInBatches(u"FROM @entry AS e", u"FROM @entrY9AS e");
    const Outcome outcome = runAt(relay.port(), "tree", {"--search", "Orders"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_FALSE(outcome.errors.contains("Nothing was found.")) << outcome.errors.toStdString();
    EXPECT_FALSE(outcome.errors.isEmpty());
}

TEST(ScriptCommand, AQueryThatTheServerRefusesEndsWithStatus1)
{
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    relay.replaceInBatches(u"-- Scripts one table", u"SELECT FROM nothing ");
    const Outcome outcome = runAt(relay.port(), "script", {"shop/Tables/Orders", "DROP and CREATE to"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.contains("\n-- DROP TABLE dbo.Orders\r\n")) << outcome.output.toStdString();
    EXPECT_FALSE(outcome.output.contains("\nDROP"));
    EXPECT_FALSE(outcome.errors.isEmpty());
}

TEST(CatalogCommand, ARefusedQueryIsAnErrorAndNoEmptyAnswer)
{
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    relay.replaceInBatches(u"FROM sys.objects AS k", u"FROM syz.objects AS k");
    const Outcome outcome = runAt(relay.port(), "catalog", {"--all", "--database", "shop"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.contains("List_KeysForTable                           ERROR "))
        << outcome.output.toStdString();
    EXPECT_TRUE(outcome.output.contains("List_IndexesForTable                        ok, "));
}

TEST(RefusedLogin, CostsATerminalCommandOneAttempt)
{
    for (const char *command : {"query", "tree", "catalog"}) {
        const LoginCounter server;
        QStringList arguments{QString::fromUtf8(command), QStringLiteral("--server"), serverAt(server.port()),
                              QStringLiteral("--user"), QStringLiteral("sa")};
        if (arguments[0] == QLatin1String("query"))
            arguments.append(QStringLiteral("SELECT 1"));
        if (arguments[0] == QLatin1String("catalog"))
            arguments.append(QStringLiteral("General_ListDatabases"));
        const Outcome outcome = Program(arguments).wait();
        EXPECT_EQ(outcome.status, 3) << command << outcome.errors.toStdString();
        EXPECT_TRUE(outcome.errors.contains("Login failed for user 'sa'.")) << outcome.errors.toStdString();
        EXPECT_EQ(server.logins(), 1) << command;
    }
}

TEST(Trace, IsWrittenToReportedPath)
{
    const Outcome outcome =
        run(SampleServerFixture::shared(), "query", {"--trace", "SELECT 'a-traced-text' AS a"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    QString path = QString::fromLocal8Bit(outcome.errors)
                       .section(QStringLiteral("is written to "), 1)
                       .section(u'\n', 0, 0);
    QFile file(path.remove(QRegularExpression(QStringLiteral("\\x1b\\[[0-9;]*m"))).trimmed());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << outcome.errors.toStdString();
    const QByteArray trace = file.readAll();
    EXPECT_TRUE(trace.contains("tdsdbopen")) << trace.left(500).toStdString();
    EXPECT_FALSE(trace.contains(SampleServerFixture::Password));
    file.remove();
}
