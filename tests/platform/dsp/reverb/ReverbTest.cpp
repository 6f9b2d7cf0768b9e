#include "reverb/Reverb.h"

#include "platform/dsp/reverb/RoomMeasurement.h"
#include "support/EveryVectorTarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace quorbel {
namespace {

Stereo pink(std::size_t frames, unsigned seed = 7) {
    Stereo sound;
    sound.left = testing::pinkNoise(frames, seed);
    sound.right = testing::pinkNoise(frames, seed + 1);
    return sound;
}

Stereo through(Reverb &reverb, Stereo sound, std::size_t block = 512) {
    return inBlocks(std::move(sound), block, [&](float *left, float *right, std::uint32_t frames) {
        reverb.process(left, right, frames);
    });
}

double power(const std::vector<float> &samples, std::size_t first, std::size_t last) {
    double sum = 0.0;
    for (std::size_t i = first; i < last; ++i)
        sum += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
    return sum / static_cast<double>(last - first);
}

class ReverbTest : public ::testing::Test {
  protected:
    Stereo rendered(Stereo sound, std::size_t block = 512) {
        return through(reverb_, std::move(sound), block);
    }

    /// Prepares the reverb after the settings, so that no transition runs.
    void begin(RoomModel model, float mix, double sampleRate = 48000.0) {
        reverb_.setRoomModel(model);
        reverb_.setMixPercent(mix);
        reverb_.prepare(sampleRate);
    }

