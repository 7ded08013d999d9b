#include "Database/KNStatementRun.h"

#include "Database/VantorDatabaseConnectionPool.h"

#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"

#include <semaphore>

using Changes = KNStatementOutcome::Changes;
using WindowTesting::waitFor;

namespace {

/// Scripts on a server that records what it is sent.
class StatementRuns : public testing::Test
{
protected:
    StatementRuns()
    {
        details.setHost(QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()));
        server.answer = [this](const QString &sql, KNError *error) {
            record(sql.trimmed());
            if (duringStatement)
                duringStatement(sql.trimmed());
            if (sql.contains(QLatin1String("FAIL")))
                *error = KNError(QStringLiteral("SQLClient"), 547, QStringLiteral("It conflicts."));
            return nullptr;
        };
        server.transaction = [this](const QString &what, KNError *error) {
            record(what);
            if (what == refused)
                *error = KNError(QStringLiteral("SQLClient"), 3903, what + QStringLiteral(" was refused."));
        };
    }
    ~StatementRuns() override
    {
        EXPECT_TRUE(WindowTesting::settle());
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }
    KNStatementRun::Ptr start(const KNStatementRequest &request)
    {
        return KNStatementRun::start(request, details, &owner, [this](const KNStatementOutcome &outcome) {
            outcomes.push_back(outcome);
        });
    }
    KNStatementOutcome finished(const KNStatementRequest &request)
    {
        start(request);
        EXPECT_TRUE(waitFor([&] { return outcomes.size() == 1; }));
        return outcomes.front();
    }
    void record(const QString &text)
    {
        const std::lock_guard lock(m_mutex);
        m_sent.append(text);
    }
    QStringList sent() const
    {
        const std::lock_guard lock(m_mutex);
        return m_sent;
    }

    FakeDatabase::Server server;
    FakeDatabase::Settings details{server};
    std::function<void(const QString &sql)> duringStatement;
    QString refused;
    QObject owner;
    std::vector<KNStatementOutcome> outcomes;

private:
    mutable std::mutex m_mutex;
    QStringList m_sent;
};

const QString TwoBatches = QStringLiteral("DROP TABLE a\nGO\nDROP TABLE b\nGO\n");
const QString FailingScript = QStringLiteral("DROP TABLE a\nGO\nFAIL\nGO\nDROP TABLE b\n");

} // namespace

TEST_F(StatementRuns, ExecuteBatchByBatch)
{
    const KNStatementOutcome outcome = finished({TwoBatches, false, {}});
    EXPECT_TRUE(outcome.succeeded());
    EXPECT_FALSE(outcome.error);
    EXPECT_EQ(sent(), (QStringList{QStringLiteral("DROP TABLE a"), QStringLiteral("DROP TABLE b")}));
}

TEST_F(StatementRuns, CommitATransactionOnSuccess)
{
    EXPECT_TRUE(finished({TwoBatches, true, {}}).succeeded());
    EXPECT_EQ(sent(), (QStringList{QStringLiteral("BEGIN"), QStringLiteral("DROP TABLE a"),
                                   QStringLiteral("DROP TABLE b"), QStringLiteral("COMMIT")}));
}

TEST_F(StatementRuns, RollATransactionBackOnFailureAndRunNothingMore)
{
    const KNStatementOutcome outcome = finished({FailingScript, true, {}});
    EXPECT_FALSE(outcome.succeeded());
    EXPECT_EQ(outcome.changes, Changes::None);
    EXPECT_EQ(sent(), (QStringList{QStringLiteral("BEGIN"), QStringLiteral("DROP TABLE a"),
                                   QStringLiteral("FAIL"), QStringLiteral("ROLLBACK")}));
}

TEST_F(StatementRuns, ReportTheFailingBatchInTheWantedDomain)
{
    const KNStatementOutcome outcome = finished({FailingScript, false, QStringLiteral("MSSQLAlterIndex")});
    EXPECT_EQ(outcome.error.domain(), QStringLiteral("MSSQLAlterIndex"));
    EXPECT_EQ(outcome.error.code(), 547);
    EXPECT_EQ(outcome.error.localizedDescription(), QStringLiteral("It conflicts."));
    EXPECT_EQ(outcome.error.userInfo().value(QStringLiteral("Query")).toString(), QStringLiteral("FAIL"));
    EXPECT_EQ(outcome.failedStatement, QStringLiteral("FAIL"));
    EXPECT_EQ(outcome.failedRange, (KNRange{16, 4}));
    EXPECT_EQ(outcome.changes, Changes::Some);
}

TEST_F(StatementRuns, KeepTheDomainOfTheClientByDefault)
{
    EXPECT_EQ(finished({FailingScript, false, {}}).error.domain(), QStringLiteral("SQLClient"));
}

