#include "platform/threads/ManualClock.h"

#include "platform/threads/Timer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorbel {
namespace {

using ::testing::ElementsAre;

struct ManualClockTest : ::testing::Test {
    ManualClock clock;
    std::vector<std::string> log;

    Clock::Task note(const std::string &text) {
        return [this, text] { log.push_back(text); };
    }
};

TEST_F(ManualClockTest, RunsInTimeOrderIncludingTimersSetByCallbacks) {
    clock.after(0.2, note("late"));
    clock.after(0.1, note("first of two"));
    clock.after(0.1, [&] {
        log.push_back("second of two");
        clock.post(note("posted by it"));
        clock.after(0.05, [&] { EXPECT_DOUBLE_EQ(clock.now(), 0.15); });
        clock.after(0.05, note("set by it"));
    });
    clock.post(note("posted"));
    clock.after(-1.0, note("overdue"));
    EXPECT_TRUE(log.empty()) << "nothing runs before the clock is moved";
    clock.advance(0.2);
    EXPECT_THAT(log, ElementsAre("posted", "overdue", "first of two", "second of two",
                                 "posted by it", "set by it", "late"));
}

TEST_F(ManualClockTest, BlocksOfAnyLengthAddUpExactly) {
    // A block of 441 frames at 44.1 kHz lasts exactly 10 ms, so a tick every 50 ms coincides with
    // every fifth block for a whole hour.
    int ticks = 0;
    int wrong = 0;
    clock.every(0.05, [&] { ++ticks; });
    for (int block = 1; block <= 360'000; ++block) {
        clock.advance(441 / 44'100.0);
        wrong += ticks != block / 5 ? 1 : 0;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_DOUBLE_EQ(clock.now(), 3600.0);
}

TEST_F(ManualClockTest, CancelledTimersAreSilentAlsoFromInsideTheirOwnTask) {
    const auto cancelled = clock.after(0.1, note("cancelled"));
    clock.cancel(cancelled);
    clock.cancel(cancelled);
    clock.cancel(12345);

    Timer self = Timer::repeating(clock, 0.1, [&] {
        log.push_back("tick");
        if (log.size() == 2)
            self.invalidate();
    });
    { const Timer scoped = Timer::once(clock, 0.1, note("out of scope")); }
    clock.advance(1.0);
    EXPECT_THAT(log, ElementsAre("tick", "tick"));
}

} // namespace
} // namespace quorbel
