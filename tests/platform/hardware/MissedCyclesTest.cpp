#include "platform/hardware/pipewire/MissedCycles.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

TEST(MissedCycles, AreThoseOfOneClockWithoutAPause) {
    MissedCycles missed;
    const auto at = [&](std::uint64_t position, std::uint64_t duration = 256,
                        std::uint32_t id = 1) {
        spa_io_clock clock{};
        clock.id = id;
        clock.rate = {1, 48000};
        clock.position = position;
        clock.duration = duration;
        return missed.since(clock);
    };
    EXPECT_EQ(at(5000), 0U) << "the first cycle";
    EXPECT_EQ(at(5256), 0U);
    EXPECT_EQ(at(6024), 2U);
    EXPECT_EQ(at(6024), 0U) << "two runs in one cycle";
    EXPECT_EQ(at(6280, 1024), 0U) << "a longer cycle";
    EXPECT_EQ(at(8328, 1024), 1U);
    EXPECT_EQ(at(9352 + 48000), 0U) << "the clock has jumped";
    EXPECT_EQ(at(100, 256, 2), 0U) << "another clock";
    EXPECT_EQ(at(356, 0, 2), 0U);
    EXPECT_GT(at(400, 0, 2), 0U) << "a clock that does not say how long its cycles are";
    missed.pause();
    EXPECT_EQ(at(5000, 256, 2), 0U);
    EXPECT_EQ(at(5512, 256, 2), 1U);
}

} // namespace
} // namespace quorbel
