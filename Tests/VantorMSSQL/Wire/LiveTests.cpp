#include "Implementations/MSSQLClient.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

/// A client of the server that VANTOR_TEST_SERVER, VANTOR_TEST_USER and VANTOR_TEST_PASSWORD name; without
/// them the tests are skipped.
class LiveServer : public testing::Test
{
protected:
    void SetUp() override
    {
        if (qEnvironmentVariableIsEmpty("VANTOR_TEST_SERVER"))
            GTEST_SKIP() << "VANTOR_TEST_SERVER names no server.";
        auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
        details->setHost(qEnvironmentVariable("VANTOR_TEST_SERVER"));
        details->setUsername(qEnvironmentVariable("VANTOR_TEST_USER"));
        details->setPassword(qEnvironmentVariable("VANTOR_TEST_PASSWORD"));
        client = std::make_unique<MSSQLClient>(details);
        KNError error;
        ASSERT_TRUE(client->connect(&error)) << error.localizedDescription().toStdString();
    }

    QString shown(const char *expression)
    {
        KNError error;
        const auto cursor =
            client->executeQuery(QStringLiteral("SELECT ") + QString::fromUtf8(expression), &error);
        EXPECT_TRUE(cursor) << error.localizedDescription().toStdString();
        return cursor && cursor->next() ? cursor->stringForColumnIndex(0) : QString();
    }

    std::unique_ptr<MSSQLClient> client;
};

} // namespace

TEST_F(LiveServer, SendsValuesAsStored)
{
    EXPECT_EQ(shown("CAST(-9223372036854775808 AS bigint)"), QStringLiteral("-9223372036854775808"));
    EXPECT_EQ(shown("CAST(922337203685477.5807 AS money)"), QStringLiteral("922337203685477.5807"));
    EXPECT_EQ(shown("CAST('12345678901234567890123456789012345678' AS decimal(38,0))"),
              QStringLiteral("12345678901234567890123456789012345678"));
    EXPECT_EQ(shown("N'naïve 🐘'"), QStringLiteral("naïve 🐘"));
    EXPECT_EQ(shown("CAST(0x0AFF AS varbinary(max))"), QStringLiteral("0x0AFF"));
    EXPECT_EQ(shown("CAST('9999-12-31 23:59:59.997' AS datetime)"),
              QStringLiteral("9999-12-31 23:59:59.997"));
}

TEST_F(LiveServer, KeepsTheSessionWhenAWaitIsCancelled)
{
    KNError error;
    client->executeNonQuery(QStringLiteral("CREATE TABLE #kept (a int)"), &error);
    EXPECT_FALSE(error);
    std::thread worker([&] {
        KNError cancelled;
        client->executeNonQuery(QStringLiteral("WAITFOR DELAY '00:10:00'"), &cancelled);
    });
    do {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        client->cancelCurrentQuery(&error);
    } while (!client->wasCancelled());
    worker.join();
    EXPECT_EQ(shown("COUNT(*) FROM #kept"), QStringLiteral("0"));
}