TEST_F(StatementRuns, ReportAFailedRollbackBesideTheFailure)
{
    refused = QStringLiteral("ROLLBACK");
    const KNStatementOutcome outcome = finished({FailingScript, true, {}});
    EXPECT_EQ(outcome.error.localizedDescription(), QStringLiteral("It conflicts."));
    EXPECT_EQ(outcome.rollbackError.localizedDescription(), QStringLiteral("ROLLBACK was refused."));
    EXPECT_EQ(
        outcome.error.recoverySuggestion(),
        QStringLiteral("The changes could not be rolled back: ROLLBACK was refused. Check which of them "
                       "remain."));
    EXPECT_EQ(outcome.changes, Changes::Unknown);
}

TEST_F(StatementRuns, RollBackIfTheCommitFails)
{
    refused = QStringLiteral("COMMIT");
    const KNStatementOutcome outcome = finished({TwoBatches, true, {}});
    EXPECT_EQ(outcome.error.localizedDescription(), QStringLiteral("COMMIT was refused."));
    EXPECT_EQ(outcome.changes, Changes::None);
    EXPECT_EQ(sent().last(), QStringLiteral("ROLLBACK"));
}

TEST_F(StatementRuns, RunNothingIfTheTransactionCannotBegin)
{
    refused = QStringLiteral("BEGIN");
    const KNStatementOutcome outcome = finished({TwoBatches, true, {}});
    EXPECT_EQ(outcome.error.localizedDescription(), QStringLiteral("BEGIN was refused."));
    EXPECT_EQ(outcome.changes, Changes::None);
    EXPECT_EQ(sent(), QStringList{QStringLiteral("BEGIN")});
}

TEST_F(StatementRuns, ReportARefusedLogin)
{
    server.refusesLogins = true;
    const KNStatementOutcome outcome = finished({TwoBatches, true, QStringLiteral("MSSQLAlterIndex")});
    EXPECT_EQ(outcome.error.localizedDescription(), QStringLiteral("refused"));
    EXPECT_EQ(outcome.error.domain(), QStringLiteral("MSSQLAlterIndex"));
    EXPECT_EQ(outcome.changes, Changes::None);
}

TEST_F(StatementRuns, StopAndRollBackAtACancel)
{
    std::binary_semaphore started{0};
    std::binary_semaphore released{0};
    duringStatement = [&](const QString &sql) {
        if (sql != QLatin1String("DROP TABLE a"))
            return;
        started.release();
        released.acquire();
    };
    const KNStatementRun::Ptr run = start({TwoBatches, true, {}});
    started.acquire();
    run->cancel();
    EXPECT_TRUE(waitFor([&] { return server.cancels > 0; }));
    released.release();
    ASSERT_TRUE(waitFor([&] { return outcomes.size() == 1; }));
    EXPECT_TRUE(outcomes.front().wasCancelled);
    EXPECT_FALSE(outcomes.front().error);
    EXPECT_EQ(outcomes.front().changes, Changes::None);
    EXPECT_EQ(sent(), (QStringList{QStringLiteral("BEGIN"), QStringLiteral("DROP TABLE a"),
                                   QStringLiteral("ROLLBACK")}));
}

TEST_F(StatementRuns, EndAtACancelWhileTheyWaitForAConnection)
{
    std::binary_semaphore released{0};
    server.duringLogin = [&] { released.acquire(); };
    start({TwoBatches, true, {}})->cancel();
    ASSERT_TRUE(waitFor([&] { return outcomes.size() == 1; })) << "the login still goes on";
    EXPECT_TRUE(outcomes.front().wasCancelled);
    released.release();
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(outcomes.size(), 1u);
    EXPECT_EQ(sent(), QStringList());
}

TEST_F(StatementRuns, MakeNoCallAfterOwnerIsDestroyed)
{
    auto shortLived = std::make_unique<QObject>();
    bool isCalled = false;
    KNStatementRun::start({TwoBatches, false, {}}, details, shortLived.get(),
                          [&](const KNStatementOutcome &) { isCalled = true; });
    shortLived.reset();
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_FALSE(isCalled);
    EXPECT_EQ(sent().size(), 2) << "the script runs to its end";
}

TEST_F(StatementRuns, ReportTheirProgressOnTheMainThread)
{
    QList<QPair<int, int>> reports;
    bool isFinished = false;
    std::binary_semaphore released{0};
    duringStatement = [&](const QString &sql) {
        if (sql == QLatin1String("DROP TABLE b"))
            released.acquire();
    };
    KNStatementRun::start(
        {TwoBatches, false, {}}, details, &owner, [&](const KNStatementOutcome &) { isFinished = true; },
        [&](int done, int total) {
            reports.append({done, total});
        });
    EXPECT_TRUE(waitFor([&] { return !reports.isEmpty(); }));
    EXPECT_EQ(reports.value(0), (QPair<int, int>{1, 2}));
    released.release();
    EXPECT_TRUE(waitFor([&] { return isFinished; }));
}

TEST_F(StatementRuns, UseAGivenClient)
{
    const auto client = details.createNewClient();
    KNError error;
    ASSERT_TRUE(client->connect(&error));
    EXPECT_TRUE(KNStatementRun::run({TwoBatches, true, {}}, *client).succeeded());
    EXPECT_EQ(sent().size(), 4);
}
