#include "Foundation/KNAssert.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <thread>

using namespace WireTest;

namespace {

const QString Failure = QStringLiteral("SQLClient");

class Batches : public testing::Test
{
protected:
    std::unique_ptr<MSSQLClient> client = connectedClient();
};

QString summaryOf(const KNDatabaseResultSetPtr &resultSet)
{
    return resultSet->messages().value(0).text;
}

} // namespace

TEST_F(Batches, OfWhiteSpaceDoNotReachTheServer)
{
    EXPECT_TRUE(run(*client, QStringLiteral(" \r\n\t ")).isEmpty());
}

TEST_F(Batches, OneRowIsOneResult)
{
    const auto results = run(*client, QStringLiteral("SELECT 1 AS a, N'x' AS b"));
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0]->columnNames(), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(results[0]->columnTypes(), (QList<int>{56, 47}));
    EXPECT_EQ(results[0]->rows().row(0), (KNRow{KNValue(1), KNValue(QStringLiteral("x"))}));
    EXPECT_EQ(summaryOf(results[0]), QStringLiteral("Command completed successfully. (1 result)."));
    EXPECT_EQ(results[0]->messages().first().colour, KNDisplayMessage::Colour::Black);
    EXPECT_EQ(results[0]->numberOfRowsAffected(), 1);
    EXPECT_TRUE(results[0]->isFinished());
    EXPECT_EQ(results[0]->executedQuery(), QStringLiteral("SELECT 1 AS a, N'x' AS b"));
}

TEST_F(Batches, EmptyResultHasColumns)
{
    const auto results = run(*client, QStringLiteral("SELECT 1 AS a WHERE 1 = 0"));
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0]->columnNames(), QStringList{QStringLiteral("a")});
    EXPECT_EQ(summaryOf(results[0]), QStringLiteral("Command completed successfully. (0 results)."));
}

TEST_F(Batches, AColumnWithoutANameHasAnEmptyOne)
{
    const auto results = run(*client, QStringLiteral("SELECT 1, 2"));
    EXPECT_EQ(results.value(0)->columnNames(), (QStringList{QStringLiteral(""), QStringLiteral("")}));
}

TEST_F(Batches, TwoHundredAndFiftyRowsArriveInChunksOfOneHundred)
{
    const QString sql = QStringLiteral("SELECT * FROM generate_rows(250)");
    KNResultSetHolder holder;
    holder.setReadAhead(1);
    KNError error;
    std::thread worker([&] { client->executeQueryDetails({{sql, {0, sql.size()}, 0}}, holder, {}, &error); });
    ASSERT_TRUE(holder.waitForMoreThan(0, std::chrono::seconds(30)));
    KNRowStore &rows = holder.resultSets().first()->rows();
    // The worker waits for its reader behind each chunk.
    ASSERT_TRUE(waitFor([&] { return rows.rowCount() == 100; }));
    EXPECT_EQ(holder.totalResultCount(), 100);
    rows.discardBefore(100);
    ASSERT_TRUE(waitFor([&] { return rows.rowCount() == 200; }));
    rows.discardBefore(200);
    worker.join();
    EXPECT_EQ(rows.rowCount(), 250);
    EXPECT_EQ(holder.totalResultCount(), 250);
    EXPECT_TRUE(summaryOf(holder.resultSets().first()).endsWith(QStringLiteral("(250 results).")));
}

TEST_F(Batches, UpdateReportsAffectedRows)
{
    run(*client, QStringLiteral("CREATE TABLE #t (a int); INSERT INTO #t VALUES (1), (2), (3)"));
    const auto results = run(*client, QStringLiteral("UPDATE #t SET a = a + 1"));
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0]->numberOfRowsAffected(), 3);
    EXPECT_EQ(summaryOf(results[0]), QStringLiteral("Command completed successfully. (3 rows affected)."));
}

TEST_F(Batches, AMessageBelongsToTheResultDuringWhichItCame)
{
    const auto results =
        run(*client, QStringLiteral("SELECT 1 AS a\nPRINT 'between'\nSELECT 2 AS b\nPRINT 'behind'"));
    ASSERT_GE(results.size(), 2);
    EXPECT_EQ(messageTexts({results[0]}), QStringList{QStringLiteral("between")});
    EXPECT_EQ(messageTexts(results.mid(1)), QStringList{QStringLiteral("behind")});
    const DatabaseMessage between = results[0]->serverMessages().first();
    EXPECT_EQ(between.line, 2U);
    EXPECT_EQ(between.calculatedLineNumber, 2U);
    EXPECT_FALSE(between.isError());
}

