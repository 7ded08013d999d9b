#include "Foundation/KNChangeNotifier.h"

#include "Database/KNResultSetHolder.h"
#include "Support/WindowTesting.h"

#include <QElapsedTimer>

#include <thread>

using namespace std::chrono_literals;
using WindowTesting::waitFor;

TEST(ChangeNotifier, CallsOnTheMainThreadAfterAChangeOnAnotherThread)
{
    const std::thread::id mainThread = std::this_thread::get_id();
    int calls = 0;
    const KNChangeNotifier notifier([&] {
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
        ++calls;
    });
    std::thread(notifier.trigger()).join();
    EXPECT_EQ(calls, 0) << "before the main thread has its turn";
    EXPECT_TRUE(waitFor([&] { return calls == 1; }));
}

TEST(ChangeNotifier, MakesAFewCallsForAMillionChanges)
{
    std::atomic<int> value = 0;
    int calls = 0;
    int seen = 0;
    const KNChangeNotifier notifier(
        [&] {
            ++calls;
            seen = value;
        },
        50ms);
    QElapsedTimer elapsed;
    elapsed.start();
    std::thread writer([&, trigger = notifier.trigger()] {
        for (int i = 0; i < 1'000'000; ++i) {
            ++value;
            trigger();
        }
    });
    EXPECT_TRUE(waitFor([&] { return seen == 1'000'000; }));
    writer.join();
    EXPECT_LE(calls, elapsed.elapsed() / 50 + 2);
}

TEST(ChangeNotifier, MakesNoCallWithoutChanges)
{
    int calls = 0;
    const KNChangeNotifier notifier([&] { ++calls; }, 5ms);
    notifier.trigger()();
    EXPECT_TRUE(waitFor([&] { return calls == 1; }));
    QTest::qWait(100);
    EXPECT_EQ(calls, 1);
}

TEST(ChangeNotifier, ReportsAChangeThatComesDuringACall)
{
    int calls = 0;
    std::function<void()> trigger;
    const KNChangeNotifier notifier([&] {
        if (++calls == 1)
            trigger();
    });
    trigger = notifier.trigger();
    trigger();
    EXPECT_TRUE(waitFor([&] { return calls == 2; }));
}

TEST(ChangeNotifier, WaitsLongerAfterCallsThatTakeLong)
{
    int calls = 0;
    QElapsedTimer sinceCall;
    qint64 pause = 0;
    const KNChangeNotifier notifier(
        [&] {
            if (++calls == 2) {
                pause = sinceCall.elapsed();
                return;
            }
            std::this_thread::sleep_for(50ms);
            sinceCall.start();
        },
        1ms);
    notifier.trigger()();
    ASSERT_TRUE(waitFor([&] { return calls == 1; }));
    notifier.trigger()();
    ASSERT_TRUE(waitFor([&] { return calls == 2; }));
    EXPECT_GE(pause, 190);
}

TEST(ChangeNotifier, MakesNoCallOnceItIsDestroyed)
{
    int calls = 0;
    auto notifier = std::make_unique<KNChangeNotifier>([&] { ++calls; });
    const std::function<void()> trigger = notifier->trigger();
    trigger();
    notifier.reset();
    trigger();
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(calls, 0);
}

TEST(ChangeNotifier, ReportsEveryChangeOfResultSetHolder)
{
    KNResultSetHolder holder;
    int changes = 0;
    holder.setChangeObserver([&] { ++changes; });
    const auto result = std::make_shared<KNDatabaseResultSet>();
    holder.append(result);
    EXPECT_EQ(changes, 1);
    result->setColumns({QStringLiteral("a")}, {56});
    result->addRows({{KNValue(1)}});
    EXPECT_EQ(changes, 2);
    holder.incrementTotalResultCountBy(1);
    EXPECT_EQ(changes, 3);
    result->setFinished();
    EXPECT_EQ(changes, 4);
    holder.remove(result);
    EXPECT_EQ(changes, 5);
    holder.setChangeObserver({});
    holder.incrementTotalResultCount();
    EXPECT_EQ(changes, 5);
}
