#include "Foundation/MachTimer.h"

#include <gtest/gtest.h>

TEST(MachTimer, NeverRunsBackwards)
{
    const MachTimer timer;
    double last = timer.seconds();
    EXPECT_GE(last, 0);
    for (int reading = 0; reading < 1000; ++reading) {
        const double now = timer.seconds();
        ASSERT_GE(now, last);
        last = now;
    }
}

TEST(MachTimer, AgreesWithTheMonotonicClockAndStartsAnew)
{
    const auto before = std::chrono::steady_clock::now();
    MachTimer timer;
    while (timer.seconds() < 0.002) {
    }
    const double measured = timer.seconds();
    EXPECT_LE(measured, std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count());

    const MachTimer older = timer;
    timer.restart();
    const double restarted = timer.seconds();
    EXPECT_LT(restarted, older.seconds());
}