    Reverb reverb_;
};

class ReverbOnTarget : public EveryVectorTarget {};

TEST_P(ReverbOnTarget, EqualsThePlainCodeForAnyBlockLengths) {
    for (const auto &[sampleRate, model] : {std::pair{8000.0, RoomModel::smallRoom},
                                            {48000.0, RoomModel::cathedral},
                                            {48000.0, RoomModel::plate},
                                            {384000.0, RoomModel::plate}}) {
        const auto rendered = [&, rate = sampleRate, room = model](ReverbTank::Code code,
                                                                   std::size_t block) {
            Reverb reverb(code);
            reverb.setRoomModel(room);
            reverb.setMixPercent(40.0F);
            reverb.prepare(rate);
            return through(reverb, pink(40000), block);
        };
        const Stereo expected = rendered(ReverbTank::Code::plain, 40000);
        for (const std::size_t block : {1UL, 7UL, 33UL, 441UL, 512UL, 8192UL})
            EXPECT_EQ(rendered(ReverbTank::Code::vector, block), expected)
                << sampleRate << " Hz, " << block;
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, ReverbOnTarget, ::testing::ValuesIn(ReverbOnTarget::compiled()),
                         ReverbOnTarget::nameOf);

TEST_F(ReverbTest, AMixOfZeroIsBitExact) {
    begin(RoomModel::largeHall, 0.0F);
    const Stereo sound = pink(20000);
    EXPECT_EQ(rendered(sound), sound);
    // Bit-exact again once the glide from another mix has ended.
    reverb_.setMixPercent(50.0F);
    rendered(sound);
    reverb_.setMixPercent(0.0F);
    rendered(sound);
    EXPECT_EQ(rendered(sound), sound);
}

TEST_F(ReverbTest, SilencedRoomsComeBackWithoutOldSound) {
    begin(RoomModel::cathedral, 100.0F);
    rendered(pink(48000));
    reverb_.setMixPercent(0.0F);
    rendered(Stereo(9600));
    reverb_.setMixPercent(100.0F);
    const Stereo silence = rendered(Stereo(48000));
    EXPECT_EQ(power(silence.left, 0, 48000), 0.0);
    const Stereo heard = rendered(pink(48000));
    EXPECT_GT(power(heard.left, 24000, 48000), 0.0);
}

TEST_F(ReverbTest, LoudnessStaysOverTheMix) {
    const Stereo sound = pink(480000);
    for (const float mix : {10.0F, 25.0F, 50.0F, 75.0F}) {
        begin(RoomModel::mediumHall, mix);
        EXPECT_NEAR(testing::loudness(rendered(sound)), testing::loudness(sound), 1.5) << mix;
    }
}

TEST_F(ReverbTest, ANewRoomReplacesTheOldOne) {
    begin(RoomModel::cathedral, 100.0F);
    rendered(pink(96000));
    reverb_.setRoomModel(RoomModel::smallRoom);
    rendered(pink(24000)); // the fade takes 150 ms
    const Stereo tail = rendered(Stereo(48000));
    // One second after the sound, the small room has decayed by over 100 dB, the cathedral by 11.
    EXPECT_LT(power(tail.left, 43200, 48000), 1e-9 * power(tail.left, 0, 4800));

    // The last of several rapid changes wins.
    for (const RoomModel model :
         {RoomModel::plate, RoomModel::mediumHall, RoomModel::smallRoom, RoomModel::cathedral}) {
        reverb_.setRoomModel(model);
        rendered(pink(64));
    }
    rendered(pink(96000));
    const Stereo later = rendered(Stereo(48000));
    EXPECT_GT(power(later.left, 43200, 48000), 1e-3 * power(later.left, 0, 4800));
}

/// Measures the largest sample-to-sample step of a 100 Hz sine at -12 dBFS.
class ReverbGlideTest : public ReverbTest {
  protected:
    Stereo sine(std::size_t frames) {
        Stereo sound(frames);
        for (std::size_t i = 0; i < frames; ++i, ++played_) {
            const double phase =
                2.0 * std::numbers::pi * 100.0 * static_cast<double>(played_ % 480) / 48000.0;
            sound.left[i] = sound.right[i] = 0.25F * static_cast<float>(std::sin(phase));
        }
        return sound;
    }
    /// Returns the largest step of both channels in the next `frames` frames, in blocks of 64.
    float largestStep(std::size_t frames) {
        const Stereo sound = rendered(sine(frames), 64);
        float largest = 0.0F;
        for (std::size_t i = 0; i < frames; ++i) {
            if (hasLast_)
                largest = std::max({largest, std::abs(sound.left[i] - lastLeft_),
                                    std::abs(sound.right[i] - lastRight_)});
            lastLeft_ = sound.left[i];
            lastRight_ = sound.right[i];
            hasLast_ = true;
        }
        return largest;
    }
    /// Expects `change` to raise the largest step of the two steady states by at most half.
    template <typename Change> void expectSmooth(const char *what, Change change) {
        const float before = largestStep(4800);
        change();
        const float during = largestStep(24000);
        largestStep(12 * 48000); // until the longest room is steady
        const float after = largestStep(4800);
        EXPECT_LE(during, 1.5F * std::max(before, after)) << what;
    }

  private:
    std::size_t played_ = 0;
    float lastLeft_ = 0.0F;
    float lastRight_ = 0.0F;
    bool hasLast_ = false;
};

TEST_F(ReverbGlideTest, MixChangesHaveNoCorners) {
    for (const RoomModel model : allRoomModels) {
        begin(model, 0.0F);
        largestStep(48000);
        for (const float mix : {100.0F, 0.0F, 15.0F, 80.0F, 30.0F, 0.0F})
            expectSmooth("mix", [&] { reverb_.setMixPercent(mix); });
        // Drags the mix: a new value every 480 frames (10 ms).
        expectSmooth("drag", [&] {
            for (int i = 0; i <= 100; ++i) {
                reverb_.setMixPercent(static_cast<float>(i));
                EXPECT_LE(largestStep(480), 1.5F * 0.25F * 0.01309F * 3.0F);
            }
        });
    }
}

TEST_F(ReverbGlideTest, RoomChangesHaveNoCorners) {
    for (const float mix : {30.0F, 100.0F}) {
        begin(RoomModel::smallRoom, mix);
        largestStep(10 * 48000);
        for (const RoomModel model : allRoomModels)
            expectSmooth("room", [&] { reverb_.setRoomModel(model); });
    }
}

TEST_F(ReverbTest, StaysFiniteAtEveryRateForAnyInput) {
    constexpr float huge = std::numeric_limits<float>::max();
    const float poison[] = {std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(),
                            -huge,
                            huge,
                            1e30F,
                            1e-40F};
    for (const double sampleRate : {8000.0, 11025.0, 22050.0, 44100.0, 88200.0, 192000.0, 384000.0})
        for (const RoomModel model : allRoomModels) {
            begin(model, 100.0F, sampleRate);
            Stereo sound = pink(20000);
            for (std::size_t i = 0; i < std::size(poison); ++i)
                sound.left[100 + 7 * i] = sound.right[3000 + i] = poison[i];
            const Stereo result = rendered(sound, 441);
            for (std::size_t i = 4000; i < result.frames(); ++i)
                ASSERT_TRUE(std::isfinite(result.left[i]) && std::isfinite(result.right[i]))
                    << sampleRate << " Hz, frame " << i;
        }
}

TEST_F(ReverbTest, RateChangesNeitherDecayNorLevel) {
    for (const double sampleRate : {44100.0, 96000.0, 192000.0}) {
        begin(RoomModel::mediumHall, 100.0F, sampleRate);
        Stereo impulse(static_cast<std::size_t>(2.8 * sampleRate));
        impulse.left[0] = impulse.right[0] = 1.0F;
        const Stereo response = rendered(impulse);
        EXPECT_NEAR(testing::decayTime(response.left, sampleRate, 1000.0, 1.0), 1.9, 0.19);
        EXPECT_NEAR(testing::decayTime(response.left, sampleRate, 8000.0, 1.0 / 3.0), 1.9 * 0.55,
                    0.15 * 1.9 * 0.55);
        const double energy =
            power(response.left, 0, response.frames()) * static_cast<double>(response.frames());
        EXPECT_NEAR(10.0 * std::log10(energy), 0.0, 2.0);
    }
}

TEST_F(ReverbTest, ResetForgetsTheSound) {
    begin(RoomModel::cathedral, 100.0F);
    const Stereo sound = pink(10000);
    const Stereo first = rendered(sound);
    reverb_.reset();
    EXPECT_EQ(rendered(sound), first);
}

} // namespace
} // namespace quorbel
