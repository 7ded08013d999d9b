#include "Vantor/Program.h"

namespace CommandLineLimitTests {

// What vantor-cli takes of memory and time. Sanitizers take more of both.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {

QStringList queryArguments(const QStringList &more)
{
    return QStringList{QStringLiteral("query"), QStringLiteral("--server"),
                       QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port()),
                       QStringLiteral("--user"), QStringLiteral("sa")} +
           more;
}

} // namespace

TEST(CommandLineLimits, LackOfMemoryIsAnErrorAndNeverAnEmptySuccess)
{
    const QString sql = QStringLiteral("SELECT REPLICATE(CAST('x' AS varchar(max)), 12000000) AS a");
    int failures = 0;
    for (const char *format : {"table", "csv"}) {
        for (rlim_t megabytes = 110; megabytes <= 230; megabytes += 20) {
            SCOPED_TRACE(testing::Message() << format << " with " << megabytes << " MB");
            const Outcome outcome =
                Program(queryArguments({QStringLiteral("--format"), QString::fromLatin1(format), sql}), {},
                        SampleServerFixture::Password, nullptr, megabytes * 1'000'000)
                    .wait();
            if (outcome.status == 0) {
                EXPECT_GE(outcome.output.size(), 12'000'000);
                continue;
            }
            ++failures;
            EXPECT_LT(outcome.status, 128) << outcome.errors.toStdString();
            EXPECT_FALSE(outcome.errors.isEmpty());
        }
    }
    EXPECT_GT(failures, 0);
}

TEST(CommandLineLimits, ManySmallAnswersTakeLittleProcessorTime)
{
    constexpr double MostSeconds = 2; // half a second to one on an idle machine
    const struct
    {
        const char *sql;
        int status;
    } cases[] = {
        {"DECLARE @i int = 0; WHILE @i < 40000 BEGIN SET @i = @i + 1; SELECT 1 AS a END", 0},
        {"DECLARE @i int = 0; WHILE @i < 80000 BEGIN SET @i = @i + 1; PRINT 'x' END; SELECT 1/0", 1},
    };
    for (const auto &one : cases) {
        const Outcome outcome = Program(queryArguments({}), one.sql).wait();
        EXPECT_EQ(outcome.status, one.status) << one.sql;
        EXPECT_LE(outcome.processorSeconds, MostSeconds) << one.sql;
    }
}

// The kernel's part of the time is not bounded: most of it is the price of waking the server on a processor
// that sleeps, which depends on the machine. The program's own part and its waits do not.
TEST(CommandLineLimits, ManyBatchesWaitOnceEach)
{
    constexpr long Batches = 20'000;
    constexpr double MostUserSeconds = 1.2; // about 0.6 seconds on an idle machine
    const Outcome outcome =
        Program(queryArguments({}), "PRINT 'x'\nGO " + QByteArray::number(qlonglong(Batches)) + "\n").wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors.count('\n'), Batches);
    EXPECT_LE(outcome.userSeconds, MostUserSeconds);
    EXPECT_LE(outcome.waits, Batches * 3 / 2);
}

TEST(CommandLineLimits, AScriptOfManyRowsForMySQLIsNotKeptInMemory)
{
    const SampleServerFixture server;
    const QStringList connection = {QStringLiteral("--server"),
                                    QStringLiteral("127.0.0.1,%1").arg(server.port()),
                                    QStringLiteral("--user"), QStringLiteral("sa")};
    const Outcome made =
        Program(QStringList{QStringLiteral("query")} + connection +
                QStringList{QStringLiteral("--database"), QStringLiteral("shop"),
                            QStringLiteral("SELECT * INTO dbo.many_rows FROM generate_rows(400000)")})
            .wait();
    ASSERT_EQ(made.status, 0) << made.errors.toStdString();
    const Outcome script =
        Program(QStringList{QStringLiteral("script")} + connection +
                QStringList{QStringLiteral("shop/Tables/many_rows"), QStringLiteral("MySQL")})
            .wait();
    EXPECT_EQ(script.status, 0) << script.errors.toStdString();
    EXPECT_GT(script.output.size(), 60'000'000);
    EXPECT_TRUE(script.output.contains("-- Insert 400000 entries into many_rows\r\n"));
    EXPECT_EQ(script.output.count("INSERT INTO `many_rows` VALUES ("), 400'000);
    EXPECT_LT(script.maximumKilobytes, 100'000);
}

#endif

} // namespace CommandLineLimitTests
