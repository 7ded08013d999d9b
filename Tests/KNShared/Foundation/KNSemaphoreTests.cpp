#include "Foundation/KNSemaphore.h"

#include "Foundation/MachTimer.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

constexpr std::chrono::milliseconds Bound(30'000);

} // namespace

TEST(KNSemaphore, HasAnIdentifierAndStartsAtOneUnlessToldOtherwise)
{
    KNSemaphore semaphore(QStringLiteral("com.quorvex.vantor.test"));
    EXPECT_EQ(semaphore.identifier(), QStringLiteral("com.quorvex.vantor.test"));
    EXPECT_TRUE(semaphore.tryWait());
    EXPECT_FALSE(semaphore.tryWait());
}

TEST(KNSemaphore, AllowsAsManyWaitsAsItsValue)
{
    KNSemaphore semaphore(QStringLiteral("three"), 3);
    for (int taken = 0; taken < 3; ++taken)
        EXPECT_TRUE(semaphore.tryWait());
    EXPECT_FALSE(semaphore.tryWait());
    semaphore.signal();
    EXPECT_TRUE(semaphore.tryWait());
}

TEST(KNSemaphore, TimesOut)
{
    KNSemaphore semaphore(QStringLiteral("none"), 0);
    const MachTimer timer;
    EXPECT_FALSE(semaphore.waitFor(std::chrono::milliseconds(20)));
    EXPECT_GE(timer.seconds(), 0.02);
}

TEST(KNSemaphore, WakesOneWaiterPerSignal)
{
    KNSemaphore semaphore(QStringLiteral("wake"), 0);
    KNSemaphore passed(QStringLiteral("passed"), 0);
    std::vector<std::thread> waiters;
    waiters.reserve(8);
    for (int waiter = 0; waiter < 8; ++waiter) {
        waiters.emplace_back([&] {
            semaphore.wait();
            passed.signal();
        });
    }
    for (int waiter = 0; waiter < 8; ++waiter) {
        EXPECT_FALSE(passed.tryWait());
        semaphore.signal();
        EXPECT_TRUE(passed.waitFor(Bound));
    }
    for (std::thread &waiter : waiters)
        waiter.join();
    EXPECT_FALSE(semaphore.tryWait());
}

TEST(KNSemaphore, ExcludesOtherThreads)
{
    KNSemaphore semaphore(QStringLiteral("exclusive"));
    int counter = 0; // guarded by the semaphore
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&] {
            for (int step = 0; step < 1000; ++step) {
                const KNSemaphoreLocker locker(semaphore);
                ++counter;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(counter, 8000);
}

TEST(KNSemaphoreLocker, HoldsForItsScopeAndCanGiveUpInside)
{
    KNSemaphore semaphore(QStringLiteral("scope"));
    {
        KNSemaphoreLocker locker(semaphore);
        EXPECT_FALSE(semaphore.tryWait());
        locker.release();
        locker.release();
        EXPECT_TRUE(semaphore.tryWait());
        semaphore.signal();
        locker.retake();
        locker.retake();
        EXPECT_FALSE(semaphore.tryWait());
    }
    EXPECT_TRUE(semaphore.tryWait());
    EXPECT_FALSE(semaphore.tryWait());
}
