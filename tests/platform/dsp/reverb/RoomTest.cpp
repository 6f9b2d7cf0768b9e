#include "platform/dsp/reverb/RoomMeasurement.h"
#include "reverb/Reverb.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>

namespace quorbel {
namespace {

struct Target {
    RoomModel model;
    const char *name;
    double decaySeconds;
    double trebleRatio;
    double preDelayMilliseconds;
    double denseMilliseconds;

    friend void PrintTo(const Target &target, std::ostream *out) { *out << target.name; }
};

/// Target values of each room, stated independently of the design.
const Target targets[] = {
    {RoomModel::smallRoom, "smallRoom", 0.45, 0.70, 3, 40},
    {RoomModel::mediumRoom, "mediumRoom", 0.8, 0.65, 8, 60},
    {RoomModel::largeRoom, "largeRoom", 1.3, 0.60, 14, 80},
    {RoomModel::mediumHall, "mediumHall", 1.9, 0.55, 20, 100},
    {RoomModel::largeHall, "largeHall", 2.8, 0.50, 28, 120},
    {RoomModel::cathedral, "cathedral", 5.5, 0.40, 40, 150},
    {RoomModel::plate, "plate", 1.6, 0.80, 0, 25},
};

class RoomTest : public ::testing::TestWithParam<Target> {
  protected:
    static constexpr double sampleRate = 48000.0;

    [[nodiscard]] static std::size_t frames(double seconds) {
        return static_cast<std::size_t>(seconds * sampleRate);
    }

    /// Returns the room's response to `sound`, without the direct sound.
    [[nodiscard]] static Stereo room(Stereo sound) {
        Reverb reverb;
        reverb.setRoomModel(GetParam().model);
        reverb.setMixPercent(100.0F);
        reverb.prepare(sampleRate);
        return inBlocks(std::move(sound), 512, [&](float *left, float *right, std::uint32_t count) {
            reverb.process(left, right, count);
        });
    }

