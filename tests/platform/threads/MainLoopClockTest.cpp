#include "platform/threads/MainLoopClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>

#include <string>
#include <thread>
#include <vector>

namespace quorbel {
namespace {

using ::testing::ElementsAre;

struct MainLoopClockTest : ::testing::Test {
    int argc = 1;
    char name[5] = "test";
    char *argv[1] = {name};
    QCoreApplication application{argc, argv};
    MainLoopClock clock;

    /// Runs the loop until `done` holds; returns false after ten seconds.
    template <typename Condition> bool loopUntil(Condition done) {
        const double deadline = clock.now() + 10.0;
        while (!done() && clock.now() < deadline)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return done();
    }
};

TEST_F(MainLoopClockTest, RunsTimersInOrderNotBeforeTheirTimeAndPostedWorkFromOtherThreads) {
    std::vector<std::string> log;
    const double start = clock.now();
    double firedAt = 0.0;
    clock.after(0.03, [&] {
        firedAt = clock.now();
        log.emplace_back("later");
    });
    clock.after(0.01, [&] { log.emplace_back("sooner"); });
    const auto cancelled = clock.after(0.02, [&] { log.emplace_back("cancelled"); });
    clock.cancel(cancelled);
    EXPECT_TRUE(log.empty());
    ASSERT_TRUE(loopUntil([&] { return log.size() >= 2; }));
    EXPECT_THAT(log, ElementsAre("sooner", "later"));
    EXPECT_GE(firedAt - start, 0.03);

    const auto mainThread = std::this_thread::get_id();
    std::thread::id ranOn;
    std::thread([&] { clock.post([&] { ranOn = std::this_thread::get_id(); }); }).join();
    ASSERT_TRUE(loopUntil([&] { return ranOn != std::thread::id(); }));
    EXPECT_EQ(ranOn, mainThread);
}

TEST_F(MainLoopClockTest, RepeatingTimerKeepsItsRateOnAverageAndStopsItself) {
    int ticks = 0;
    const double start = clock.now();
    Clock::TimerID timer = 0;
    timer = clock.every(1.0 / 300, [&] {
        if (++ticks == 30)
            clock.cancel(timer);
    });
    ASSERT_TRUE(loopUntil([&] { return ticks >= 30; }));
    // Checks only the lower bound of 100 ms: a loaded machine may exceed even the 120 ms that
    // rounding every 3.33 ms up to 4 ms would take.
    EXPECT_GE(clock.now() - start, 0.0999);
    bool later = false;
    clock.after(0.02, [&] { later = true; });
    ASSERT_TRUE(loopUntil([&] { return later; }));
    EXPECT_EQ(ticks, 30);
}

} // namespace
} // namespace quorbel
