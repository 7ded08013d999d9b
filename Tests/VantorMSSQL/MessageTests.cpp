#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLClientCallbacks.h"
#include "Implementations/MSSQLMessageList.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <sybdb.h>

#include <thread>

namespace {

/// db-lib never looks into the handle while it only reports.
DBPROCESS *someHandle()
{
    static int object = 0;
    return reinterpret_cast<DBPROCESS *>(&object);
}

class Messages : public testing::Test
{
protected:
    void SetUp() override { MSSQLMessageList::sharedInstance().clearMessage(); }
    void TearDown() override { MSSQLMessageList::sharedInstance().clearMessage(); }

    static QList<DatabaseMessage> all() { return MSSQLMessageList::sharedInstance().messages(); }

    static int clientError(int number, const char *text)
    {
        return err_handler(someHandle(), 9, number, 0, const_cast<char *>(text), nullptr);
    }
    static int serverMessage(int number, int severity, const char *text, const char *procedure = "")
    {
        return msg_handler(someHandle(), number, 1, severity, const_cast<char *>(text),
                           const_cast<char *>("SRV"), const_cast<char *>(procedure), 4);
    }
};

KNRange rangeOf(const char *message, const QString &batch, qsizetype location = 0)
{
    DatabaseMessage record;
    record.msgtext = QString::fromUtf8(message);
    return MSSQLClient::processErrorDetails(record, {batch, {location, batch.size()}, 0});
}

} // namespace

TEST_F(Messages, AServerMessageIsKeptWithEverythingTheServerSaid)
{
    EXPECT_EQ(serverMessage(50000, 16, "naïve", "dbo.p"), 0);
    ASSERT_EQ(all().size(), 1);
    const DatabaseMessage message = all().first();
    EXPECT_EQ(message.type, DatabaseMessage::ServerMessage);
    EXPECT_EQ(message.msgno, 50000);
    EXPECT_EQ(message.severity, 16);
    EXPECT_EQ(message.msgstate, 1);
    EXPECT_EQ(message.line, 4U);
    EXPECT_EQ(message.msgtext, QStringLiteral("naïve"));
    EXPECT_EQ(message.srvname, QStringLiteral("SRV"));
    EXPECT_EQ(message.procname, QStringLiteral("dbo.p"));
    EXPECT_TRUE(message.isError());
}

TEST_F(Messages, APrintIsNoError)
{
    serverMessage(0, 0, "hello");
    ASSERT_EQ(all().size(), 1);
    EXPECT_FALSE(all().first().isError());
}

TEST_F(Messages, NoticesOfChangedDatabaseAndLanguageAreNotKept)
{
    EXPECT_EQ(serverMessage(5701, 0, "Changed database context to 'master'."), 0);
    EXPECT_EQ(serverMessage(5703, 0, "Changed language setting to us_english."), 0);
    EXPECT_TRUE(all().isEmpty());
}

TEST_F(Messages, AClientErrorHasNoLineAndCancels)
{
    EXPECT_EQ(clientError(20006, " Write to the server failed\n"), INT_CANCEL);
    ASSERT_EQ(all().size(), 1);
    EXPECT_EQ(all().first().type, DatabaseMessage::ClientError);
    EXPECT_EQ(all().first().line, DatabaseMessage::NotFound);
    EXPECT_EQ(all().first().msgtext, QStringLiteral("Write to the server failed"));
}

TEST_F(Messages, ErrorsWithoutContentAreNotKept)
{
    for (const char *text :
         {"Adaptive Server connection failed", "General SQL Server error: Check messages from the SQL Server",
          "Illegal version level specified", "Max connections reached, increase value of TDS_MAX_CONN",
          "Server name not found in configuration files", " Server name not found in configuration files \n"})
        EXPECT_EQ(clientError(20009, text), INT_CANCEL);
    EXPECT_EQ(clientError(0, "nothing"), INT_CANCEL);
    EXPECT_EQ(err_handler(nullptr, 9, 20009, 0, const_cast<char *>("no handle"), nullptr), INT_CANCEL);
    EXPECT_EQ(serverMessage(1, 16, "Max connections reached, increase value of TDS_MAX_CONN"), INT_CANCEL);
    EXPECT_TRUE(all().isEmpty());
}

TEST_F(Messages, TheGenericLoginFailureIsDroppedBehindAnotherMessage)
{
    serverMessage(18456, 14, "Login failed for user 'x'.");
    clientError(20002, "Adaptive Server connection failed (x)");
    ASSERT_EQ(all().size(), 1);
    EXPECT_EQ(all().first().msgno, 18456);
}

TEST_F(Messages, TheGenericLoginFailureIsKeptWhenItIsAlone)
{
    clientError(20002, "Adaptive Server connection failed (x)");
    ASSERT_EQ(all().size(), 1);
    EXPECT_EQ(all().first().msgno, 20002);
}

TEST_F(Messages, BelongToTheirThread)
{
    serverMessage(1, 16, "mine");
    std::thread other([] {
        serverMessage(2, 16, "theirs");
        EXPECT_EQ(all().size(), 1);
        MSSQLMessageList::sharedInstance().clearMessage();
        EXPECT_TRUE(all().isEmpty());
    });
    other.join();
    ASSERT_EQ(all().size(), 1);
    EXPECT_EQ(all().first().msgtext, QStringLiteral("mine"));
}

TEST(ErrorRange, MarksTheOnlyOccurrenceOffsetByTheBatch)
{
    EXPECT_EQ(rangeOf("Invalid column name 'foo'.", QStringLiteral("SELECT foo FROM t"), 100),
              (KNRange{107, 3}));
    EXPECT_EQ(rangeOf("Invalid object name 'dbo.nope'.", QStringLiteral("SELECT 1 FROM nope")), KNRange());
    EXPECT_EQ(rangeOf("Invalid object name 'nope'.", QStringLiteral("SELECT 1 FROM [nope]")),
              (KNRange{15, 4}));
    EXPECT_EQ(rangeOf("Incorrect syntax near 'FRM'.", QStringLiteral("SELECT 1 FRM t")), (KNRange{9, 3}));
}

TEST(ErrorRange, MarksNothingWhenTheWordOccursTwice)
{
    EXPECT_FALSE(rangeOf("Invalid column name 'id'.", QStringLiteral("SELECT id, id FROM t")).isFound());
    EXPECT_FALSE(rangeOf("Invalid column name 'id'.", QStringLiteral("SELECT id, idx FROM t")).isFound());
    EXPECT_FALSE(rangeOf("Invalid column name 'aa'.", QStringLiteral("SELECT aaaa")).isFound());
}

TEST(ErrorRange, PassesOverCommentsAndStringsAndKeepsCase)
{
    EXPECT_EQ(rangeOf("Invalid column name 'id'.", QStringLiteral("/* id */ SELECT 'id', id -- id")),
              (KNRange{22, 2}));
    EXPECT_FALSE(rangeOf("Invalid column name 'id'.", QStringLiteral("SELECT ID")).isFound());
}

TEST(ErrorRange, MarksNothingForOtherMessages)
{
    EXPECT_FALSE(rangeOf("Divide by zero error encountered.", QStringLiteral("SELECT 1/0")).isFound());
    EXPECT_FALSE(rangeOf("Incorrect syntax near ''.", QStringLiteral("SELECT ''")).isFound());
}
