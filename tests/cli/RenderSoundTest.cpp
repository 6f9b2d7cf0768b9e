#include "cli/CliTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace quorbel {
namespace {

class RenderSound : public CliTest {
  protected:
    /// Renders `in` with extra arguments and returns the output.
    [[nodiscard]] Sound rendered(const Sound &in, std::vector<std::string> arguments = {}) const {
        file("in.wav", in);
        arguments.insert(arguments.begin(), "render");
        arguments.insert(arguments.end(), {"in.wav", "out.wav"});
        const Result result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.errors, "");
        return sound(path("out.wav"));
    }

    static Persisted busySettings() {
        Persisted settings = flatSettings();
        for (std::size_t band = 0; band < settings.bands.size(); ++band)
            settings.bands[band].gainDB = band % 2 == 0 ? 6.0F : -4.5F;
        settings.eqGlobalGainDB = -3.0F;
        settings.spatial.toneBassDB = 4.0F;
        settings.spatial.toneTrebleDB = -2.0F;
        return settings;
    }
};

// Long enough that its first parts leave memory before its last parts are rendered.
TEST_F(RenderSound, FlatSettingsGiveALongSoundBack) {
    file("flat.json", flatSettings());
    const Sound mono = noise(3'000'001, 48000, 1);
    const Sound both = rendered(mono, {"--settings", "flat.json"});
    EXPECT_EQ(both.sampleRate, 48000);
    ASSERT_EQ(both.channels, 2);
    ASSERT_EQ(both.frames(), mono.frames());
    for (std::size_t frame = 0; frame < mono.frames(); ++frame) {
        ASSERT_EQ(both.at(frame, 0), mono.samples[frame]) << frame;
        ASSERT_EQ(both.at(frame, 1), mono.samples[frame]) << frame;
    }
}

// A resampler delay error of a fraction of a frame would change samples by several percent.
TEST_F(RenderSound, ConversionKeepsDurationAndPositionsAtAnyRate) {
    file("flat.json", flatSettings());
    for (const int rate : {8000, 11025, 22050, 32000, 44100, 48000, 88200, 96000, 192000}) {
        SCOPED_TRACE(rate);
        const auto radians = [](std::size_t frame, double ofRate) {
            return 2.0 * std::numbers::pi * 997.0 * static_cast<double>(frame) / ofRate;
        };
        for (const std::size_t frames : {1, 2, 999, 44100}) {
            Sound in{rate, 2, {}};
            for (std::size_t frame = 0; frame < frames; ++frame)
                for (const double value :
                     {std::sin(radians(frame, rate)), std::cos(radians(frame, rate))})
                    in.samples.push_back(static_cast<float>(0.5 * value));
            // The limiter, on by default, must not change the length by its delay.
            const bool isPlaceJudged = frames > 4000;
            const Sound out =
                isPlaceJudged ? rendered(in, {"--settings", "flat.json"}) : rendered(in);
            EXPECT_EQ(out.sampleRate, 48000);
            ASSERT_EQ(out.frames(), static_cast<std::size_t>(std::llround(
                                        static_cast<double>(frames) * 48000.0 / rate)));
            for (std::size_t frame = 2000; isPlaceJudged && frame + 2000 < out.frames(); ++frame) {
                ASSERT_NEAR(out.at(frame, 0), 0.5 * std::sin(radians(frame, 48000.0)), 1e-4)
                    << frame;
                ASSERT_NEAR(out.at(frame, 1), 0.5 * std::cos(radians(frame, 48000.0)), 1e-4)
                    << frame;
            }
        }
    }
}

TEST_F(RenderSound, NonFiniteSamplesArePlayedAsZeroAndCounted) {
    for (const int rate : {48000, 44100}) {
        Sound in = noise(9000, rate);
        in.samples[200] = std::numeric_limits<float>::quiet_NaN();
        in.samples[201] = std::numeric_limits<float>::infinity();
        in.samples[9001] = -std::numeric_limits<float>::infinity();
        file("in.wav", in);
        file("busy.json", busySettings());
        const Result result = run({"render", "--settings", "busy.json", "in.wav", "out.wav"});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.errors, testing::StartsWith("in.wav: 2 frames held samples"));
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1);
        const Sound out = sound(path("out.wav"));
        EXPECT_TRUE(std::all_of(out.samples.begin(), out.samples.end(),
                                [](float sample) { return std::isfinite(sample); }));
    }
}

TEST_F(RenderSound, TheMetersFollowTheSoundEveryTenthOfASecond) {
    Sound in = noise(48000);
    in.samples[2 * 30000] = std::numeric_limits<float>::quiet_NaN();
    file("in.wav", in);
    Persisted loud = flatSettings();
    loud.eqGlobalGainDB = 12.0F;
    loud.mixer->limiterEnabled = true;
    file("loud.json", loud);
    ASSERT_EQ(
        run({"render", "--settings", "loud.json", "--meters", "m.csv", "in.wav", "out.wav"}).status,
        0);

    const std::string table = bytes(path("m.csv"));
    EXPECT_THAT(table,
                testing::StartsWith("seconds,limiterReductionDB,autoGainDB,"
                                    "bassTrackedFrequency,voiceConfidence,replacedFrames\n0.1,"));
    // The last block ends at 1 s; 30000 frames are 0.625 s.
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 11);
    EXPECT_THAT(table, testing::ContainsRegex("\n0.6,[^\n]*,0\n0.7,[^\n]*,1\n"));
    // Peaks at 0.5 raised by 12 dB, held at -0.3 dBFS: 6.28 dB.
    EXPECT_THAT(table, testing::ContainsRegex("\n0.5,6.2[78][0-9]*,0,"));

    expectRefusal({"render", "--meters", "in.wav", "in.wav", "new.wav"},
                  "in.wav: is the same file");
    expectRefusal({"render", "--meters", "new.wav", "in.wav", "new.wav"},
                  "new.wav: is the same file");
    expectRefusal({"render", "--meters", "no/m.csv", "in.wav", "new.wav"},
                  "no/m.csv: cannot be written");
}

} // namespace
} // namespace quorbel