    [[nodiscard]] static Stereo response(float left, float right) {
        Stereo impulse(frames(1.3 * GetParam().decaySeconds + 0.3));
        impulse.left[0] = left;
        impulse.right[0] = right;
        return room(impulse);
    }
};

INSTANTIATE_TEST_SUITE_P(All, RoomTest, ::testing::ValuesIn(targets),
                         [](const auto &room) { return std::string(room.param.name); });

TEST_P(RoomTest, DecaysInItsOwnTime) {
    const Stereo stereo = response(1.0F, 1.0F);
    for (const auto &channel : {stereo.left, stereo.right}) {
        const double mid = testing::decayTime(channel, sampleRate, 1000.0, 1.0);
        EXPECT_NEAR(mid, GetParam().decaySeconds, 0.10 * GetParam().decaySeconds);
        // The decay time varies within the band, so the bandwidth has a small effect.
        for (const double octaves : {1.0, 1.0 / 3.0}) {
            const double ratio = testing::decayTime(channel, sampleRate, 8000.0, octaves) / mid;
            EXPECT_NEAR(ratio, GetParam().trebleRatio, 0.15 * GetParam().trebleRatio) << octaves;
        }
    }
}

TEST_P(RoomTest, BeginsWithAReflectionAfterThePreDelay) {
    for (const auto &[left, right] : {std::pair{1.0F, 0.0F}, {0.0F, 1.0F}}) {
        const Stereo sound = response(left, right);
        const auto &own = left > 0.0F ? sound.left : sound.right;
        const auto first =
            std::ranges::find_if(own, [](float sample) { return sample != 0.0F; }) - own.begin();
        EXPECT_EQ(first, std::lround(GetParam().preDelayMilliseconds * sampleRate / 1000.0));
        const float peak =
            std::abs(std::ranges::max(own, {}, [](float sample) { return std::abs(sample); }));
        EXPECT_GT(std::abs(own[static_cast<std::size_t>(first)]), 0.1F * peak) << "a clear onset";
    }
}

TEST_P(RoomTest, IsDenseInTimeAndStaysSo) {
    for (const auto &[left, right] : {std::pair{1.0F, 1.0F}, {1.0F, 0.0F}, {0.0F, 1.0F}}) {
        const Stereo sound = response(left, right);
        for (const auto &channel : {sound.left, sound.right}) {
            const std::vector<double> density =
                testing::echoDensity(channel, sampleRate, frames(0.001));
            const auto bound = density.begin() + std::lround(GetParam().denseMilliseconds);
            EXPECT_GE(*std::max_element(density.begin(), bound + 1), 0.9);
            // A window of Gaussian noise measures 1, with a standard deviation of 0.06.
            const auto end = bound + std::lround(500.0 * GetParam().decaySeconds);
            const double mean = std::accumulate(bound, end, 0.0) / static_cast<double>(end - bound);
            EXPECT_NEAR(mean, 1.0, 0.05);
            EXPECT_GE(*std::min_element(bound, end), 0.6);
        }
    }
}

TEST_P(RoomTest, TailIsDecorrelated) {
    const Stereo sound = response(1.0F, 1.0F);
    const std::size_t tail = frames(0.1);
    EXPECT_LT(std::abs(testing::correlation(sound, tail, sound.frames())), 0.3);
    // Checks also each piece of the tail; a shorter piece would give no reliable estimate.
    const std::size_t piece = std::max(frames(0.1), frames(0.1 * GetParam().decaySeconds));
    for (std::size_t begin = tail; begin < frames(0.6 * GetParam().decaySeconds); begin += piece)
        EXPECT_LT(std::abs(testing::correlation(sound, begin, begin + piece)), 0.3);
}

TEST_P(RoomTest, TailDoesNotRing) {
    // The autocorrelation of Gaussian noise of this length stays within a few percent; a metallic
    // or fluttering room has peaks at its loop lengths.
    const Stereo sound = response(1.0F, 1.0F);
    const std::size_t begin = frames(0.15);
    const std::size_t end = begin + frames(0.6 * GetParam().decaySeconds);
    std::vector<double> tail(end - begin); // with the decay compensated
    for (std::size_t i = 0; i < tail.size(); ++i)
        tail[i] =
            static_cast<double>(sound.left[begin + i]) *
            std::pow(10.0, 3.0 * static_cast<double>(i) / sampleRate / GetParam().decaySeconds);
    const auto product = [&](std::size_t lag) {
        double sum = 0.0;
        for (std::size_t i = lag; i < tail.size(); ++i)
            sum += tail[i] * tail[i - lag];
        return sum / static_cast<double>(tail.size() - lag);
    };
    double worst = 0.0;
    for (std::size_t lag = frames(0.002); lag < frames(0.15); ++lag)
        worst = std::max(worst, std::abs(product(lag)));
    EXPECT_LT(worst / product(0), 0.3);
}

TEST_P(RoomTest, PinkNoiseKeepsItsLoudness) {
    const std::vector<float> one = testing::pinkNoise(frames(12.0), 1);
    const std::vector<float> other = testing::pinkNoise(frames(12.0), 2);
    Stereo sides(one.size());
    sides.left = one;
    const auto pair = [](const auto &left, const auto &right) {
        Stereo sound;
        sound.left = left;
        sound.right = right;
        return sound;
    };
    for (const Stereo &noise : {pair(one, one), pair(one, other), sides})
        EXPECT_NEAR(testing::loudness(room(noise)), testing::loudness(noise), 2.0);
}

TEST_P(RoomTest, PassesNoDirectCurrent) {
    Stereo constant(frames(10.0));
    std::ranges::fill(constant.left, 1.0F);
    std::ranges::fill(constant.right, -0.5F);
    const Stereo sound = room(constant);
    const auto settled = static_cast<std::ptrdiff_t>(frames(9.0));
    for (const auto &channel : {sound.left, sound.right})
        for (auto sample = channel.begin() + settled; sample != channel.end(); ++sample)
            ASSERT_LT(std::abs(*sample), 1e-3F);
}

} // namespace
} // namespace quorbel