TEST_F(Batches, MessageLinesCountInTheWholeText)
{
    KNResultSetHolder holder;
    KNError error;
    const QString sql = QStringLiteral("\nPRINT 'x'");
    client->executeQueryDetails({{sql, {500, sql.size()}, 40}}, holder, {}, &error);
    ASSERT_EQ(holder.resultSets().size(), 1);
    EXPECT_EQ(holder.resultSets().first()->serverMessages().value(0).calculatedLineNumber, 42U);
}

TEST_F(Batches, ASyntaxErrorIsAFailureThatMarksItsWord)
{
    KNError error;
    KNResultSetHolder holder;
    const QString sql = QStringLiteral("SELECT *\nFRM t");
    client->executeQueryDetails({{sql, {100, sql.size()}, 10}}, holder, {}, &error);
    ASSERT_EQ(holder.resultSets().size(), 1);
    const auto failed = holder.resultSets().first();
    EXPECT_EQ(error.domain(), Failure);
    EXPECT_EQ(error.code(), 0);
    EXPECT_TRUE(error.localizedDescription().startsWith(QStringLiteral("Msg 102, Level 15, State ")))
        << error.localizedDescription().toStdString();
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral(".\r\nIncorrect syntax near '")));
    EXPECT_EQ(failed->rows().rowCount(), 0);
    ASSERT_EQ(failed->messages().size(), 1);
    EXPECT_EQ(failed->messages().first().colour, KNDisplayMessage::Colour::Red);
    EXPECT_TRUE(failed->messages().first().text.endsWith(QLatin1Char('.')));
    EXPECT_EQ(failed->calculatedLineNumber(), 2 + 10 - 1U);
    EXPECT_EQ(failed->queryTextRange(), (KNRange{100, sql.size()}));
    EXPECT_TRUE(failed->isFinished());
}

TEST_F(Batches, AnInvalidColumnIsMarkedInTheWholeText)
{
    KNError error;
    KNResultSetHolder holder;
    const QString sql = QStringLiteral("SELECT nope FROM shop.dbo.Customers");
    client->executeQueryDetails({{sql, {100, sql.size()}, 10}}, holder, {}, &error);
    const QVariantList ranges =
        error.userInfo().value(QStringLiteral("com.quorvex.osx.vantor.queryErrorRanges")).toList();
    ASSERT_EQ(ranges.size(), 1);
    EXPECT_EQ(ranges.first().value<KNRange>(), (KNRange{107, 4}));
}

TEST_F(Batches, AnInvalidColumnThatOccursTwiceIsNotMarked)
{
    KNError error;
    run(*client, QStringLiteral("SELECT nope, nope FROM shop.dbo.Customers"), &error);
    EXPECT_TRUE(error);
    EXPECT_TRUE(error.userInfo().isEmpty());
}

TEST_F(Batches, ResultsAfterErrorAreKept)
{
    const auto results = run(*client, QStringLiteral("SELECT 1 AS a; SELECT 1/0 AS b; SELECT 3 AS c"));
    QStringList names;
    for (const auto &resultSet : results)
        names += resultSet->columnNames();
    EXPECT_TRUE(names.contains(QStringLiteral("a")));
    EXPECT_TRUE(names.contains(QStringLiteral("c")));
    EXPECT_EQ(messageTexts(results).filter(QStringLiteral("Divide by zero")).size(), 1);
}

TEST_F(Batches, TheRunStopsAtTheFirstBatchThatFails)
{
    KNResultSetHolder holder;
    KNError error;
    const auto batch = [](const char *sql) { return KNQueryDetails{QString::fromLatin1(sql), {0, 1}, 0}; };
    EXPECT_TRUE(client->executeQueryDetails(
        {batch("SELECT 1"), batch("SELECT * FROM nope"), batch("SELECT 3")}, holder, {}, &error));
    EXPECT_EQ(holder.resultSets().size(), 2);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Msg 208")));
}

TEST_F(Batches, TheNextBatchWorksAfterAFailure)
{
    KNError error;
    run(*client, QStringLiteral("SELECT * FROM nope"), &error);
    EXPECT_TRUE(error);
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT 5")), KNValue(5));
}

TEST_F(Batches, ErrorParameterIsRequired)
{
    KNResultSetHolder holder;
    EXPECT_THROW(client->executeQueryDetails({}, holder, {}, nullptr), KNAssertionFailure);
}

