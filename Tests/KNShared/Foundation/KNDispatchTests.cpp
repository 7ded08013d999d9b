#include "Foundation/KNDispatch.h"

#include "Foundation/KNLogHelper.h"
#include "Foundation/KNSemaphore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

namespace {

constexpr int DispatchBound = 30'000; // milliseconds
constexpr std::chrono::milliseconds SemaphoreBound(DispatchBound);

} // namespace

TEST(KNDispatchGlobalQueue, RunsEveryPieceOfWork)
{
    std::atomic<int> ran = 0;
    for (int piece = 0; piece < 1000; ++piece)
        KNDispatch::globalQueue([&ran] { ++ran; });
    ASSERT_TRUE(KNDispatch::waitUntilIdle(DispatchBound));
    EXPECT_EQ(ran, 1000);
}

TEST(KNDispatchGlobalQueue, LetsNoBlockedTaskHoldUpAnother)
{
    constexpr int Tasks = 200;
    KNSemaphore arrived(QStringLiteral("arrived"), 0);
    KNSemaphore gate(QStringLiteral("gate"), 0);
    for (int task = 0; task < Tasks; ++task) {
        KNDispatch::globalQueue([&] {
            arrived.signal();
            gate.wait();
        });
    }
    // All of them are inside their task at once, before the first may leave.
    for (int task = 0; task < Tasks; ++task)
        ASSERT_TRUE(arrived.waitFor(SemaphoreBound)) << "task " << task << " never started";
    for (int task = 0; task < Tasks; ++task)
        gate.signal();
    EXPECT_TRUE(KNDispatch::waitUntilIdle(DispatchBound));
}

TEST(KNDispatchGlobalQueue, RunsWorkThatWaitsForWorkItQueued)
{
    KNSemaphore done(QStringLiteral("done"), 0);
    std::function<void(int)> nest = [&](int depth) {
        if (depth == 0)
            return;
        KNSemaphore inner(QStringLiteral("inner"), 0);
        KNDispatch::globalQueue([&] {
            nest(depth - 1);
            inner.signal();
        });
        inner.wait();
    };
    KNDispatch::globalQueue([&] {
        nest(20);
        done.signal();
    });
    EXPECT_TRUE(done.waitFor(SemaphoreBound));
    EXPECT_TRUE(KNDispatch::waitUntilIdle(DispatchBound));
}

TEST(KNDispatchGlobalQueue, IsNotIdleWhileATaskRuns)
{
    KNSemaphore gate(QStringLiteral("gate"), 0);
    KNDispatch::globalQueue([&gate] { gate.wait(); });
    EXPECT_FALSE(KNDispatch::waitUntilIdle(0));
    gate.signal();
    EXPECT_TRUE(KNDispatch::waitUntilIdle(DispatchBound));
}

TEST(KNDispatchGlobalQueue, ReleasesCapturesBeforeTaskCountsAsDone)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> observed = held;
    KNDispatch::globalQueue([held = std::move(held)] { ASSERT_EQ(*held, 1); });
    ASSERT_TRUE(KNDispatch::waitUntilIdle(DispatchBound));
    EXPECT_TRUE(observed.expired());
}

TEST(KNDispatchGlobalQueue, LogsAnExceptionAndGoesOn)
{
    std::mutex mutex;
    QStringList records;
    KNLogHelper::sharedInstance()->setObserver([&](const QString &record) {
        const std::lock_guard lock(mutex);
        records += record;
    });
    std::atomic<bool> ranAfterwards = false;
    KNDispatch::globalQueue([] { throw std::runtime_error("lost the thread"); });
    KNDispatch::globalQueue([] { throw 42; });
    ASSERT_TRUE(KNDispatch::waitUntilIdle(DispatchBound));
    KNDispatch::globalQueue([&] { ranAfterwards = true; });
    ASSERT_TRUE(KNDispatch::waitUntilIdle(DispatchBound));
    KNLogHelper::sharedInstance()->setObserver({});
    EXPECT_TRUE(ranAfterwards);
    const std::lock_guard lock(mutex);
    EXPECT_EQ(records.size(), 2);
    EXPECT_EQ(records.filter(QStringLiteral("lost the thread")).size(), 1);
}
