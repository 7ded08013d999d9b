#include "Database/DatabaseMessage.h"
#include "Database/KNResultSetHolder.h"

#include <gtest/gtest.h>

#include <malloc.h>

TEST(DatabaseMessage, EveryClientErrorIsAnError)
{
    DatabaseMessage message;
    EXPECT_TRUE(message.isError());
}

TEST(DatabaseMessage, AServerMessageIsAnErrorFromSeverity16On)
{
    DatabaseMessage message;
    message.type = DatabaseMessage::ServerMessage;
    EXPECT_FALSE(message.isError());
    message.severity = 15;
    EXPECT_FALSE(message.isError());
    message.severity = 16;
    EXPECT_TRUE(message.isError());
}

TEST(DatabaseMessage, DescribesItselfWithItsLineAndItsProcedure)
{
    DatabaseMessage message;
    message.type = DatabaseMessage::ServerMessage;
    message.msgno = 208;
    message.severity = 16;
    message.msgstate = 1;
    message.line = 3;
    message.msgtext = QStringLiteral("Invalid object name 'x%@'.");
    EXPECT_EQ(message.description(),
              QStringLiteral("Msg 208, Level 16, State 1, Line 3\r\nInvalid object name 'x%@'."));
    message.procname = QStringLiteral("dbo.p");
    EXPECT_EQ(
        message.description(),
        QStringLiteral("Msg 208, Level 16, State 1, Procedure dbo.p, Line 3\r\nInvalid object name 'x%@'."));
}

TEST(DatabaseMessage, HasNoLineUnlessServerReportsOne)
{
    EXPECT_EQ(DatabaseMessage().line, 9223372036854775807ULL);
}

TEST(KNDatabaseResultSet, BeginsWithoutRowsAndWithAnUnknownCount)
{
    const KNDatabaseResultSet resultSet(QStringLiteral("SELECT 1"));
    EXPECT_EQ(resultSet.executedQuery(), QStringLiteral("SELECT 1"));
    EXPECT_EQ(resultSet.numberOfRowsAffected(), -1);
    EXPECT_EQ(resultSet.rows().rowCount(), 0);
    EXPECT_FALSE(resultSet.isFinished());
    EXPECT_FALSE(resultSet.queryTextRange().isFound());
}

TEST(KNDatabaseResultSet, ShowsAddedRowsAtOnce)
{
    KNDatabaseResultSet resultSet;
    resultSet.setColumns({QStringLiteral("a"), QStringLiteral("")}, {56, 47});
    resultSet.addRows({{KNValue(1), KNValue(QStringLiteral("x"))}, {KNValue(2), KNValue()}});
    EXPECT_EQ(resultSet.rows().rowCount(), 2);
    EXPECT_EQ(resultSet.rows().row(1), (KNRow{KNValue(2), KNValue()}));
}

TEST(KNResultSetHolder, TakesAResultSetOutAgain)
{
    KNResultSetHolder holder;
    const auto first = std::make_shared<KNDatabaseResultSet>();
    const auto second = std::make_shared<KNDatabaseResultSet>();
    holder.append(first);
    holder.append(second);
    holder.remove(second);
    holder.remove(second);
    EXPECT_EQ(holder.resultSets(), QList<KNDatabaseResultSetPtr>{first});
}

TEST(KNResultSetHolder, ReturnsNewResultsToEachReader)
{
    KNResultSetHolder holder;
    KNResultSetHolder::Position position = 0;
    EXPECT_TRUE(holder.newResultSets(&position).isEmpty());
    const auto first = std::make_shared<KNDatabaseResultSet>();
    const auto second = std::make_shared<KNDatabaseResultSet>();
    const auto third = std::make_shared<KNDatabaseResultSet>();
    holder.append(first);
    holder.append(second);
    EXPECT_EQ(holder.newResultSets(&position), (QList<KNDatabaseResultSetPtr>{first, second}));
    holder.remove(second);
    EXPECT_TRUE(holder.newResultSets(&position).isEmpty());
    holder.append(third);
    EXPECT_EQ(holder.newResultSets(&position), QList<KNDatabaseResultSetPtr>{third});
    KNResultSetHolder::Position other = 0;
    EXPECT_EQ(holder.newResultSets(&other), (QList<KNDatabaseResultSetPtr>{first, third}));
}

TEST(KNResultSetHolder, IsEmptyWhenItsResultSetsAreTaken)
{
    KNResultSetHolder holder;
    const auto first = std::make_shared<KNDatabaseResultSet>();
    holder.append(first);
    EXPECT_EQ(holder.takeResultSets(), QList<KNDatabaseResultSetPtr>{first});
    EXPECT_TRUE(holder.takeResultSets().isEmpty());
    EXPECT_TRUE(holder.resultSets().isEmpty());
    holder.remove(first);
    holder.append(first);
    EXPECT_EQ(holder.takeResultSets().size(), 1);
}

TEST(KNResultSetHolder, PassesReadAheadToLaterResultSets)
{
    KNResultSetHolder holder;
    holder.setReadAhead(1);
    const auto resultSet = std::make_shared<KNDatabaseResultSet>();
    resultSet->setColumns({QStringLiteral("a")}, {56});
    holder.append(resultSet);
    resultSet->addRows({{KNValue(1)}});
    EXPECT_FALSE(resultSet->rows().waitForRoom(std::chrono::milliseconds(0)));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(KNResultSetHolder, TakesAtMost200BytesForAResultWithoutColumns)
{
    constexpr int Count = 10'000;
    const QString sql = QStringLiteral("DELETE FROM dbo.t");
    const QList<KNDisplayMessage> summary = {{QStringLiteral("Command completed successfully.")}};
    KNResultSetHolder holder;
    const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    for (int i = 0; i < Count; ++i) {
        const auto resultSet = std::make_shared<KNDatabaseResultSet>(sql);
        resultSet->setColumns({}, {});
        holder.append(resultSet);
        resultSet->setNumberOfRowsAffected(i);
        resultSet->setMessages(summary);
        resultSet->setFinished();
    }
    EXPECT_LE((mallinfo2().uordblks + mallinfo2().hblkhd - before) / Count, 200U);
}
#endif
