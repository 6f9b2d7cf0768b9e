#include "engine/EngineFixture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

namespace quorbel::testing {
namespace {

using ::testing::SizeIs;

class AudioEngineTest : public EngineTest {
  protected:
    /// Gain of a tone on the speakers, in dB.
    [[nodiscard]] double gainDB() {
        settle();
        return 20.0 * std::log10(toneOn("speakers") / 0.25);
    }
};

TEST_F(AudioEngineTest, SoundPassesOnceAndWithoutDelay) {
    hardware.play(countedFrames());
    start();
    EXPECT_EQ(state(), "running");
    play(5.0);
    const auto recording = heard("speakers");
    ASSERT_EQ(recording.left.size(), 468U * 512);
    // After the fade-in, flat settings are bit-exact and each frame is played in the cycle that
    // captured it.
    for (std::size_t frame = 960; frame < recording.left.size(); ++frame) {
        ASSERT_EQ(recording.left[frame], static_cast<float>(frame + 1) * countedStep) << frame;
        ASSERT_EQ(recording.right[frame], -recording.left[frame]) << frame;
    }
}

// The largest step of a 100 Hz sine of amplitude 0.25 is 0.0033; a cut would be up to 0.25.
TEST_F(AudioEngineTest, StartStopAndAnotherDeviceFadeWithoutAStep) {
    hardware.play([](double seconds, std::uint32_t) {
        return static_cast<float>(0.25 * std::cos(2.0 * std::numbers::pi * 100.0 * seconds));
    });
    const auto largestStep = [](const std::vector<float> &samples) {
        float largest = 0.0F;
        for (std::size_t i = 1; i < samples.size(); ++i)
            largest = std::max(largest, std::abs(samples[i] - samples[i - 1]));
        return largest;
    };
    constexpr float steady = 0.00328F;
    start();
    play(0.2);
    const auto beginning = heard("speakers").left;
    EXPECT_LT(std::abs(beginning.front()), steady);
    EXPECT_LT(largestStep(beginning), 1.5F * steady) << "start";

    choose("hdmi");
    play(0.4);
    const auto left = heard("speakers").left;
    EXPECT_LT(largestStep(left), 1.5F * steady) << "away from the old device";
    EXPECT_EQ(left.back(), 0.0F);
    EXPECT_LT(largestStep(heard("hdmi").left), 1.5F * steady) << "onto the new one";

    engine->stop();
    const auto ending = heard("hdmi").left;
    EXPECT_LT(largestStep(ending), 1.5F * steady) << "stop";
    EXPECT_EQ(ending.back(), 0.0F);
    EXPECT_GE(ending.size(), 960U);
}

TEST_F(AudioEngineTest, SettingsReachTheSoundLiveAndNormalSoundComesBackByItself) {
    hardware.play(sine(1000.0));
    EXPECT_NEAR(gainDB(), 0.0, 0.01);
    setBand(5, 1000.0F, 6.0F);
    SpatialConfig spatial;
    spatial.toneMidDB = -3.0F;
    engine->setSpatial(spatial);
    engine->eq().setGlobalGainDB(-2.0F);
    start();
    EXPECT_NEAR(gainDB(), 6.0 - 3.0 - 2.0, 0.01)
        << "from the first block on, and the unprocessed sound is not heard beside it";
    spatial.toneMidDB = 3.0F;
    engine->setSpatial(spatial);
    play(0.2);
    EXPECT_NEAR(gainDB(), 6.0 + 3.0 - 2.0, 0.01);
    stop();
    EXPECT_EQ(state(), "stopped");
    EXPECT_NEAR(gainDB(), 0.0, 0.01);
    expectNothingLeft();
}

TEST_F(AudioEngineTest, ComparesWithTheUnprocessedSoundAtTheSameLoudness) {
    // Cuts the louder of two tones: the bypass restores their ratio at a lower level.
    hardware.play([](double seconds, std::uint32_t) {
        const double radians = 2.0 * std::numbers::pi * seconds;
        return static_cast<float>(0.2 * std::sin(1000.0 * radians) +
                                  0.05 * std::sin(4000.0 * radians));
    });
    const auto tones = [this] {
        settle();
        play(0.2);
        const auto left = heard("speakers").left;
        return std::pair(SineFit::of(left, 1000.0, 48000.0).amplitude,
                         SineFit::of(left, 4000.0, 48000.0).amplitude);
    };
    engine->setComparable(true);
    start();
    setBand(5, 1000.0F, -12.0F);
    play(20.0);
    const auto processed = tones();
    EXPECT_NEAR(processed.first, 0.2 * 0.2512, 1e-3);

    engine->setComparing(true);
    const auto dry = tones();
    EXPECT_NEAR(dry.first / dry.second, 0.2 / 0.05, 0.01) << "nothing is processed";
    const auto power = [](const auto &pair) {
        // K weighting: +0.7 dB at 1 kHz, +3.9 dB at 4 kHz.
        return pair.first * pair.first * 1.17 + pair.second * pair.second * 2.47;
    };
    EXPECT_NEAR(10.0 * std::log10(power(dry) / power(processed)), 0.0, 0.3);

    setBand(5, 1000.0F, -6.0F);
    EXPECT_NEAR(tones().first, dry.first, 1e-3) << "settings wait";
    engine->setComparing(false);
    EXPECT_NEAR(tones().first, 0.2 * 0.5012, 1e-3);
}

TEST_F(AudioEngineTest, OneStartAtATimeAndAStopInTheMiddleWins) {
    engine->start();
    engine->start();
    engine->stop();
    clock.runPending();
    EXPECT_EQ(state(), "stopped");
    expectNothingLeft();

    // The next start is normal, although the stale one is still pending.
    engine->start();
    engine->stop();
    engine->start();
    engine->start();
    clock.runPending();
    engine->start();
    clock.runPending();
    EXPECT_EQ(state(), "running");
    EXPECT_THAT(hardware.taps(), SizeIs(1));
}

TEST_F(AudioEngineTest, TornDownWithItsOwner) {
    start();
    play(0.1);
    engine.reset();
    expectNothingLeft();
    makeEngine([](AudioUnitRegistry &) {});
    engine->start();
    engine.reset();
    clock.advance(1.0); // the posted start finds no engine
    expectNothingLeft();
}

} // namespace
} // namespace quorbel::testing
