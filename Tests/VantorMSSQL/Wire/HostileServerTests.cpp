#include "Support/HostileServerBytes.h"
#include "Support/HostileServerRelay.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QElapsedTimer>

#include <thread>

#include <dirent.h>

namespace HostileServerTests {

using namespace WireTest;
using namespace HostileServerBytes;

namespace {

const QString Sql = QStringLiteral("PRINT 'message' SELECT 1 AS a, N'text' AS b SELECT 2 AS c");

std::shared_ptr<MSSQLDatabaseConnectionDetails> impatientSettings(quint16 port, int tdsVersion = 8)
{
    const auto details = settings(port);
    details->setSessionParameters({{QStringLiteral("loginTimeout"), 1}});
    details->setTdsVersion(tdsVersion);
    details->setUseNTLMv2(false);
    return details;
}

/// Connects and runs a batch: it must end with an error or with results, whatever the server does.
void talkTo(quint16 port, int tdsVersion = 8)
{
    MSSQLClient client(impatientSettings(port, tdsVersion));
    KNError error;
    if (!client.connect(&error)) {
        EXPECT_TRUE(error);
        return;
    }
    KNResultSetHolder holder;
    KNError failure;
    client.executeQueryDetails({{Sql, {0, Sql.size()}, 0}}, holder, {}, &failure);
    if (!client.isConnected()) {
        EXPECT_TRUE(failure);
    }
}

int descriptorsOpen()
{
    int count = 0;
    if (DIR *folder = opendir("/proc/self/fd")) {
        while (readdir(folder))
            ++count;
        closedir(folder);
    }
    return count;
}

void expectNextConnectionWorks()
{
    EXPECT_EQ(scalar(*connectedClient(), QStringLiteral("SELECT 3")), KNValue(3));
}

/// How many bytes the server sends for the whole conversation.
quint64 bytesOfTheConversation(int tdsVersion = 8)
{
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    talkTo(relay.port(), tdsVersion);
    return relay.bytesFromServer();
}

} // namespace

class CutConversation : public testing::TestWithParam<HostileServerRelay::Fault>
{
};

TEST_P(CutConversation, EndsWithAnErrorAtEveryByte)
{
    const quint64 total = bytesOfTheConversation();
    ASSERT_GT(total, 200U);
    const int before = descriptorsOpen();
    for (quint64 at = 0; at < total; ++at) {
        SCOPED_TRACE(at);
        HostileServerRelay relay(SampleServerFixture::shared().port(), GetParam(), at);
        talkTo(relay.port());
    }
    EXPECT_LE(descriptorsOpen(), before + 2);
    expectNextConnectionWorks();
}

INSTANTIATE_TEST_SUITE_P(Faults, CutConversation,
                         testing::Values(HostileServerRelay::Fault::Close, HostileServerRelay::Fault::Reset));

TEST(SilentConversation, InTheLoginEndsWithinItsBound)
{
    const quint64 loginBytes = 150;
    for (quint64 at = 0; at < loginBytes; at += 50) {
        SCOPED_TRACE(at);
        HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::Stall, at);
        QElapsedTimer timer;
        timer.start();
        KNError error;
        MSSQLClient client(impatientSettings(relay.port()));
        EXPECT_FALSE(client.connect(&error));
        EXPECT_LT(timer.elapsed(), 6000);
        EXPECT_TRUE(error);
    }
}

