#include "Foundation/KNDispatch.h"
#include "Foundation/KNSerialQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

TEST(KNSerialQueue, RunsItsWorkInOrderAndOnePieceAtATimeAlsoWhenItIsGone)
{
    constexpr int Count = 1000;
    std::vector<int> order;
    std::atomic<int> running = 0;
    std::atomic<int> mostRunning = 0;
    {
        KNSerialQueue queue;
        for (int i = 0; i < Count; ++i)
            queue.add([&, i] {
                mostRunning = std::max<int>(mostRunning, ++running);
                order.push_back(i);
                --running;
            });
    }
    ASSERT_TRUE(KNDispatch::waitUntilIdle(30000));
    ASSERT_EQ(order.size(), static_cast<std::size_t>(Count));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(mostRunning, 1);
}

TEST(KNSerialQueue, TakesWorkFromManyThreads)
{
    KNSerialQueue queue;
    int sum = 0; // touched by the queue's work alone
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i)
                queue.add([&sum] { ++sum; });
        });
    for (std::thread &thread : threads)
        thread.join();
    ASSERT_TRUE(KNDispatch::waitUntilIdle(30000));
    EXPECT_EQ(sum, 2000);
}
