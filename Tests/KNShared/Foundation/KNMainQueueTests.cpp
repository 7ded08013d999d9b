#include "Foundation/KNDispatch.h"
#include "Foundation/KNLogHelper.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>

namespace {

constexpr int QueueBound = 30'000; // milliseconds
constexpr int QueueThreads = 20;
constexpr int PiecesEach = 100;

/// A program with an event loop.
class KNMainQueueTest : public testing::Test
{
protected:
    /// Runs the event loop until the main queue has worked off everything queued before.
    void runUntilServed()
    {
        KNDispatch::mainQueue([] { QCoreApplication::quit(); });
        QCoreApplication::exec();
    }

private:
    int m_argumentCount = 1;
    char m_name[5] = "test";
    char *m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments};
};

} // namespace

TEST_F(KNMainQueueTest, RunsWorkOnTheMainThreadInOrderOfArrival)
{
    std::vector<int> order;
    std::atomic<bool> allOnMainThread = true;
    KNDispatch::globalQueue([&] {
        for (int piece = 0; piece < 500; ++piece) {
            KNDispatch::mainQueue([&, piece] {
                order.push_back(piece);
                if (!KNDispatch::isMainThread())
                    allOnMainThread = false;
            });
        }
        KNDispatch::mainQueue([] { QCoreApplication::quit(); });
    });
    QCoreApplication::exec();
    ASSERT_EQ(order.size(), 500U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_TRUE(allOnMainThread);
    EXPECT_TRUE(KNDispatch::waitUntilIdle(QueueBound));
}

TEST_F(KNMainQueueTest, DoesNotRunQueuedWorkAtOnceEvenOnTheMainThread)
{
    bool ran = false;
    KNDispatch::mainQueue([&] { ran = true; });
    EXPECT_FALSE(ran);
    runUntilServed();
    EXPECT_TRUE(ran);
}

TEST_F(KNMainQueueTest, WaitsForSynchronousWorkFromAPoolThread)
{
    std::thread::id ranOn;
    bool sawResult = false;
    KNDispatch::globalQueue([&] {
        EXPECT_FALSE(KNDispatch::isMainThread());
        KNDispatch::mainQueueSync([&] { ranOn = std::this_thread::get_id(); });
        sawResult = ranOn != std::thread::id();
        KNDispatch::mainQueue([] { QCoreApplication::quit(); });
    });
    QCoreApplication::exec();
    EXPECT_TRUE(KNDispatch::waitUntilIdle(QueueBound));
    EXPECT_TRUE(sawResult);
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(KNMainQueueTest, RunsSynchronousWorkOfTheMainThreadAtOnce)
{
    bool ran = false;
    KNDispatch::mainQueueSync([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST_F(KNMainQueueTest, RethrowsExceptionsOfSynchronousWork)
{
    EXPECT_THROW(KNDispatch::mainQueueSync([] { throw std::runtime_error("here"); }), std::runtime_error);
    std::string caught;
    KNDispatch::globalQueue([&] {
        try {
            KNDispatch::mainQueueSync([] { throw std::runtime_error("there"); });
        } catch (const std::runtime_error &error) {
            caught = error.what();
        }
        KNDispatch::mainQueue([] { QCoreApplication::quit(); });
    });
    QCoreApplication::exec();
    EXPECT_TRUE(KNDispatch::waitUntilIdle(QueueBound));
    EXPECT_EQ(caught, "there");
}

TEST_F(KNMainQueueTest, ServesLaterWorkInsideAnEventLoopThatEarlierWorkRuns)
{
    QStringList order;
    QEventLoop dialog;
    KNDispatch::mainQueue([&] {
        order += QStringLiteral("opened");
        dialog.exec();
        order += QStringLiteral("closed");
    });
    KNDispatch::mainQueue([&] {
        order += QStringLiteral("inside");
        dialog.quit();
    });
    runUntilServed();
    EXPECT_EQ(order,
              QStringList({QStringLiteral("opened"), QStringLiteral("inside"), QStringLiteral("closed")}));
}

TEST_F(KNMainQueueTest, LogsAnExceptionAndGoesOn)
{
    QString logged;
    KNLogHelper::sharedInstance()->setObserver([&](const QString &record) { logged += record; });
    KNDispatch::mainQueue([] { throw std::runtime_error("dropped the ball"); });
    runUntilServed();
    KNLogHelper::sharedInstance()->setObserver({});
    EXPECT_TRUE(logged.contains(QStringLiteral("dropped the ball"))) << logged.toStdString();
}

TEST_F(KNMainQueueTest, TakesWorkFromManyThreadsAtOnce)
{
    int served = 0; // touched by the main thread only
    for (int thread = 0; thread < QueueThreads; ++thread) {
        KNDispatch::globalQueue([&] {
            for (int piece = 0; piece < PiecesEach; ++piece) {
                const auto count = [&served] {
                    if (++served == QueueThreads * PiecesEach)
                        QCoreApplication::quit();
                };
                if (piece % 10 == 0)
                    KNDispatch::mainQueueSync(count);
                else
                    KNDispatch::mainQueue(count);
            }
        });
    }
    QCoreApplication::exec();
    EXPECT_TRUE(KNDispatch::waitUntilIdle(QueueBound));
    EXPECT_EQ(served, QueueThreads * PiecesEach);
}

TEST(KNMainQueueWithoutAnEventLoop, RunsNothingUntilItIsPumped)
{
    EXPECT_FALSE(KNDispatch::pumpMainQueue(0));
    EXPECT_TRUE(KNDispatch::isMainThread());
    int ran = 0;
    KNDispatch::mainQueue([&] { ++ran; });
    KNDispatch::mainQueue([&] { ++ran; });
    EXPECT_EQ(ran, 0);
    EXPECT_TRUE(KNDispatch::pumpMainQueue(0));
    EXPECT_EQ(ran, 2);
    EXPECT_FALSE(KNDispatch::pumpMainQueue(0));
}

TEST(KNMainQueueWithoutAnEventLoop, WaitsForTheFirstPieceOfAnotherThread)
{
    KNDispatch::pumpMainQueue(0);
    std::thread::id ranOn;
    KNDispatch::globalQueue([&] { KNDispatch::mainQueueSync([&] { ranOn = std::this_thread::get_id(); }); });
    EXPECT_TRUE(KNDispatch::pumpMainQueue(QueueBound));
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    EXPECT_TRUE(KNDispatch::waitUntilIdle(QueueBound));
}
