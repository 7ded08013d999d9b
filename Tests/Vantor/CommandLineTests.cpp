#include "Support/HostileServer.h"
#include "Support/HostileServerBytes.h"
#include "Support/TestCertificates.h"
#include "Vantor/Program.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace {

QString server()
{
    return QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port());
}

Outcome query(const QStringList &arguments, const QByteArray &input = {},
              const char *password = SampleServerFixture::Password)
{
    return Program(QStringList{QStringLiteral("query"), QStringLiteral("--server"), server(),
                               QStringLiteral("--user"), QStringLiteral("sa")} +
                       arguments,
                   input, password)
        .wait();
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(CommandLine, RemovesThePasswordFromItsEnvironmentAndThatOfItsChildren)
{
    const char *const password = "a-password-of-the-environment";
    const Program program(
        {QStringLiteral("query"), QStringLiteral("--sample"), QStringLiteral("WAITFOR DELAY '00:01:00'")}, {},
        password);
    const QString process = QStringLiteral("/proc/%1").arg(program.processId());
    QByteArray child;
    const auto isServerRunning = [&] {
        child = contentOf(process + QStringLiteral("/task/%1/children").arg(program.processId())).trimmed();
        return !child.isEmpty() &&
               contentOf(QStringLiteral("/proc/%1/cmdline").arg(QString::fromLatin1(child)))
                   .contains("vantor-sample-server");
    };
    for (int tries = 0; tries < 300 && !isServerRunning(); ++tries)
        usleep(50'000);
    ASSERT_TRUE(isServerRunning());
    const QByteArray ofServer = contentOf(QStringLiteral("/proc/%1/environ").arg(QString::fromLatin1(child)));
    EXPECT_TRUE(ofServer.contains("PATH="));
    EXPECT_FALSE(ofServer.contains("VANTOR_PASSWORD"));
    EXPECT_FALSE(ofServer.contains(password));
    const QByteArray ofProgram = contentOf(process + QStringLiteral("/environ"));
    EXPECT_TRUE(ofProgram.contains("PATH="));
    EXPECT_FALSE(ofProgram.contains(password));
    kill(program.processId(), SIGKILL);
    waitpid(program.processId(), nullptr, 0);
}

TEST(CommandLine, IsNeitherDelayedNorDisturbedByALogThatIsAFifo)
{
    const QTemporaryDir folder;
    const QString logs = folder.filePath(QStringLiteral("vantor/logs"));
    ASSERT_TRUE(QDir().mkpath(logs));
    ASSERT_EQ(mkfifo(QFile::encodeName(logs + QStringLiteral("/vantor.log")).constData(), 0600), 0);
    const QByteArray before = qgetenv("XDG_STATE_HOME");
    qputenv("XDG_STATE_HOME", QFile::encodeName(folder.path()));
    Program program({QStringLiteral("query"), QStringLiteral("--server"), server(), QStringLiteral("--user"),
                     QStringLiteral("sa"), QStringLiteral("--format"), QStringLiteral("csv"),
                     QStringLiteral("SELECT 1 AS a")});
    qputenv("XDG_STATE_HOME", before);
    const bool hasEnded = program.endsWithin(30'000);
    EXPECT_TRUE(hasEnded);
    if (!hasEnded)
        kill(program.processId(), SIGKILL);
    const Outcome outcome = program.wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, QByteArray("a\n1\n"));
    EXPECT_EQ(outcome.errors, QByteArray());
}

TEST(CommandLine, RunsAQueryAndShowsItsRows)
{
    const Outcome outcome = query({QStringLiteral("SELECT 1 AS id, N'naïve' AS name")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, QByteArray("id  name\n--  -----\n 1  naïve\n\n"));
    EXPECT_EQ(outcome.errors, QByteArray("Command completed successfully. (1 result).\n"));
}

TEST(CommandLine, PrintsOneSummaryForStatementsWithoutResults)
{
    EXPECT_EQ(query({QStringLiteral("SET NOCOUNT ON\nSET NOCOUNT OFF\nGO\nSET NOCOUNT OFF")}).errors,
              QByteArray("Command completed successfully.\n"));
    EXPECT_EQ(query({QStringLiteral("SET NOCOUNT OFF\nSELECT 1 AS a\nSET NOCOUNT OFF")}).errors,
              QByteArray("Command completed successfully. (1 result).\n"));
    EXPECT_FALSE(query({QStringLiteral("SET NOCOUNT OFF\nSELECT nope FROM shop.dbo.Customers")})
                     .errors.contains("completed successfully"));
}

TEST(CommandLine, ReadsTheTextFromStandardInput)
{
    EXPECT_EQ(
        query({QStringLiteral("--format"), QStringLiteral("csv")}, "SELECT 1 AS a\nSELECT NULL AS b").output,
        QByteArray("a\n1\n\nb\nNULL\n"));
}

TEST(CommandLine, SendsMessagesAndErrorsToStandardError)
{
    const Outcome outcome = query({QStringLiteral("--format"), QStringLiteral("csv"),
                                   QStringLiteral("PRINT 'hello'\nSELECT 1 AS a\nRAISERROR('careful', 10, "
                                                  "2)\nSELECT nope FROM shop.dbo.Customers")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, QByteArray("a\n1\n"));
    EXPECT_TRUE(outcome.errors.contains("hello\n")) << outcome.errors.toStdString();
    EXPECT_TRUE(outcome.errors.contains("careful\n"));
    EXPECT_TRUE(outcome.errors.contains("Msg 207, Level 16, State 1, Line 4\nInvalid column name 'nope'.\n"))
        << outcome.errors.toStdString();
    EXPECT_FALSE(outcome.errors.contains('\033'));
}

TEST(CommandLine, SyntaxErrorShowsLine)
{
    const Outcome outcome = query({QStringLiteral("SELECT 1\nFROM FROM")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errors.contains("Msg 156, Level 15, State 1, Line 2\n") ||
                outcome.errors.contains("Msg 102, Level 15, State 1, Line 2\n"))
        << outcome.errors.toStdString();
}

TEST(CommandLine, RunsTheBatchesOfAScript)
{
    const Outcome outcome = query({QStringLiteral("--format"), QStringLiteral("csv")},
                                  "CREATE TABLE #n (n int)\nGO\nINSERT #n VALUES (1)\nGO 3\n"
                                  "SELECT COUNT(*) AS rows FROM #n -- no GO\ngo\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output.trimmed().split('\n').last().trimmed(), "3");
}

TEST(CommandLine, AWrongNameInTheThirdBatchIsMarkedInTheWholeFile)
{
    const Outcome outcome = query(
        {}, "SELECT 1\nGO\nSELECT 2\nGO\n\n  SELECT 1,\n\tnope FROM shop.dbo.Customers\nGO\nSELECT 3\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errors.contains("Line 6")) << outcome.errors.toStdString();
    EXPECT_TRUE(outcome.errors.contains("7: nope FROM shop.dbo.Customers\n   ^^^^\n"))
        << outcome.errors.toStdString();
}

TEST(CommandLine, PrintsTheBatchesOfAFileAsJson)
{
    const Outcome outcome =
        Program({QStringLiteral("split"), QStringLiteral("-")}, "SELECT 'a\"'\nGO 2\n\nSELECT 2\n").wait();
    EXPECT_EQ(outcome.status, 0);
    const QJsonArray batches = QJsonDocument::fromJson(outcome.output).array();
    ASSERT_EQ(batches.size(), 2) << outcome.output.toStdString();
    EXPECT_EQ(batches[0].toObject(),
              (QJsonObject{{QStringLiteral("targetQuery"), QStringLiteral("SELECT 'a\"'")},
                           {QStringLiteral("location"), 0},
                           {QStringLiteral("length"), 11},
                           {QStringLiteral("count"), 2},
                           {QStringLiteral("lineNumberOffset"), 0}}));
    EXPECT_EQ(batches[1].toObject()[QStringLiteral("location")], 18);
    EXPECT_EQ(batches[1].toObject()[QStringLiteral("lineNumberOffset")], 3);
    EXPECT_EQ(batches[1].toObject()[QStringLiteral("count")], 1);
}

TEST(CommandLine, PrintsABatchOnceHoweverOftenItRuns)
{
    const Outcome outcome =
        Program({QStringLiteral("split"), QStringLiteral("-")}, "SELECT 1\nGO 2000000000\n").wait();
    EXPECT_EQ(outcome.status, 0);
    const QJsonArray batches = QJsonDocument::fromJson(outcome.output).array();
    ASSERT_EQ(batches.size(), 1);
    EXPECT_EQ(batches[0].toObject()[QStringLiteral("count")], 2'000'000'000);
}

TEST(CommandLine, WritesValuesAsStored)
{
    const QStringList values = {
        QStringLiteral("CAST('2020-01-02 05:04:05.1234567 +02:00' AS datetimeoffset(7)) AS a"),
        QStringLiteral("CAST('2020-01-02 05:04:05.12 -00:30' AS datetimeoffset(2)) AS b"),
        QStringLiteral("CAST(214748.3647 AS smallmoney) AS c"),
        QStringLiteral("CAST('12:34:56' AS time(0)) AS d"),
        QStringLiteral("CAST('2020-01-02 03:04:05.123' AS datetime2(3)) AS e"),
    };
    const QString sql = QStringLiteral("SELECT ") + values.join(QStringLiteral(", "));
    EXPECT_EQ(query({QStringLiteral("--format"), QStringLiteral("csv"), sql}).output,
              QByteArray("a,b,c,d,e\n2020-01-02 05:04:05.1234567 +02:00,2020-01-02 05:04:05.12 -00:30,"
                         "214748.3647,12:34:56,2020-01-02 03:04:05.123\n"));
    const QByteArray json = query({QStringLiteral("--format"), QStringLiteral("json"), sql}).output;
    EXPECT_TRUE(json.contains("[\"2020-01-02 05:04:05.1234567 +02:00\", \"2020-01-02 05:04:05.12 -00:30\", "
                              "214748.3647, \"12:34:56\", \"2020-01-02 03:04:05.123\"]"))
        << json.toStdString();
}

TEST(CommandLine, SplittingAFileThatIsNotThereEndsWithStatus2)
{
    EXPECT_EQ(Program({QStringLiteral("split"), QStringLiteral("/nowhere/x.sql")}).wait().status, 2);
    EXPECT_EQ(Program({QStringLiteral("split")}).wait().status, 2);
    EXPECT_EQ(Program({QStringLiteral("split"), QStringLiteral("-")}).wait().output, "[]\n");
}

TEST(CommandLine, ListsTheCatalogQueriesWithTheirPlaceholders)
{
    const Outcome outcome = Program({QStringLiteral("catalog")}).wait();
    EXPECT_EQ(outcome.status, 0);
    const auto lines = outcome.output.split('\n');
    EXPECT_TRUE(lines.contains("DatabaseTree_ServerVersion")) << outcome.output.toStdString();
    EXPECT_TRUE(lines.contains("List_TriggersForTableWithDetails  TABLE_SCHEMA=... TABLE_NAME=..."));
    EXPECT_FALSE(outcome.output.contains("_2000"));
}

TEST(CommandLine, ShowsACatalogQueryWithoutAServer)
{
    const Outcome outcome = Program({QStringLiteral("catalog"), QStringLiteral("--show"),
                                     QStringLiteral("DatabaseTree_ServerVersion")})
                                .wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.contains("@@VERSION"));
}

TEST(CommandLine, RunsACatalogQuery)
{
    const auto run = [](const QStringList &arguments) {
        return Program(QStringList{QStringLiteral("catalog"), QStringLiteral("--server"), server(),
                                   QStringLiteral("--user"), QStringLiteral("sa"),
                                   QStringLiteral("--database"), QStringLiteral("shop"),
                                   QStringLiteral("--format"), QStringLiteral("csv")} +
                       arguments)
            .wait();
    };
    const Outcome tables = run({QStringLiteral("DatabaseTree_ListTables")});
    EXPECT_EQ(tables.status, 0) << tables.errors.toStdString();
    EXPECT_TRUE(tables.output.startsWith("object_id,schema_name,table_name")) << tables.output.toStdString();
    EXPECT_TRUE(tables.output.contains(",dbo,Customers"));

    const QStringList columns = {QStringLiteral("ColumnsForTable"), QStringLiteral("SCHEMA_NAME=dbo")};
    const Outcome missing = run(columns);
    EXPECT_EQ(missing.status, 2);
    EXPECT_TRUE(missing.errors.contains("Not filled: TABLE_NAME.")) << missing.errors.toStdString();
    const Outcome filled = run(columns + QStringList(QStringLiteral("TABLE_NAME=Customers")));
    EXPECT_EQ(filled.status, 0) << filled.errors.toStdString();
    EXPECT_GT(filled.output.count('\n'), 3);
    const Outcome odd = run(columns + QStringList(QStringLiteral("TABLE_NAME=O'Brien = 1")));
    EXPECT_EQ(odd.status, 0) << odd.errors.toStdString();
}

TEST(CommandLine, TriesEveryCatalogQueryThatOnlyReads)
{
    const Outcome outcome =
        Program({QStringLiteral("catalog"), QStringLiteral("--all"), QStringLiteral("--server"), server(),
                 QStringLiteral("--user"), QStringLiteral("sa"), QStringLiteral("--database"),
                 QStringLiteral("shop")})
            .wait();
    EXPECT_EQ(outcome.status, 0) << outcome.output.toStdString() << outcome.errors.toStdString();
    const auto lines = outcome.output.trimmed().split('\n');
    EXPECT_GT(lines.size(), 30);
    for (const QByteArray &line : lines)
        EXPECT_TRUE(line.contains("  ok, ")) << line.toStdString();
    EXPECT_TRUE(outcome.output.contains("Table_CreationQuery                         ok, 1 rows, "));
    for (const char *title :
         {"List_ForeignKeysForTable", "List_KeysForTable", "List_TriggersForTableWithDetails",
          "UserDefinedDataType_CreationQuery", "INDEX_CREATION_QUERY"}) {
        const auto line = std::find_if(lines.begin(), lines.end(), [&](const QByteArray &candidate) {
            return candidate.startsWith(QByteArray(title) + ' ');
        });
        ASSERT_NE(line, lines.end()) << title;
        EXPECT_FALSE(line->contains("ok, 0 rows")) << line->toStdString() << ": another object has some";
    }
}

TEST(CommandLine, ReportsCatalogQueriesWithoutObjectWithoutFailing)
{
    const Outcome outcome =
        Program({QStringLiteral("catalog"), QStringLiteral("--all"), QStringLiteral("--server"), server(),
                 QStringLiteral("--user"), QStringLiteral("sa"), QStringLiteral("--database"),
                 QStringLiteral("master")})
            .wait();
    EXPECT_TRUE(outcome.output.contains("ColumnsForTable                             "
                                        "not tried: DatabaseTree_ListTables gave no object"))
        << outcome.output.toStdString();
    EXPECT_EQ(outcome.status, 0) << outcome.output.toStdString();
}

TEST(CommandLine, ACatalogQueryThatIsNotThereEndsWithStatus2)
{
    EXPECT_EQ(Program({QStringLiteral("catalog"), QStringLiteral("NoSuchTitle")}).wait().status, 2);
    EXPECT_EQ(Program({QStringLiteral("catalog"), QStringLiteral("DatabaseTree_ListTables")}).wait().status,
              2);
    EXPECT_EQ(Program({QStringLiteral("catalog"), QStringLiteral("--all")}).wait().status, 2);
    EXPECT_EQ(Program({QStringLiteral("catalog"), QStringLiteral("--all"), QStringLiteral("NewTable")})
                  .wait()
                  .status,
              2);
}

TEST(CommandLine, WrongUsageEndsWithStatus2)
{
    EXPECT_EQ(Program({QStringLiteral("query")}).wait().status, 2);
    EXPECT_EQ(Program({QStringLiteral("quarry")}).wait().status, 2);
    EXPECT_EQ(Program({}).wait().status, 2);
    EXPECT_EQ(query({QStringLiteral("--file"), QStringLiteral("/nowhere.sql")}).status, 2);
}

TEST(CommandLine, WithoutAPasswordAndATerminalEndsWithStatus2)
{
    EXPECT_EQ(query({QStringLiteral("SELECT 1")}, {}, nullptr).status, 2);
}

TEST(CommandLine, HelpIsNoError)
{
    const Outcome outcome = Program({QStringLiteral("query"), QStringLiteral("--help")}).wait();
    EXPECT_EQ(outcome.status, 0);
    for (const char *option :
         {"--sample", "--encrypt", "--trust", "--no-host-check", "--trust-server-certificate"})
        EXPECT_TRUE(outcome.output.contains(option)) << option;
    EXPECT_TRUE(Program({QStringLiteral("--help")}).wait().output.contains("query"));
    EXPECT_TRUE(Program({QStringLiteral("--version")}).wait().output.startsWith("vantor-cli "));
}

TEST(CommandLine, NoConnectionEndsWithStatus3)
{
    const Outcome outcome = query({QStringLiteral("SELECT 1")}, {}, "wrong-password");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_TRUE(outcome.errors.startsWith("Login failed for user 'sa'. (Msg 18456, Level 14).\n"));
    EXPECT_TRUE(outcome.errors.contains("\"127.0.0.1\", port ")) << outcome.errors.toStdString();
}

TEST(CommandLine, EncryptsAsItsOptionsSay)
{
    const SampleServerFixture server({TestCertificates::shared().usual().arguments("require"), {}});
    const auto queryWith = [&](std::initializer_list<const char *> options) {
        QStringList arguments = {QStringLiteral("query"),
                                 QStringLiteral("--server"),
                                 QStringLiteral("127.0.0.1,%1").arg(server.port()),
                                 QStringLiteral("--user"),
                                 QStringLiteral("sa"),
                                 QStringLiteral("--format"),
                                 QStringLiteral("csv")};
        for (const char *option : options)
            arguments.append(QString::fromUtf8(option));
        return Program(arguments + QStringList(QStringLiteral("SELECT 1 AS a"))).wait();
    };
    const std::string authority = TestCertificates::shared().authority();
    EXPECT_EQ(queryWith({}).output, QByteArray("a\n1\n"));
    EXPECT_EQ(queryWith({"--trust", authority.c_str()}).output, QByteArray("a\n1\n"));
    EXPECT_EQ(queryWith({"--encrypt", "require", "--trust-server-certificate"}).output, QByteArray("a\n1\n"));
    const Outcome untrusted = queryWith({"--encrypt", "require"});
    EXPECT_EQ(untrusted.status, 3);
    EXPECT_TRUE(untrusted.errors.contains("signed by an authority that is not trusted here"))
        << untrusted.errors.toStdString();
    EXPECT_EQ(queryWith({"--encrypt", "off"}).status, 3);
}

TEST(CommandLine, StartsASampleServerOfItsOwn)
{
    const Outcome outcome =
        Program({QStringLiteral("query"), QStringLiteral("--sample"), QStringLiteral("--format"),
                 QStringLiteral("json"),
                 QStringLiteral("SELECT COUNT(*) AS n FROM shop.dbo.Customers WHERE 1 = 0")},
                {}, nullptr)
            .wait();
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_EQ(outcome.output, QByteArray("[\n{\"columns\": [\"n\"],\n \"rows\": [\n  [0]\n ]}\n]\n"));
}

TEST(CommandLine, CtrlCCancelsTheQuery)
{
    Program program({QStringLiteral("query"), QStringLiteral("--sample"), QStringLiteral("--format"),
                     QStringLiteral("csv"), QStringLiteral("SELECT * FROM generate_rows(100000000)")});
    program.readOutput(1'000'000);
    program.interrupt();
    const Outcome outcome = program.wait();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_TRUE(outcome.errors.contains("Query was cancelled.")) << outcome.errors.toStdString();
    EXPECT_TRUE(outcome.output.endsWith('\n'));
}

TEST(CommandLine, CtrlCExitsWhenOutputIsNotRead)
{
    for (const char *format : {"csv", "table"}) {
        Program program({QStringLiteral("query"), QStringLiteral("--sample"), QStringLiteral("--format"),
                         QString::fromLatin1(format),
                         QStringLiteral("SELECT * FROM generate_rows(100000000)")});
        ASSERT_TRUE(program.waitUntilOutputIsFull());
        program.interrupt();
        EXPECT_TRUE(program.endsWithin(4000)) << format;
        EXPECT_EQ(program.wait().status, 130) << format;
    }
}

TEST(CommandLine, CtrlCEndsThousandsOfResults)
{
    for (const char *script : {"SELECT 1 AS a\nGO 1000000\n", "PRINT 'x'\nSELECT 1 AS a\nGO 1000000\n"}) {
        Program program({QStringLiteral("query"), QStringLiteral("--sample")}, script);
        program.readOutput(10'000);
        program.interrupt();
        // A reader that reads on.
        const Outcome outcome = program.wait();
        EXPECT_EQ(outcome.status, 130);
        EXPECT_TRUE(outcome.errors.endsWith("Query was cancelled.\n"));
    }
}

TEST(CommandLine, HalfACharacterIsAWarningAndNoError)
{
    using namespace HostileServerBytes;
    // "x" and the first half of an emoji, as LEFT() cuts it off.
    const Bytes row = {0xD1, 4, 0, 'x', 0, 0x3D, 0xD8};
    const HostileServer::Script queried = {
        HostileServer::expect(BatchPacket), HostileServer::send(packet(done())),
        HostileServer::expect(BatchPacket),
        HostileServer::send(packet(joined({textColumn("a"), row, done(DoneCount, 1)})))};
    HostileServer server(HostileServer::joined(HostileServer::acceptedLogin(), queried));
    const Outcome outcome =
        Program({QStringLiteral("query"), QStringLiteral("--server"),
                 QStringLiteral("127.0.0.1,%1").arg(server.port()), QStringLiteral("--user"),
                 QStringLiteral("sa"), QStringLiteral("--format"), QStringLiteral("csv"),
                 QStringLiteral("SELECT LEFT(a, 2) AS a FROM t")})
            .wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, QByteArray("a\nx\n"));
    EXPECT_EQ(outcome.errors,
              QByteArray("Client warning 2401: Half of a character at the end of a value is left out.\n"));
}

TEST(CommandLine, CtrlCEndsAServerThatSendsWithoutEnd)
{
    using namespace HostileServerBytes;
    const HostileServer::Script configured = {
        HostileServer::expect(BatchPacket), HostileServer::send(packet(done())),
        HostileServer::expect(BatchPacket), HostileServer::send(packet(intColumns({"a"}), false)),
        [](HostileServer::Peer &peer) {
            const Bytes rows = packet(joined({intRow({1}), intRow({2}), intRow({3})}), false);
            for (;;)
                peer.send(rows);
        }};
    HostileServer server(HostileServer::joined(HostileServer::acceptedLogin(), configured));
    for (const bool twice : {false, true}) {
        Program program({QStringLiteral("query"), QStringLiteral("--server"),
                         QStringLiteral("127.0.0.1,%1").arg(server.port()), QStringLiteral("--user"),
                         QStringLiteral("sa"), QStringLiteral("--format"), QStringLiteral("csv"),
                         QStringLiteral("SELECT a FROM t")});
        program.readOutput(1000);
        program.interrupt();
        if (twice) {
            usleep(100'000);
            program.interrupt();
            EXPECT_TRUE(program.endsWithin(1000));
        }
        EXPECT_TRUE(program.endsWithin(4000));
        EXPECT_EQ(program.wait().status, 130);
    }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(CommandLine, TimeIsLinearInResults)
{
    for (const char *statement : {"PRINT 'x'\n", "SELECT 1 AS a\n"}) {
        const auto secondsFor = [&](int count) {
            QTemporaryDir folder;
            QFile file(folder.filePath(QStringLiteral("many.sql")));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(statement).repeated(count));
            file.close();
            const Outcome outcome = query({QStringLiteral("--file"), file.fileName()});
            EXPECT_EQ(outcome.status, 0);
            return outcome.processorSeconds;
        };
        const double few = secondsFor(10'000);
        const double many = secondsFor(40'000);
        EXPECT_LE(many, 8 * few) << statement << few;
    }
}
#endif

// A sanitizer keeps freed memory for a while.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(CommandLine, MemoryDoesNotGrowWithResults)
{
    const auto kilobytesFor = [](int count) {
        return query({}, QByteArray("SELECT 1 AS a\nGO ") + QByteArray::number(count) + '\n')
            .maximumKilobytes;
    };
    EXPECT_LT(kilobytesFor(4000), kilobytesFor(100) + 3000);
}

TEST(CommandLine, AMillionRowsDoNotNeedMemoryForAMillionRows)
{
    for (const char *format : {"csv", "json"}) {
        // About 160 MB of rows.
        Program program({QStringLiteral("query"), QStringLiteral("--sample"), QStringLiteral("--format"),
                         QString::fromLatin1(format),
                         QStringLiteral("SELECT * FROM generate_rows(1000000)")});
        const Outcome outcome = program.wait();
        EXPECT_EQ(outcome.status, 0);
        EXPECT_GT(outcome.output.size(), 100'000'000);
        EXPECT_LT(outcome.maximumKilobytes, 100'000) << format;
    }
}
#endif