TEST_F(Batches, AStatementOfTheFederationRunsFirst)
{
    client->databaseConnectionDetails().setFederationStatement(QStringLiteral("PRINT 'member'"));
    EXPECT_EQ(messageTexts(run(*client, QStringLiteral("PRINT 'batch'"))),
              (QStringList{QStringLiteral("member"), QStringLiteral("batch")}));
}

TEST_F(Batches, ComputeClauseAddsSeparateResult)
{
    run(*client, QStringLiteral("CREATE TABLE #t (a int); INSERT INTO #t VALUES (1), (2), (39)"));
    const auto results = run(*client, QStringLiteral("SELECT a FROM #t ORDER BY a COMPUTE SUM(a)"));
    ASSERT_EQ(results.size(), 2);
    EXPECT_EQ(results[0]->rows().rowCount(), 3);
    EXPECT_EQ(results[1]->columnTypes(), QList<int>{47});
    EXPECT_EQ(results[1]->rows().rowCount(), 1);
    EXPECT_EQ(results[1]->rows().value(0, 0), KNValue(QStringLiteral("42")));
    EXPECT_EQ(results[1]->numberOfRowsAffected(), 1);
    EXPECT_TRUE(results[1]->isFinished());
}

TEST_F(Batches, ComputedDatesAreNotShown)
{
    run(*client, QStringLiteral("CREATE TABLE #t (a datetime); INSERT INTO #t VALUES ('2020-01-02')"));
    const auto results = run(*client, QStringLiteral("SELECT a FROM #t COMPUTE MAX(a)"));
    ASSERT_EQ(results.size(), 2);
    EXPECT_TRUE(results[1]->rows().value(0, 0).isNull());
}

TEST_F(Batches, QueryReturnsFirstResultWithColumns)
{
    KNError error;
    const auto cursor =
        client->executeQuery(QStringLiteral("DECLARE @x int SET @x = 4 SELECT @x AS x"), &error);
    ASSERT_TRUE(cursor);
    ASSERT_TRUE(cursor->next());
    EXPECT_EQ(cursor->objectForColumn(QStringLiteral("x")), KNValue(4));
    EXPECT_FALSE(client->executeQuery(QStringLiteral("PRINT 'x'"), &error));
    EXPECT_FALSE(error);
    EXPECT_FALSE(client->executeQuery(QStringLiteral("SELECT * FROM nope"), &error));
    EXPECT_TRUE(error);
}

TEST_F(Batches, NonQueryWithTwoResultsIsAnError)
{
    KNError error;
    client->executeNonQuery(QStringLiteral("SELECT 1 SELECT 2"), &error);
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("executeQuery can only return a single resultset."));
}

TEST_F(Batches, NonQueryTakesAnyNumberOfResultsWithoutColumns)
{
    KNError error;
    client->executeNonQuery(QStringLiteral("CREATE TABLE #t (a int) INSERT INTO #t VALUES (1) SET NOCOUNT ON "
                                           "DELETE FROM #t SET NOCOUNT OFF SELECT 1"),
                            &error);
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
}

TEST_F(Batches, TransactionsAreCommittedOrRolledBack)
{
    KNError error;
    run(*client, QStringLiteral("CREATE TABLE #t (a int)"));
    EXPECT_TRUE(client->beginTransaction(&error));
    run(*client, QStringLiteral("INSERT INTO #t VALUES (1)"));
    EXPECT_TRUE(client->rollbackTransaction(&error));
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT COUNT(*) FROM #t")), KNValue(0));
    EXPECT_TRUE(client->beginTransaction(&error));
    run(*client, QStringLiteral("INSERT INTO #t VALUES (1)"));
    EXPECT_TRUE(client->commitTransaction(&error));
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT COUNT(*) FROM #t")), KNValue(1));
    EXPECT_FALSE(client->commitTransaction(&error));
    EXPECT_TRUE(error);
}

TEST_F(Batches, TestCommandReportsSuccess)
{
    EXPECT_TRUE(client->testCommand(QStringLiteral("SELECT 1")));
    EXPECT_FALSE(client->testCommand(QStringLiteral("SELECT * FROM nope")));
}

TEST_F(Batches, OnAClosedConnectionFailWithAnError)
{
    client->disconnect();
    KNError error;
    EXPECT_FALSE(client->executeQuery(QStringLiteral("SELECT 1"), &error));
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("The connection to the server was lost."));
}
