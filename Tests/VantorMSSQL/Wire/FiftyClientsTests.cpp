#include "Implementations/MSSQLMessageList.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <thread>

using namespace WireTest;

namespace {

/// Runs batches with messages and errors and returns whatever was not this client's own.
QStringList foreignMessagesOf(int number, Protection protection)
{
    const auto client = connectedClient(sharedSettings(protection));
    const QString own = QStringLiteral("of client %1.").arg(number);
    QStringList foreign;
    for (int round = 0; round < 10; ++round) {
        const auto results = run(
            *client, QStringLiteral("SELECT * FROM generate_rows(250) PRINT 'print of client %1.' SELECT 2 "
                                    "RAISERROR('warning of client %1.', 10, 1) PRINT 'end of client %1.'")
                         .arg(number));
        const QStringList texts = messageTexts(results);
        if (texts.size() != 3)
            foreign.append(QStringLiteral("%1 messages").arg(texts.size()));
        KNError error;
        const auto failed =
            run(*client, QStringLiteral("RAISERROR('error of client %1.', 16, 1)").arg(number), &error);
        const QStringList all = texts + messageTexts(failed) + QStringList(error.localizedDescription());
        for (const QString &text : all) {
            if (!text.endsWith(own))
                foreign.append(text);
        }
    }
    if (!MSSQLMessageList::sharedInstance().isEmpty())
        foreign.append(QStringLiteral("left in the list"));
    return foreign;
}

class FiftyClients : public testing::TestWithParam<Protection>
{
};

} // namespace

TEST_P(FiftyClients, AtOnceNeverSeeEachOthersMessages)
{
    sharedSettings(GetParam());
    std::vector<std::thread> threads;
    std::vector<QStringList> foreign(50);
    for (int number = 0; number < 50; ++number)
        threads.emplace_back([&foreign, number] {
            foreign[static_cast<std::size_t>(number)] = foreignMessagesOf(number, GetParam());
        });
    for (std::thread &thread : threads)
        thread.join();
    for (const QStringList &texts : foreign)
        EXPECT_TRUE(texts.isEmpty()) << texts.join(QLatin1Char('|')).toStdString();
}

TEST_P(FiftyClients, AreCancelledAtOnceFromOtherThreads)
{
    sharedSettings(GetParam());
    std::vector<std::thread> threads;
    for (int number = 0; number < 20; ++number) {
        threads.emplace_back([] {
            const auto client = connectedClient(sharedSettings(GetParam()));
            for (int round = 0; round < 5; ++round) {
                std::thread worker([&] {
                    KNError cancelled;
                    run(*client, QStringLiteral("SELECT * FROM generate_rows(50000000)"), &cancelled);
                });
                std::this_thread::sleep_for(std::chrono::milliseconds(3 * round));
                KNError error;
                // The first request may come before the run has begun.
                do {
                    client->cancelCurrentQuery(&error);
                } while (!client->wasCancelled());
                worker.join();
                EXPECT_EQ(scalar(*client, QStringLiteral("SELECT 6")), KNValue(6));
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

INSTANTIATE_TEST_SUITE_P(Conversations, FiftyClients,
                         testing::Values(Protection::Clear, Protection::Encrypted), protectionName);
