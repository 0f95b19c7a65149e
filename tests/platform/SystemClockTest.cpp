#include "platform/SystemClock.h"

#include "support/Await.h"

#include <gtest/gtest.h>

#include <thread>

namespace lmp {

using namespace std::chrono_literals;

TEST(SystemClockTest, SleepEndsByTimeOrByStop) {
    SystemClock clock;
    EXPECT_LT(std::abs(clock.now().msecsTo(QDateTime::currentDateTimeUtc())), 5000);
    EXPECT_EQ(clock.now().timeSpec(), Qt::UTC);
    const auto start = clock.monotonic();
    EXPECT_TRUE(await(clock.sleep(20ms, {})));
    // A coarse timer may be early by a twentieth, never by more.
    EXPECT_GE(clock.monotonic() - start, 18ms);
    EXPECT_TRUE(await(clock.sleep(0ms, {})));
}

TEST(SystemClockTest, StopWakesAtOnceAndThroughTheLoop) {
    SystemClock clock;
    const auto start = clock.monotonic();
    std::stop_source before;
    before.request_stop();
    EXPECT_FALSE(await(clock.sleep(1h, before.get_token())));

    std::stop_source here;
    auto sleeping = clock.sleep(1h, here.get_token());
    here.request_stop();
    EXPECT_FALSE(sleeping.isReady()) << "nobody is resumed inside request_stop()";
    EXPECT_FALSE(await(std::move(sleeping)));

    std::stop_source elsewhere;
    auto waiting = clock.sleep(1h, elsewhere.get_token());
    std::thread([&] { elsewhere.request_stop(); }).join();
    EXPECT_FALSE(await(std::move(waiting)));

    std::stop_source both;
    auto due = clock.sleep(0ms, both.get_token());
    EXPECT_TRUE(await(std::move(due)));
    both.request_stop();
    EXPECT_LT(clock.monotonic() - start, 10s);
}

} // namespace lmp
