#include "Database/VantorDatabaseClient.h"
#include "Foundation/KNFormat.h"
#include "Import/KNImportFileAnalysis.h"
#include "Import/KNImportRun.h"
#include "Support/FullDisk.h"
#include "Support/HostileServerRelay.h"
#include "Support/TestText.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QFile>
#include <QTemporaryDir>

#include <sybdb.h>

#include <thread>

namespace ImportRunTests {

using namespace WireTest;

namespace {

/// Imports into tables of tempdb, in a session of the test's own.
class Importing : public testing::Test
{
protected:
    void createTable(const char *columns)
    {
        run(*client, KNFormat("USE tempdb CREATE TABLE #t (%@)", columns));
    }

    KNImportFile write(const QByteArray &content, const char *name = "a.csv")
    {
        QFile file(folder.filePath(q(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return {file.fileName()};
    }
    /// A plan that fills the columns of these types, in the order of the file.
    KNImportPlan plan(const KNImportFile &file, std::initializer_list<const char *> columnsAndTypes)
    {
        std::atomic<bool> cancelled = false;
        KNImportPlan result;
        result.file = file;
        result.fileColumns = KNImportFileAnalysis::read(file, 1, cancelled).columnNames();
        result.tablePath = QStringList{q("#t")};
        const QStringList words = [&] {
            QStringList list;
            for (const char *word : columnsAndTypes)
                list.append(q(word));
            return list;
        }();
        for (qsizetype i = 0; i + 1 < words.size(); i += 2)
            result.columns.append({{words[i], words[i + 1], true}, i / 2});
        return result;
    }
    KNImportOutcome import(const KNImportPlan &thePlan)
    {
        KNImportRun importRun(thePlan);
        return importRun.run(*client, *helper);
    }
    qint64 count() { return scalar(*client, q("SELECT COUNT(*) FROM #t")).toInt64(); }
    int transactions() { return static_cast<int>(scalar(*client, q("SELECT @@TRANCOUNT")).toInt64()); }
    static QByteArray numbers(int count)
    {
        QByteArray lines = "id\n";
        for (int i = 0; i < count; ++i)
            lines += QByteArray::number(i) + '\n';
        return lines;
    }

    std::unique_ptr<MSSQLClient> client = connectedClient();
    std::unique_ptr<KNDatabaseImportHelper> helper =
        client->databaseConnectionDetails().createDatabaseImportHelper();
    QTemporaryDir folder;
};

std::string textOf(const KNImportOutcome &outcome)
{
    return outcome.error.localizedDescription().toStdString();
}

} // namespace

TEST_F(Importing, WritesEveryTypeUnchanged)
{
    createTable(
        "n nvarchar(50), i int, b bigint, d decimal(38,20), m money, f float, t bit, "
        "dt datetime2(7), dy date, o datetimeoffset(7), g uniqueidentifier, x varbinary(10), e nvarchar(5)");
    const auto file =
        write("n,i,b,d,m,f,t,dt,dy,o,g,x,e\n"
              "\"Zoë 日本 😀 O'Brien\",-5,9223372036854775807,123456789012345678.12345678901234567890,"
              "\"$1,234.50\",0.1,true,2024-02-29 13:45:00.1234567,2024-02-29,2024-02-29T13:45:00+02:00,"
              "6f9619ff-8b86-d011-b42d-00c04fc964ff,0x00ff,\"\"\n"
              "b,6,1,5,1,1e300,0,0001-01-01,9999-12-31,2024-02-29T13:45:00Z,"
              "00000000-0000-0000-0000-000000000000,0x,\n");
    const auto outcome = import(plan(file, {"n",  "nvarchar(50)",
                                            "i",  "int",
                                            "b",  "bigint",
                                            "d",  "decimal(38,20)",
                                            "m",  "money",
                                            "f",  "float",
                                            "t",  "bit",
                                            "dt", "datetime2(7)",
                                            "dy", "date",
                                            "o",  "datetimeoffset(7)",
                                            "g",  "uniqueidentifier",
                                            "x",  "varbinary(10)",
                                            "e",  "nvarchar(5)"}));
    ASSERT_TRUE(outcome.succeeded()) << textOf(outcome);
    EXPECT_EQ(outcome.rows, 2U);
    const auto rows = run(*client, q("SELECT n, i, b, d, m, f, t, CONVERT(varchar(40), dt, 126), "
                                     "CONVERT(varchar(10), dy, 120), g, x, e FROM #t ORDER BY i"));
    ASSERT_FALSE(rows.isEmpty());
    const auto value = [&](qsizetype row, qsizetype column) { return rows.last()->rows().row(row)[column]; };
    EXPECT_EQ(value(0, 0).text(), q("Zoë 日本 😀 O'Brien"));
    EXPECT_EQ(value(0, 1).displayText(), q("-5"));
    EXPECT_EQ(value(0, 2).displayText(), q("9223372036854775807"));
    EXPECT_EQ(value(0, 3).displayText(), q("123456789012345678.12345678901234567890"));
    EXPECT_EQ(value(1, 3).displayText(), q("5.00000000000000000000"));
    EXPECT_EQ(value(0, 4).displayText(), q("1234.5000"));
    EXPECT_EQ(value(0, 5).toDouble(), 0.1);
    EXPECT_EQ(value(1, 5).toDouble(), 1e300);
    EXPECT_EQ(value(0, 6), KNValue(true));
    EXPECT_EQ(value(0, 7).text(), q("2024-02-29T13:45:00.1234567"));
    EXPECT_EQ(value(1, 7).text().left(10), q("0001-01-01"));
    EXPECT_EQ(value(0, 8).text(), q("2024-02-29"));
    EXPECT_EQ(value(0, 9).displayText(), q("6F9619FF-8B86-D011-B42D-00C04FC964FF"));
    EXPECT_EQ(value(0, 10).bytes(), QByteArray("\x00\xff", 2));
    EXPECT_EQ(value(0, 11), KNValue(QStringLiteral("")));
    EXPECT_TRUE(value(1, 11).isNull());
    EXPECT_EQ(transactions(), 0);
}

TEST_F(Importing, SendsOneStatementForEachRowToOldServers)
{
    const HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    const auto old = settings(relay.port());
    old->setTdsVersion(DBVERSION_72);
    old->setUseNTLMv2(false);
    client = connectedClient(old);
    createTable("id int");
    const auto outcome = import(plan(write(numbers(3)), {"id", "int"}));
    ASSERT_TRUE(outcome.succeeded()) << textOf(outcome);
    EXPECT_EQ(count(), 3);
    const QString expected = q("INSERT INTO [#t] (id) VALUES ('0');\r\nINSERT INTO [#t] (id) VALUES ('1');");
    EXPECT_NE(relay.saidByClient().find(std::string(reinterpret_cast<const char *>(expected.utf16()),
                                                    static_cast<std::size_t>(expected.size()) * 2)),
              std::string::npos);
}

TEST_F(Importing, UsesConstantsAndSkipsColumns)
{
    createTable("id int, source nvarchar(10), nothing int");
    auto thePlan = plan(write("id,ignored\n1,x\n2,y\n"), {"id", "int"});
    thePlan.columns.append({{q("source"), q("nvarchar(10)"), true}, -1, q("file")});
    thePlan.columns.append({{q("nothing"), q("int"), true}, -1, QString()});
    ASSERT_TRUE(import(thePlan).succeeded());
    EXPECT_EQ(
        scalar(*client, q("SELECT COUNT(*) FROM #t WHERE source = N'file' AND nothing IS NULL")).toInt64(),
        2);
    thePlan.columns.last().constant = q("x");
    EXPECT_EQ(textOf(import(thePlan)),
              "The value for column \"nothing\" cannot be used. This is not a number.");
    EXPECT_EQ(count(), 2);
}

TEST_F(Importing, StopsAtTheFirstFaultAndUndoesEverything)
{
    createTable("id int");
    run(*client, q("INSERT #t VALUES (-1)"));
    const auto outcome = import(plan(write(numbers(1200) + "x\n7\n"), {"id", "int"}));
    EXPECT_EQ(textOf(outcome), "Line 1202, column \"id\": This is not a number.\nNothing was imported.");
    ASSERT_EQ(outcome.faults.size(), 1);
    EXPECT_EQ(outcome.faults[0].value, q("x"));
    EXPECT_EQ(outcome.rows, 0U);
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(transactions(), 0);
}

TEST_F(Importing, UndoesEverythingWhenTheServerRefusesARow)
{
    createTable("id int PRIMARY KEY");
    const auto outcome = import(plan(write(numbers(1200) + "3\n"), {"id", "int"}));
    EXPECT_TRUE(outcome.error.localizedDescription().contains(q("2627"))) << textOf(outcome);
    EXPECT_EQ(count(), 0);
}

TEST_F(Importing, SkipsFaultyAndRefusedRowsIntoAFile)
{
    createTable("id int PRIMARY KEY, n nvarchar(3)");
    auto thePlan = plan(write("id,n\n1,a\n2,\"to\"\"o long\"\n1,dup\n3\n4,\xc3\xa9\n"),
                        {"id", "int", "n", "nvarchar(3)"});
    thePlan.faultFile = folder.filePath(q("faults.csv"));
    const auto outcome = import(thePlan);
    ASSERT_TRUE(outcome.succeeded()) << textOf(outcome);
    EXPECT_EQ(outcome.rows, 2U);
    EXPECT_EQ(outcome.faultCount, 3U);
    EXPECT_EQ(
        scalar(*client, q("SELECT COUNT(*) FROM #t WHERE (id = 1 AND n = N'a') OR (id = 4 AND n = N'é')"))
            .toInt64(),
        2);
    QFile file(thePlan.faultFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(text.startsWith(q("\"Line\",\"Column\",\"Reason\",\"id\",\"n\"\r\n")));
    EXPECT_TRUE(text.contains(
        q("\"3\",\"n\",\"The text has 9 characters, the column holds 3.\",\"2\",\"to\"\"o long\"\r\n")));
    EXPECT_TRUE(text.contains(q("\"5\",,\"The line has 1 values, but there are 2 columns.\",\"3\"\r\n")));
    EXPECT_TRUE(text.contains(q("2627")) && text.contains(q("\"1\",\"dup\"\r\n"))) << text.toStdString();
}

TEST_F(Importing, KeepsAnExistingFaultFile)
{
    createTable("id int");
    auto thePlan = plan(write(numbers(2)), {"id", "int"});
    thePlan.faultFile = write("mine", "mine.txt").path;
    EXPECT_TRUE(import(thePlan).error.localizedDescription().contains(q("exists already")));
    QFile file(thePlan.faultFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("mine"));
    EXPECT_EQ(count(), 0);
}

TEST_F(Importing, AFullDiskForFaultsIsAnError)
{
    createTable("id int");
    QByteArray lines = "id\n1\n";
    for (int i = 0; i < 3000; ++i)
        lines += "not a number\n";
    auto thePlan = plan(write(lines), {"id", "int"});
    thePlan.faultFile = folder.filePath(q("faults.csv"));
    KNImportOutcome outcome;
    {
        const FullDisk disk(64 * 1024);
        outcome = import(thePlan);
    }
    EXPECT_TRUE(outcome.error.localizedDescription().contains(q("cannot be written"))) << textOf(outcome);
    EXPECT_EQ(count(), 0);
}

TEST_F(Importing, TruncatesWithinTheTransaction)
{
    createTable("id int");
    run(*client, q("INSERT #t VALUES (-1)"));
    auto thePlan = plan(write("id\n1\nx\n"), {"id", "int"});
    thePlan.truncatesFirst = true;
    EXPECT_FALSE(import(thePlan).succeeded());
    EXPECT_EQ(scalar(*client, q("SELECT id FROM #t")), KNValue(-1));
    thePlan.file = write("id\n1\n2\n", "b.csv");
    EXPECT_TRUE(import(thePlan).succeeded());
    EXPECT_EQ(scalar(*client, q("SELECT MIN(id) FROM #t")), KNValue(1));
}

TEST_F(Importing, WritesIdentityColumns)
{
    createTable("id int IDENTITY, n int");
    auto thePlan = plan(write("id,n\n70,1\n80,2\n"), {"id", "int", "n", "int"});
    EXPECT_FALSE(import(thePlan).succeeded());
    thePlan.writesIdentity = true;
    const auto outcome = import(thePlan);
    EXPECT_TRUE(outcome.succeeded()) << textOf(outcome);
    EXPECT_EQ(scalar(*client, q("SELECT MAX(id) FROM #t")), KNValue(80));
    run(*client, q("INSERT #t (n) VALUES (3)")); // the option is off again
    EXPECT_EQ(count(), 3);
}

TEST_F(Importing, ADryRunReportsTheFirstFaultsOnly)
{
    QByteArray lines = "id\n";
    for (int i = 0; i < 1500; ++i)
        lines += "x\n5\n";
    KNImportRun dryRun(plan(write(lines), {"id", "int"}));
    const auto outcome = dryRun.dryRun(*helper);
    EXPECT_TRUE(outcome.succeeded()) << textOf(outcome);
    EXPECT_EQ(outcome.rows, 1500U);
    EXPECT_EQ(outcome.faultCount, 1500U);
    EXPECT_EQ(outcome.faults.size(), 1000);
    EXPECT_EQ(outcome.faults[1].line, 4U);
    EXPECT_EQ(outcome.faults[1].column, q("id"));
    EXPECT_EQ(outcome.faults[1].reason, q("This is not a number."));
}

TEST_F(Importing, CancelRollsBackWithinASecond)
{
    createTable("id int");
    run(*client, q("INSERT #t VALUES (-1)"));
    KNImportRun importRun(plan(write(numbers(200'000)), {"id", "int"}));
    std::atomic<bool> begun = false;
    std::chrono::steady_clock::time_point cancelled;
    std::thread canceller([&] {
        EXPECT_TRUE(waitFor([&] { return begun.load(); }));
        cancelled = std::chrono::steady_clock::now();
        importRun.cancel();
    });
    const auto outcome = importRun.run(
        *client, *helper, [&](const KNImportRun::Progress &progress) { begun = progress.rows > 2000; });
    const auto ended = std::chrono::steady_clock::now();
    canceller.join();
    EXPECT_TRUE(outcome.wasCancelled) << textOf(outcome);
    EXPECT_EQ(outcome.rows, 0U);
    EXPECT_LT(ended - cancelled, std::chrono::seconds(1));
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(transactions(), 0);
}

TEST_F(Importing, NothingRemainsWhenTheConnectionIsLostHalfWay)
{
    run(*client, q("USE tempdb CREATE TABLE dbo.Half (id int)"));
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::Close,
                             std::numeric_limits<std::uint64_t>::max());
    const auto relayed = connectedClient(settings(relay.port()));
    run(*relayed, q("USE tempdb"));
    auto thePlan = plan(write(numbers(20'000)), {"id", "int"});
    thePlan.tablePath = QStringList{q("dbo"), q("Half")};
    KNImportRun importRun(thePlan);
    bool isLost = false;
    const auto outcome = importRun.run(*relayed, *helper, [&](const KNImportRun::Progress &progress) {
        if (!isLost && progress.fraction >= 0.5) {
            isLost = true;
            relay.strikeAfter(relay.bytesFromServer() + 1);
        }
    });
    EXPECT_TRUE(isLost);
    EXPECT_TRUE(outcome.error) << "no error";
    EXPECT_FALSE(outcome.wasCancelled);
    EXPECT_EQ(outcome.rows, 0U);
    EXPECT_TRUE(waitFor([&] { return scalar(*client, q("SELECT COUNT(*) FROM dbo.Half")).toInt64() == 0; }));
    run(*client, q("DROP TABLE dbo.Half"));
}

TEST_F(Importing, RefusesCharactersThatTheColumnsCodePageDoesNotHave)
{
    run(*client, q("USE shop CREATE TABLE dbo.Narrow (id int NOT NULL DEFAULT 7, v varchar(9) NOT NULL, n "
                   "nvarchar(9))"));
    client->databaseConnectionDetails().setDatabase(q("shop"));
    helper = client->databaseConnectionDetails().createDatabaseImportHelper();
    QList<KNImportTableColumnModel> columns;
    const auto tables = helper->tablesForImportMapper();
    for (const KNImportTableModelPtr &table : tables) {
        if (table->name() == q("Narrow"))
            columns = table->columns();
    }
    ASSERT_EQ(columns.size(), 3);
    EXPECT_TRUE(columns[0].hasDefault);
    EXPECT_EQ(columns[1].codePage, 1252);
    EXPECT_EQ(columns[2].codePage, 0) << "Unicode";
    auto thePlan = plan(write("v,n\ncaf\xc3\xa9,\xd0\x96\n\xd0\x96,b\n"), {});
    thePlan.tablePath = QStringList{q("dbo"), q("Narrow")};
    thePlan.columns = {{columns[1], 0}, {columns[2], 1}};
    const auto dryOutcome = KNImportRun(thePlan).dryRun(*helper);
    ASSERT_EQ(dryOutcome.faultCount, 1U);
    EXPECT_EQ(dryOutcome.faults[0].line, 3U);
    EXPECT_EQ(dryOutcome.faults[0].column, q("v"));
    EXPECT_EQ(dryOutcome.faults[0].value, q("\xd0\x96"));
    EXPECT_EQ(dryOutcome.faults[0].reason,
              q("The column's code page 1252 does not have the character \"\xd0\x96\"."));
    const auto outcome = import(thePlan);
    EXPECT_TRUE(outcome.error.localizedDescription().startsWith(q("Line 3, column \"v\": ")))
        << textOf(outcome);
    EXPECT_EQ(scalar(*client, q("SELECT COUNT(*) FROM dbo.Narrow")).toInt64(), 0);
    thePlan.faultFile = folder.filePath(q("narrow.csv"));
    EXPECT_TRUE(import(thePlan).succeeded());
    EXPECT_EQ(scalar(*client, q("SELECT v + n FROM dbo.Narrow")).text(), q("caf\xc3\xa9\xd0\x96"));
    run(*client, q("DROP TABLE dbo.Narrow USE master"));
}

TEST_F(Importing, ChecksValuesOfUserTypesByTheirSystemTypes)
{
    run(*client, q("USE shop CREATE TYPE dbo.Amount FROM decimal(5,1)"));
    run(*client, q("CREATE TYPE dbo.[Day] FROM date"));
    run(*client, q("CREATE TABLE dbo.Aliased (a dbo.Amount, d dbo.[Day])"));
    client->databaseConnectionDetails().setDatabase(q("shop"));
    helper = client->databaseConnectionDetails().createDatabaseImportHelper();
    QList<KNImportTableColumnModel> columns;
    const auto tables = helper->tablesForImportMapper();
    for (const KNImportTableModelPtr &table : tables) {
        if (table->name() == q("Aliased"))
            columns = table->columns();
    }
    ASSERT_EQ(columns.size(), 2);
    EXPECT_EQ(columns[0].dataTypeDisplay, q("[dbo].[Amount]"));
    EXPECT_EQ(columns[0].baseType, q("decimal(5,1)"));
    auto thePlan = plan(write("a;d\n1,26;1.2.2024\n1,2;1.2.2024\n1,3;2024-02-01\n"), {});
    thePlan.file.separator = QLatin1Char(';');
    thePlan.fileColumns = QStringList{q("a"), q("d")};
    thePlan.values.decimalPoint = QLatin1Char(',');
    thePlan.values.dateFormat = q("d.M.yyyy");
    thePlan.tablePath = QStringList{q("dbo"), q("Aliased")};
    thePlan.columns = {{columns[0], 0}, {columns[1], 1}};
    const auto dryOutcome = KNImportRun(thePlan).dryRun(*helper);
    ASSERT_EQ(dryOutcome.faultCount, 2U);
    EXPECT_EQ(dryOutcome.faults[0].reason, q("The number has 2 decimals, the column keeps 1."));
    EXPECT_EQ(dryOutcome.faults[1].reason, q("This is not a date."));
    thePlan.faultFile = folder.filePath(q("aliased.csv"));
    EXPECT_TRUE(import(thePlan).succeeded());
    const auto rows = run(*client, q("SELECT a, CONVERT(varchar(10), d, 120) FROM dbo.Aliased"));
    ASSERT_EQ(rows.last()->rows().rowCount(), 1);
    EXPECT_EQ(rows.last()->rows().row(0)[0].displayText(), q("1.2"));
    EXPECT_EQ(rows.last()->rows().row(0)[1].text(), q("2024-02-01"));
    run(*client, q("DROP TABLE dbo.Aliased DROP TYPE dbo.Amount DROP TYPE dbo.[Day] USE master"));
}

TEST_F(Importing, SaysThatTheServerHasUndoneEverything)
{
    createTable("id int PRIMARY KEY");
    run(*client, q("SET XACT_ABORT ON"));
    auto thePlan = plan(write("id\n1\n2\n1\n3\n"), {"id", "int"});
    thePlan.faultFile = folder.filePath(q("undone.csv"));
    const auto outcome = import(thePlan);
    EXPECT_FALSE(outcome.succeeded());
    EXPECT_EQ(outcome.rows, 0U);
    EXPECT_TRUE(outcome.error.localizedDescription().contains(q("2627"))) << textOf(outcome);
    EXPECT_TRUE(outcome.error.localizedDescription().endsWith(
        q("After this error the server has undone the whole import.")))
        << textOf(outcome);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(transactions(), 0);
    EXPECT_FALSE(QFile::exists(thePlan.faultFile));
}

TEST_F(Importing, SaysThatTheOutcomeIsNotKnownWhenTheConnectionIsLostInTheCommit)
{
    SampleServerFixture server;
    HostileServerRelay relay(server.port(), HostileServerRelay::Fault::None, 0);
    const QByteArray commit(reinterpret_cast<const char *>(u"COMMIT"), 12);
    relay.changeClient([&](std::span<std::uint8_t> bytes) {
        const auto said = QByteArray::fromRawData(reinterpret_cast<const char *>(bytes.data()),
                                                  static_cast<qsizetype>(bytes.size()));
        if (said.contains(commit))
            server.kill();
    });
    const auto relayed = connectedClient(settings(relay.port()));
    run(*relayed, q("USE tempdb CREATE TABLE #t (id int)"));
    const auto thePlan = plan(write(numbers(10)), {"id", "int"});
    KNImportRun importRun(thePlan);
    const auto outcome = importRun.run(*relayed, *helper);
    EXPECT_FALSE(outcome.succeeded());
    EXPECT_TRUE(outcome.error.localizedDescription().endsWith(
        q("The connection was lost during the commit: look whether the rows are there.")))
        << textOf(outcome);
}

TEST_F(Importing, ReportsRowsWithKeysThatTheAnalysisDidNotFind)
{
    createTable("a int");
    const auto outcome = import(plan(write("{\"a\":1}\n{\"a\":2,\"b\":3}\n", "a.jsonl"), {"a", "int"}));
    EXPECT_TRUE(outcome.error.localizedDescription().startsWith(
        q("Line 2: The row has values that the analysis of the file did not find.")))
        << textOf(outcome);
    EXPECT_EQ(count(), 0);
}

} // namespace ImportRunTests
