#include "effects/EffectComponents.h"
#include "effects/TestSounds.h"
#include "effects/UnitHarness.h"
#include "effects/units/LimiterUnit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>

namespace quorbel {
namespace {

/// A naive limiter: queues instead of rings, double precision.
class LimiterModel {
  public:
    explicit LimiterModel(double sampleRate)
        : lookahead_(static_cast<std::size_t>(std::max(8.0, std::round(sampleRate * 0.0013)))),
          attack_(1.0 - std::exp(-4.0 / static_cast<double>(lookahead_))),
          release_(1.0 - std::exp(-1.0 / (sampleRate * 0.05))), held_(lookahead_, {0.0, 0.0}) {}

    Stereo play(const Stereo &sound, double thresholdDB) {
        const double threshold = std::pow(10.0, thresholdDB / 20.0);
        Stereo result(sound.frames());
        for (std::size_t i = 0; i < sound.frames(); ++i) {
            held_.push_back({double{sound.left[i]}, double{sound.right[i]}});
            double peak = 0.0;
            for (const auto &[left, right] : held_)
                peak = std::max({peak, std::abs(left), std::abs(right)});
            const double target = peak > threshold ? threshold / peak : 1.0;
            gain_ += (target - gain_) * (target < gain_ ? attack_ : release_);
            const auto [left, right] = held_.front();
            held_.pop_front();
            result.left[i] = static_cast<float>(std::clamp(left * gain_, -threshold, threshold));
            result.right[i] = static_cast<float>(std::clamp(right * gain_, -threshold, threshold));
        }
        return result;
    }

  private:
    std::size_t lookahead_;
    double attack_;
    double release_;
    std::deque<std::pair<double, double>> held_;
    double gain_ = 1.0;
};

UnitHarness makeLimiter(double sampleRate = 48'000.0) {
    UnitHarness limiter(std::make_unique<LimiterUnit>(limiterDescription, 0));
    EXPECT_EQ(limiter.allocate(sampleRate), statusOK);
    return limiter;
}

double peakOf(const Stereo &sound) { return difference(sound, Stereo(sound.frames())); }

TEST(LimiterTest, MatchesTheModel) {
    for (const auto &[name, sound] : modelSounds()) {
        for (const double rate : {4'000.0, 44'100.0, 48'000.0, 96'000.0}) {
            for (const float threshold : {-12.0F, -3.0F, -0.3F, 0.0F}) {
                UnitHarness limiter = makeLimiter(rate);
                limiter.set(LimiterUnit::threshold, threshold);
                const Stereo result = limiter.play(sound, 480);
                const Stereo model = LimiterModel(rate).play(sound, double{threshold});
                // The 32-bit gain stops within 1e-4 of its target: its steps round to zero.
                ASSERT_LT(difference(result, model), 1.2e-4)
                    << name << " at " << rate << " Hz, threshold " << threshold;
            }
        }
    }
}

TEST(LimiterTest, NoOutputSampleExceedsTheThreshold) {
    for (const float threshold : {-12.0F, -6.0F, -0.3F, 0.0F}) {
        UnitHarness limiter = makeLimiter();
        limiter.set(LimiterUnit::threshold, threshold);
        const float ceiling = std::pow(10.0F, threshold / 20.0F);
        for (const float level : {1.0F, 30.0F, 1e6F, 3e38F, 1e-3F})
            EXPECT_LE(peakOf(limiter.play(noise(4096, level))), double{ceiling});
    }
}

TEST(LimiterTest, QuietSoundIsOnlyDelayedAndTheReductionIsATrueZero) {
    UnitHarness limiter = makeLimiter();
    const auto &readout = dynamic_cast<EffectUnit &>(limiter.unit());
    EXPECT_NEAR(limiter.unit().latency(), 0.0013, 1e-5);
    const Stereo sound = noise(4096, 0.5F);
    const Stereo result = limiter.play(sound);
    for (std::size_t i = 62; i < sound.frames(); ++i)
        ASSERT_EQ(result.right[i], sound.right[i - 62]);
    EXPECT_EQ(readout.readout(), 0.0F);
    EXPECT_FALSE(std::signbit(readout.readout()));

    limiter.set(LimiterUnit::threshold, -12.0F).play(sine(1000.0, 48'000, 1.0));
    EXPECT_NEAR(readout.readout(), 12.0F, 0.1F);
    limiter.node().reset();
    EXPECT_EQ(readout.readout(), 0.0F) << "playback pauses";
    limiter.play(sine(1000.0, 4800, 1.0));
    limiter.set(LimiterUnit::enabled, 0.0F).play(noise(64));
    EXPECT_EQ(readout.readout(), 0.0F);
}

TEST(LimiterTest, SwitchedOffItAddsNoDelayAndSwitchedOnItFirstPlaysItsOldFrames) {
    UnitHarness limiter = makeLimiter();
    limiter.set(LimiterUnit::threshold, 0.0F);
    const Stereo before = noise(640, 0.5F, 1);
    limiter.play(before);
    limiter.set(LimiterUnit::enabled, 0.49F);
    EXPECT_EQ(limiter.play(noise(640, 0.5F, 2)), noise(640, 0.5F, 2));

    limiter.set(LimiterUnit::enabled, 0.5F);
    const Stereo after = noise(640, 0.5F, 3);
    const Stereo result = limiter.play(after);
    for (std::size_t i = 0; i < 62; ++i)
        ASSERT_EQ(result.left[i], before.left[640 - 62 + i]);
    for (std::size_t i = 62; i < 640; ++i)
        ASSERT_EQ(result.left[i], after.left[i - 62]);
}

} // namespace
} // namespace quorbel
