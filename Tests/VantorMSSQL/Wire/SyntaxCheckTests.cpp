#include "Database/KNSyntaxCheck.h"

#include "Implementations/MSSQLQuerySplitter.h"
#include "Implementations/MSSQLTokenizer.h"
#include "VantorMSSQL/Wire/WireTest.h"

namespace {

QList<KNQueryDetails> oneBatch()
{
    KNQueryDetails batch;
    batch.targetQuery = QStringLiteral("SELECT 1");
    batch.queryRange = {0, batch.targetQuery.size()};
    return {batch};
}

/// Checks scripts in a session of its own.
class SyntaxCheckOnTheWire : public testing::Test
{
protected:
    QList<DatabaseMessage> check(const char *script)
    {
        MSSQLQuerySplitter splitter(MSSQLTokenizer::options());
        splitter.setRequiresFullSplit(true);
        KNResultSetHolder results;
        syntax.run(splitter.doSplitQuery(QString::fromLatin1(script)), *client, results, &error);
        QList<DatabaseMessage> failures;
        for (const KNDatabaseResultSetPtr &result : results.resultSets())
            for (const DatabaseMessage &message : result->serverMessages())
                if (message.isFailure())
                    failures.append(message);
        return failures;
    }
    QString countOfOrders()
    {
        return WireTest::scalar(*client, QStringLiteral("SELECT COUNT(*) FROM #orders")).displayText();
    }

    std::unique_ptr<MSSQLClient> client = WireTest::connectedClient();
    KNSyntaxCheck syntax{client->databaseConnectionDetails().syntaxCheckRules()};
    KNError error;
};

} // namespace

TEST_F(SyntaxCheckOnTheWire, RunsNothingAndLeavesTheSessionAsItWas)
{
    WireTest::run(*client, QStringLiteral("CREATE TABLE #orders (a int)"));
    EXPECT_TRUE(
        check("INSERT #orders VALUES (1)\nGO 5\nDROP TABLE #orders\nSELECT * FROM nowhere").isEmpty());
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    EXPECT_EQ(syntax.summary(), QStringLiteral("The statements are correct."));
    ASSERT_TRUE(client->isConnected());
    EXPECT_EQ(countOfOrders(), QStringLiteral("0"));
}

TEST_F(SyntaxCheckOnTheWire, FindsTheErrorsOfAllBatchesInTheLinesOfTheWholeText)
{
    const auto failures = check("SELECT 1\nSELECT FROM WHERE\nGO\nSELECT 2\nGO\n\nUPDATE SET\n");
    ASSERT_EQ(failures.size(), 2);
    EXPECT_EQ(failures[0].calculatedLineNumber, 2);
    EXPECT_EQ(failures[1].calculatedLineNumber, 7);
    EXPECT_TRUE(syntax.hadErrors());
    EXPECT_TRUE(syntax.summary().isNull());
    EXPECT_EQ(WireTest::scalar(*client, QStringLiteral("SELECT 7")).displayText(), QStringLiteral("7"));
}

TEST_F(SyntaxCheckOnTheWire, SendsNoBatchThatCouldEndTheCheck)
{
    WireTest::run(*client, QStringLiteral("CREATE TABLE #orders (a int)"));
    check("SELECT 1\nGO\nset parseonly off INSERT #orders VALUES (1)\nGO\nINSERT #orders VALUES (2)");
    ASSERT_EQ(syntax.unchecked().size(), 1);
    EXPECT_EQ(syntax.summary(), QStringLiteral("The batch in line 3 contains PARSEONLY and was not checked, "
                                               "because it could have run."));
    EXPECT_EQ(countOfOrders(), QStringLiteral("0"));
}

TEST_F(SyntaxCheckOnTheWire, EndsASessionWhoseSettingsABatchCanHaveChanged)
{
    check("SET QUOTED_IDENTIFIER OFF\nGO\nSELECT 1");
    EXPECT_EQ(syntax.summary(), QStringLiteral("The statements are correct."));
    EXPECT_FALSE(client->isConnected());
}

TEST_F(SyntaxCheckOnTheWire, EndsASessionThatDoesNotLeaveTheCheck)
{
    KNSyntaxCheckRules rules = client->databaseConnectionDetails().syntaxCheckRules();
    rules.end = QStringLiteral("SET PARSEONLY MAYBE SO");
    KNSyntaxCheck stuck(rules);
    KNResultSetHolder results;
    stuck.run(oneBatch(), *client, results, &error);
    EXPECT_FALSE(error);
    EXPECT_FALSE(client->isConnected());
}

TEST_F(SyntaxCheckOnTheWire, SaysWhenThereIsNothingToCheck)
{
    EXPECT_TRUE(check(" \n").isEmpty());
    EXPECT_EQ(syntax.summary(), QStringLiteral("There is nothing to check."));
}

TEST_F(SyntaxCheckOnTheWire, IsRefusedWithoutRules)
{
    KNSyntaxCheck none{{}};
    KNResultSetHolder results;
    none.run(oneBatch(), *client, results, &error);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("cannot check")));
    EXPECT_EQ(results.count(), 0);
}