TEST(SilentConversation, BehindTheLoginCanBeCancelled)
{
    for (const auto &answer : {Bytes{}, message(50000, 0, "hello"), intColumns({"a"}),
                               joined({intColumns({"a"}), intRow({1}), done(DoneMore)})}) {
        HostileServer::Script steps = {HostileServer::stall()};
        if (!answer.empty())
            steps.insert(steps.begin(), HostileServer::send(packet(answer, false)));
        HostileServer server(afterLogin(steps));
        const auto client = connectedClient(settings(server.port()),
                                            {std::chrono::milliseconds(100), std::chrono::milliseconds(100)});
        KNError error;
        std::thread worker([&] {
            KNResultSetHolder holder;
            client->executeQueryDetails({{Sql, {0, Sql.size()}, 0}}, holder, {}, &error);
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        QElapsedTimer timer;
        timer.start();
        KNError ignored;
        client->cancelCurrentQuery(&ignored);
        worker.join();
        EXPECT_LT(timer.elapsed(), 5000);
        EXPECT_FALSE(client->isConnected());
    }
    expectNextConnectionWorks();
}

TEST(HostileAnswer, OfAnyKindIsAnError)
{
    const Bytes rows = joined({intColumns({"a"}), intRow({1})});
    const std::vector<std::pair<const char *, Bytes>> answers = {
        {"a token that does not exist", packet({0x77, 1, 2, 3})},
        {"a row without metadata", packet(joined({intRow({1}), done()}))},
        {"metadata that ends early", packet({0x81, 0xFF, 0x00, 0, 0})},
        {"sixty thousand columns", packet({0x81, 0x60, 0xEA})},
        {"a message that is longer than its packet", packet({0xAA, 0xFF, 0xFF, 1, 0, 0, 0})},
        {"a row that ends early", packet({rows.begin(), rows.end() - 2})},
        {"a packet that claims to be longer", packetOfClaimedLength(rows, 9000)},
        {"a packet that claims to be shorter than its header", packetOfClaimedLength(rows, 3)},
        {"a packet of another type",
         [&] {
             Bytes bytes = packet(rows);
             bytes[0] = 0x12;
             return bytes;
         }()},
        {"no answer but an end", {}},
    };
    for (const auto &[name, bytes] : answers) {
        SCOPED_TRACE(name);
        HostileServer server(afterLogin({HostileServer::send(bytes)}));
        const auto client = connectedClient(settings(server.port()));
        KNResultSetHolder holder;
        KNError error;
        client->executeQueryDetails({{Sql, {0, Sql.size()}, 0}}, holder, {}, &error);
        EXPECT_TRUE(error);
        EXPECT_FALSE(error.localizedDescription().isEmpty());
        for (const auto &resultSet : holder.resultSets())
            EXPECT_TRUE(resultSet->isFinished());
    }
    expectNextConnectionWorks();
}

TEST(HostileAnswer, ThatComesByteByByteIsNoError)
{
    HostileServer server(afterLogin({HostileServer::sendByteByByte(
        packet(joined({message(50000, 0, "hello"), intColumns({"a"}), intRow({42}), done(DoneCount, 1)})))}));
    const auto client = connectedClient(settings(server.port()));
    EXPECT_EQ(scalar(*client, Sql), KNValue(42));
}

TEST(CorruptedConversation, NeverCrashesTheClient)
{
    // TDS 7.3: db-lib never returns from a login of 7.4 whose list of features is spoiled.
    constexpr int Tds73 = 7;
    const quint64 total = bytesOfTheConversation(Tds73);
    for (quint64 at = 0; at < total; at += 3) {
        SCOPED_TRACE(at);
        HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::Corrupt,
                                 at);
        MSSQLClient client(impatientSettings(relay.port(), Tds73),
                           {std::chrono::milliseconds(50), std::chrono::milliseconds(50)});
        KNError error;
        if (!client.connect(&error))
            continue;
        // A spoiled length makes the client wait for what never comes: it is cancelled like any other wait.
        std::atomic<bool> done = false;
        std::thread worker([&] {
            KNResultSetHolder holder;
            KNError failure;
            client.executeQueryDetails({{Sql, {0, Sql.size()}, 0}}, holder, {}, &failure);
            done = true;
        });
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
        while (!done && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (!done)
            client.cancelCurrentQuery(&error);
        worker.join();
    }
    expectNextConnectionWorks();
}

} // namespace HostileServerTests
