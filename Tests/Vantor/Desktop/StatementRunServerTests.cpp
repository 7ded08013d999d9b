#include "Database/KNStatementRun.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "Vantor/Desktop/DesktopTesting.h"

using Changes = KNStatementOutcome::Changes;
using WindowTesting::waitFor;

namespace {

/// Scripts on a real server that change a table of their own.
class StatementRunsOnAServer : public testing::Test
{
protected:
    StatementRunsOnAServer()
    {
        EXPECT_TRUE(run(KNFormat("CREATE TABLE %@ (a int NOT NULL)", table), false).succeeded());
    }
    ~StatementRunsOnAServer() override
    {
        EXPECT_TRUE(run(KNFormat("DROP TABLE %@", table), false).succeeded());
        EXPECT_TRUE(WindowTesting::settle());
    }
    KNStatementRun::Ptr start(const QString &script, bool usesTransaction)
    {
        outcome.reset();
        return KNStatementRun::start({script, usesTransaction, {}}, *details, &owner,
                                     [this](const KNStatementOutcome &ended) { outcome = ended; });
    }
    KNStatementOutcome run(const QString &script, bool usesTransaction)
    {
        start(script, usesTransaction);
        EXPECT_TRUE(waitFor([&] { return outcome.has_value(); }));
        return outcome.value_or(KNStatementOutcome());
    }
    /// How many rows the table has.
    qint64 rowCount() const
    {
        qint64 count = -1;
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(KNFormat("SELECT COUNT(*) FROM %@", table), failure);
                if (rows && rows->next())
                    count = rows->numberForColumnIndex(0).toInt64();
            },
            *details, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return count;
    }

    const QString table = QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name());
    const VantorDBCPtr details =
        DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
    QObject owner;
    std::optional<KNStatementOutcome> outcome;
};

} // namespace

TEST_F(StatementRunsOnAServer, CommitTheirTransaction)
{
    EXPECT_TRUE(run(KNFormat("INSERT INTO %@ VALUES (1)\nGO\nINSERT INTO %@ VALUES (2)", table, table), true)
                    .succeeded());
    EXPECT_EQ(rowCount(), 2);
}

TEST_F(StatementRunsOnAServer, RollBackWhenALaterBatchFails)
{
    const QString script =
        KNFormat("INSERT INTO %@ VALUES (1)\nGO\n\nINSERT INTO %@ VALUES (NULL)", table, table);
    const KNStatementOutcome failed = run(script, true);
    EXPECT_EQ(failed.changes, Changes::None);
    EXPECT_FALSE(failed.rollbackError) << failed.rollbackError.localizedDescription().toStdString();
    EXPECT_TRUE(failed.error.localizedDescription().contains(QStringLiteral("Msg 515")))
        << failed.error.localizedDescription().toStdString();
    EXPECT_EQ(failed.failedStatement.trimmed(), KNFormat("INSERT INTO %@ VALUES (NULL)", table));
    EXPECT_EQ(failed.failedLine, 4u);
    EXPECT_EQ(rowCount(), 0);
}

TEST_F(StatementRunsOnAServer, LeaveNoOptionsInAPooledSession)
{
    const QString failing = QStringLiteral("SET XACT_ABORT ON\nSELECT 1 / 0\nSET XACT_ABORT OFF");
    EXPECT_TRUE(run(failing, false).error);
    EXPECT_TRUE(run(QStringLiteral("IF @@OPTIONS & 16384 <> 0 RAISERROR('XACT_ABORT is on', 16, 1)"), false)
                    .succeeded());
}

TEST_F(StatementRunsOnAServer, FailWithALaterStatementOfABatch)
{
    const QString script =
        KNFormat("INSERT INTO %@ VALUES (1);\nINSERT INTO %@ VALUES (NULL);", table, table);
    const KNStatementOutcome failed = run(script, false);
    EXPECT_TRUE(failed.error);
    EXPECT_EQ(failed.changes, Changes::Some);
    EXPECT_EQ(failed.failedLine, 2u);
    EXPECT_EQ(rowCount(), 1);
}

TEST_F(StatementRunsOnAServer, RollBackAtACancel)
{
    const KNStatementRun::Ptr running =
        start(KNFormat("INSERT INTO %@ VALUES (1)\nGO\nWAITFOR DELAY '00:01:00'", table), true);
    QTest::qWait(200); // in the middle of it on most machines; the result is the same otherwise
    running->cancel();
    ASSERT_TRUE(waitFor([&] { return outcome.has_value(); }));
    EXPECT_TRUE(outcome->wasCancelled);
    EXPECT_EQ(outcome->changes, Changes::None);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(rowCount(), 0);
}

TEST_F(StatementRunsOnAServer, ReportUnknownChangesWhenScriptEndsTransaction)
{
    const KNStatementOutcome failed = run(
        KNFormat("INSERT INTO %@ VALUES (1)\nCOMMIT\nGO\nINSERT INTO %@ VALUES (NULL)", table, table), true);
    EXPECT_TRUE(failed.error);
    EXPECT_FALSE(failed.rollbackError);
    EXPECT_EQ(failed.changes, Changes::Unknown);
    EXPECT_EQ(rowCount(), 1);
}
