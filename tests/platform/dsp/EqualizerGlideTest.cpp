#include "equalizer/ParametricEqualizer.h"
#include "platform/dsp/SpectrumMeasurement.h"
#include "support/Stereo.h"

#include <gtest/gtest.h>
#include <span>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace quorbel {
namespace {

using testing::energyOutsideDB;

constexpr std::size_t second = 48000;
constexpr double glideRate = 48000.0;

EqualizerBandSettings band(EqualizerFilterType type, float frequency, float octaves, float gainDB,
                           bool bypass = false) {
    return {type, frequency, octaves, gainDB, bypass};
}

/// Plays 0.5 s before a change and 1.5 s after it: long enough for the slowest band to settle.
std::vector<float> playThrough(ParametricEqualizer &equalizer, std::vector<float> sound,
                               const std::function<void()> &change) {
    constexpr std::size_t block = 256;
    std::vector<float> right = sound;
    for (std::size_t start = 0; start + block <= sound.size(); start += block) {
        if (start == 94 * block)
            change();
        equalizer.process(sound.data() + start, right.data() + start, block);
    }
    return sound;
}

/// Returns the level of the loudest 10 ms in dB.
double loudestWindowDB(std::span<const float> sound) {
    constexpr std::size_t window = 480;
    double loudest = 0.0;
    double sum = 0.0;
    const auto power = [&](std::size_t i) { return std::pow(static_cast<double>(sound[i]), 2); };
    for (std::size_t i = 0; i < sound.size(); ++i) {
        sum += power(i);
        if (i >= window)
            sum -= power(i - window);
        loudest = std::max(loudest, sum);
    }
    return 10.0 * std::log10(loudest / window);
}

struct Change {
    std::string name;
    EqualizerBandSettings before;
    EqualizerBandSettings after;
};

class EqualizerChange : public ::testing::TestWithParam<double> {};

TEST_P(EqualizerChange, NeitherClicksNorJumpsUp) {
    using enum EqualizerFilterType;
    const std::vector<Change> changes{
        {"gain up", band(parametric, 1000, 1.4F, -12), band(parametric, 1000, 1.4F, 12)},
        {"gain down", band(parametric, 1000, 1.4F, 12), band(parametric, 1000, 1.4F, -12)},
        {"narrow gain", band(parametric, 250, 0.36F, -12), band(parametric, 250, 0.36F, 12)},
        {"from flat", band(parametric, 500, 1.4F, 0), band(parametric, 500, 1.4F, 12)},
        {"to flat", band(parametric, 500, 1.4F, 12), band(parametric, 500, 1.4F, 0)},
        {"bypass on", band(lowShelf, 300, 1.9F, 12), band(lowShelf, 300, 1.9F, 12, true)},
        {"bypass off", band(highShelf, 800, 1.9F, -12, true), band(highShelf, 800, 1.9F, -12)},
        {"bypass a pass", band(highPass, 2000, 1.4F, 0), band(highPass, 2000, 1.4F, 0, true)},
        {"engage a pass", band(lowPass, 300, 1.4F, 0, true), band(lowPass, 300, 1.4F, 0)},
        {"low shelf gain", band(lowShelf, 100, 1.9F, -12), band(lowShelf, 100, 1.9F, 12)},
        {"frequency far", band(parametric, 100, 1.4F, 12), band(parametric, 8000, 1.4F, 12)},
        {"cut moves", band(parametric, 1100, 1.4F, -12), band(parametric, 900, 1.4F, -12)},
        {"frequency near", band(parametric, 950, 1.4F, 12), band(parametric, 1060, 1.4F, 12)},
        {"narrow moves", band(parametric, 900, 0.36F, 12), band(parametric, 1100, 0.36F, 12)},
        {"bandwidth", band(parametric, 1000, 0.2F, 12), band(parametric, 1000, 4.0F, 12)},
        {"bandwidth step", band(parametric, 1000, 0.1F, 12), band(parametric, 1000, 0.14F, 12)},
        {"narrow resonance", band(parametric, 1000, 0.1F, 12), band(parametric, 1000, 0.1F, -12)},
        {"narrow from flat", band(parametric, 1000, 0.05F, 0), band(parametric, 1000, 0.05F, 12)},
        {"narrow pass", band(highPass, 1000, 0.1F, 0), band(highPass, 1000, 0.14F, 0)},
        {"bell to shelf", band(parametric, 500, 1.4F, 12), band(lowShelf, 500, 1.4F, 12)},
        {"shelf to shelf", band(lowShelf, 1000, 1.9F, 12), band(highShelf, 1000, 1.9F, -12)},
        {"pass to pass", band(lowPass, 1000, 1.4F, 0), band(highPass, 1000, 1.4F, 0)},
        {"pass sweeps", band(lowPass, 200, 1.4F, 0), band(lowPass, 12000, 1.4F, 0)},
        {"ringing pass", band(lowPass, 900, 0.36F, 0), band(highPass, 1100, 0.36F, 0)},
    };
    const double frequency = GetParam();
    for (const Change &change : changes) {
        ParametricEqualizer equalizer(1);
        equalizer.setBand(0, change.before);
        equalizer.prepare(glideRate);
        const std::vector<float> sound =
            playThrough(equalizer, sine(frequency, 2 * second, 0.25).left,
                        [&] { equalizer.setBand(0, change.after); });
        const std::span<const float> all(sound);
        const auto before = all.subspan(18000, 6000);
        const auto during = all.subspan(24000, 48000);
        const auto after = all.subspan(84000, 11000);
        EXPECT_LE(largestStep(during), 1.5F * std::max(largestStep(before), largestStep(after)))
            << change.name;
        EXPECT_LE(loudestWindowDB(during),
                  0.5 + std::max(loudestWindowDB(before), loudestWindowDB(after)))
            << change.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Sines, EqualizerChange,
                         ::testing::Values(60.0, 100.0, 250.0, 500.0, 1000.0, 3150.0, 10000.0));

// Neighbouring bands swap boost and cut: the transition must not add up the boosts of both ends.
TEST(EqualizerGlide, ManyBandsAtOnceStayBetweenBothEnds) {
    ParametricEqualizer equalizer(10);
    const auto apply = [&](float sign, float shift) {
        for (std::size_t i = 0; i < 10; ++i)
            equalizer.setBand(i, band(EqualizerFilterType::parametric,
                                      (800.0F + 50.0F * static_cast<float>(i)) * shift, 1.4F,
                                      i % 2 == 0 ? sign : -sign));
    };
    for (const float shift : {1.0F, 1.7F}) { // gliding, fading
        apply(12.0F, 1.0F);
        equalizer.prepare(glideRate);
        const std::vector<float> sound = playThrough(equalizer, sine(1000.0, 2 * second, 0.05).left,
                                                     [&] { apply(-12.0F, shift); });
        const std::span<const float> all(sound);
        const double ends = std::max(loudestWindowDB(all.subspan(18000, 6000)),
                                     loudestWindowDB(all.subspan(84000, 11000)));
        EXPECT_LE(loudestWindowDB(all.subspan(24000, 48000)), ends + 0.5) << "shift " << shift;
    }
}

TEST(EqualizerGlide, TheGlobalGainMovesWithoutAStep) {
    ParametricEqualizer equalizer(1);
    equalizer.setGlobalGainDB(-12.0F);
    equalizer.prepare(glideRate);
    const std::vector<float> sound = playThrough(equalizer, sine(100.0, 2 * second, 0.25).left,
                                                 [&] { equalizer.setGlobalGainDB(6.0F); });
    const std::span<const float> all(sound);
    EXPECT_LE(largestStep(all.subspan(24000, 48000)), 1.5F * largestStep(all.subspan(84000)));
}

/// Returns the energy outside 900 to 1100 Hz, in dB, of a 1 kHz sine at -12 dBFS. A band sweeps
/// from -12 to +12 dB in one second, with half a second of rest on both sides. Its gain changes
/// every `updateFrames`, at the first block that begins then or later.
double sweepSpuriousDB(EqualizerFilterType type, float frequency, std::size_t updateFrames,
                       std::size_t block) {
    ParametricEqualizer equalizer(1);
    const auto set = [&](double gainDB) {
        equalizer.setBand(0, band(type, frequency, 1.39F, static_cast<float>(gainDB)));
    };
    set(-12.0);
    equalizer.prepare(glideRate);
    std::vector<float> left = sine(1000.0, 2 * second, std::pow(10.0, -12.0 / 20.0)).left;
    std::vector<float> right = left;
    std::size_t nextUpdate = second / 2;
    for (std::size_t start = 0; start < left.size(); start += block) {
        if (start >= nextUpdate) {
            const std::size_t updates = (start - second / 2) / updateFrames;
            const auto elapsedFrames = static_cast<double>(updates * updateFrames);
            set(std::min(-12.0 + 24.0 * elapsedFrames / glideRate, 12.0));
            nextUpdate += updateFrames;
        }
        const std::size_t frames = std::min(block, left.size() - start);
        equalizer.process(left.data() + start, right.data() + start,
                          static_cast<std::uint32_t>(frames));
    }
    // Measures the sweep alone, because the loud end would mask spurious energy.
    return energyOutsideDB(std::span(left).subspan(second / 2, second), 900.0, 1100.0, glideRate);
}

TEST(EqualizerGlide, SweepsWithoutZipperNoise) {
    using enum EqualizerFilterType;
    for (const std::size_t update : {480U, 512U})
        for (const std::size_t block : {64U, 441U, 512U})
            for (const auto &[type, frequency] :
                 {std::pair{parametric, 1000.0F}, {parametric, 700.0F}, {lowShelf, 1500.0F}})
                EXPECT_LT(sweepSpuriousDB(type, frequency, update, block), -80.0)
                    << "update " << update << ", block " << block << ", " << frequency << " Hz";
}

} // namespace
} // namespace quorbel
