#include "equalizer/ParametricEqualizer.h"

#include "equalizer/SectionDesign.h"
#include "platform/dsp/SpectrumMeasurement.h"
#include "support/Stereo.h"

#include <gtest/gtest.h>
#include <span>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <functional>
#include <vector>

namespace quorbel {
namespace {

using testing::powerSpectrum;

constexpr double rate = 48000.0;
constexpr std::array<float, 10> defaultFrequencies{31.5F,   63.0F,   125.0F,  250.0F,  500.0F,
                                                   1000.0F, 2000.0F, 4000.0F, 8000.0F, 16000.0F};

float octavesOf(double q) {
    return static_cast<float>(2.0 / std::log(2.0) * std::asinh(1.0 / (2.0 * q)));
}

EqualizerBandSettings band(EqualizerFilterType type, float frequency, double q, float gainDB) {
    return {type, frequency, octavesOf(q), gainDB, false};
}

/// Plays `sound` on the left and its negative on the right, in blocks of `block` frames. Returns
/// the left and expects the right to be its exact negative.
std::vector<float> play(ParametricEqualizer &equalizer, const std::vector<float> &sound,
                        std::size_t block = 512) {
    Stereo both;
    both.left = both.right = sound;
    std::ranges::transform(sound, both.right.begin(), std::negate<>());
    both = inBlocks(std::move(both), block, [&](float *left, float *right, std::uint32_t frames) {
        equalizer.process(left, right, frames);
    });
    EXPECT_TRUE(std::ranges::equal(both.left, both.right, {}, {}, std::negate<>()))
        << "the channels differ";
    return both.left;
}

/// Level in dB of the analog prototype filters (audio EQ cookbook).
double prototypeDB(EqualizerFilterType type, double frequency, double f0, double q, double gainDB) {
    const std::complex<double> s(0.0, frequency / f0);
    const double a = std::pow(10.0, gainDB / 40.0);
    const double r = std::sqrt(a) / q;
    std::complex<double> h;
    switch (type) {
    case EqualizerFilterType::parametric:
        h = (s * s + s * (a / q) + 1.0) / (s * s + s / (a * q) + 1.0);
        break;
    case EqualizerFilterType::lowShelf:
        h = a * (s * s + r * s + a) / (a * s * s + r * s + 1.0);
        break;
    case EqualizerFilterType::highShelf:
        h = a * (a * s * s + r * s + 1.0) / (s * s + r * s + a);
        break;
    case EqualizerFilterType::lowPass:
        h = 1.0 / (s * s + s / q + 1.0);
        break;
    case EqualizerFilterType::highPass:
        h = s * s / (s * s + s / q + 1.0);
        break;
    }
    return 20.0 * std::log10(std::abs(h));
}

/// Returns the level of one band's response in dB for each bin of 48000/65536 Hz.
std::vector<double> measuredLevels(const EqualizerBandSettings &settings) {
    ParametricEqualizer equalizer(1);
    equalizer.prepare(rate);
    equalizer.setBand(0, settings);
    std::vector<float> impulse(65536);
    impulse[0] = 1.0F;
    const std::vector<float> response = play(equalizer, impulse);
    std::vector<double> levels =
        powerSpectrum(std::vector<double>(response.begin(), response.end()));
    for (double &level : levels)
        level = 10.0 * std::log10(level);
    return levels;
}

struct LargestErrors {
    double below10k = 0.0;
    double below20k = 0.0;
    double whereLoud = 0.0; ///< up to 18 kHz, where the prototype is above -40 dB
};

LargestErrors errorsOf(EqualizerFilterType type, float f0, double q, float gainDB) {
    const std::vector<double> levels = measuredLevels(band(type, f0, q, gainDB));
    LargestErrors result;
    for (std::size_t bin = 7; bin < levels.size(); ++bin) {
        const double frequency = static_cast<double>(bin) * rate / 65536.0;
        const double expected = prototypeDB(type, frequency, f0, q, gainDB);
        const double error = std::abs(levels[bin] - expected);
        if (frequency <= 10000.0)
            result.below10k = std::max(result.below10k, error);
        if (frequency <= 20000.0)
            result.below20k = std::max(result.below20k, error);
        if (frequency <= 18000.0 && expected > -40.0)
            result.whereLoud = std::max(result.whereLoud, error);
    }
    return result;
}

class EqualizerAccuracy : public ::testing::TestWithParam<EqualizerFilterType> {};

TEST_P(EqualizerAccuracy, FollowsTheAnalogPrototype) {
    const EqualizerFilterType type = GetParam();
    for (const float f0 : defaultFrequencies)
        for (const double q : {0.5, 1.0, 2.0, 4.0})
            for (const float gainDB : {-12.0F, -6.0F, -3.0F, 3.0F, 6.0F, 12.0F}) {
                const LargestErrors errors = errorsOf(type, f0, q, gainDB);
                const auto where = ::testing::Message()
                                   << f0 << " Hz, Q " << q << ", " << gainDB << " dB";
                if (hasGain(type)) {
                    EXPECT_LE(errors.below10k, 0.1) << where;
                    EXPECT_LE(errors.below20k, 0.5) << where;
                } else {
                    EXPECT_LE(errors.whereLoud, 0.5) << where;
                    break; // low-pass and high-pass have no gain
                }
            }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, EqualizerAccuracy,
                         ::testing::Values(EqualizerFilterType::parametric,
                                           EqualizerFilterType::lowShelf,
                                           EqualizerFilterType::highShelf,
                                           EqualizerFilterType::lowPass,
                                           EqualizerFilterType::highPass));

TEST(ParametricEqualizer, IsBitExactWhenFlat) {
    ParametricEqualizer equalizer(10);
    equalizer.prepare(rate);
    for (std::size_t i = 0; i < 10; ++i)
        equalizer.setBand(i,
                          band(EqualizerFilterType::parametric, defaultFrequencies[i], 1.0, 0.0F));
    equalizer.setBand(3, {EqualizerFilterType::lowPass, 500.0F, 1.0F, 0.0F, true});
    const std::vector<float> sound = noise(20000).left;
    EXPECT_EQ(play(equalizer, sound), sound);

    // Bit-exact again once the glide or fade back to flat has ended.
    equalizer.setBand(0, band(EqualizerFilterType::lowShelf, 100.0F, 1.0, 12.0F));
    equalizer.setBand(3, {EqualizerFilterType::lowPass, 500.0F, 1.0F, 0.0F, false});
    equalizer.setGlobalGainDB(-6.0F);
    EXPECT_NE(play(equalizer, sound), sound);
    equalizer.setBand(0, band(EqualizerFilterType::lowShelf, 100.0F, 1.0, 0.0F));
    equalizer.setBand(3, {EqualizerFilterType::lowPass, 500.0F, 1.0F, 0.0F, true});
    equalizer.setGlobalGainDB(0.0F);
    const auto glideFrames = 2500; // a warm-up of 30 ms and a fade of 20 ms
    play(equalizer, noise(glideFrames).left);
    EXPECT_EQ(play(equalizer, sound), sound);
}

TEST(ParametricEqualizer, SoundsTheSameInBlocksOfAnyLength) {
    const std::vector<float> sound = noise(12000).left;
    const auto playInBlocksOf = [&](std::size_t block) {
        ParametricEqualizer equalizer(10);
        equalizer.prepare(rate);
        for (std::size_t i = 0; i < 9; ++i)
            equalizer.setBand(i, band(EqualizerFilterType::parametric, defaultFrequencies[i], 1.0,
                                      i % 2 == 0 ? 5.0F : -4.0F));
        std::vector<float> result = play(equalizer, {sound.begin(), sound.begin() + 3000}, block);
        const auto go = [&](std::ptrdiff_t from, std::ptrdiff_t to) {
            const auto part = play(equalizer, {sound.begin() + from, sound.begin() + to}, block);
            result.insert(result.end(), part.begin(), part.end());
        };
        equalizer.setBand(4, band(EqualizerFilterType::parametric, 500.0F, 1.0, -9.0F)); // glides
        go(3000, 3400);
        equalizer.setBand(9, band(EqualizerFilterType::highPass, 60.0F, 1.0, 0.0F)); // fades
        go(3400, 4000);
        equalizer.setBand(5, band(EqualizerFilterType::parametric, 1000.0F, 1.0, 0.0F)); // waits
        equalizer.setGlobalGainDB(-5.0F);
        go(4000, 12000);
        return result;
    };
    const std::vector<float> whole = playInBlocksOf(12000);
    for (const std::size_t block : {1U, 7U, 64U, 100U, 512U, 4096U})
        EXPECT_EQ(playInBlocksOf(block), whole) << "blocks of " << block;
}

TEST(ParametricEqualizer, TwoInOnePassEqualSeparatePasses) {
    const std::vector<float> sound = noise(24000).left;
    const auto playBoth = [&](bool inOnePass) {
        ParametricEqualizer first(10);
        ParametricEqualizer second(3);
        first.prepare(rate);
        second.prepare(rate);
        std::vector<float> left = sound;
        std::vector<float> right = sound;
        const auto go = [&](std::size_t from, std::size_t to) {
            for (std::size_t start = from; start < to; start += 100) {
                float *const l = left.data() + start;
                float *const r = right.data() + start;
                if (inOnePass) {
                    first.takeSettings();
                    second.takeSettings();
                    ParametricEqualizer::renderInSeries(first, second, l, r, 100);
                } else {
                    first.process(l, r, 100);
                    second.process(l, r, 100);
                }
            }
        };
        go(0, 2000); // flat: untouched
        first.setGlobalGainDB(-7.0F);
        second.setBand(0, band(EqualizerFilterType::lowShelf, 100.0F, 0.7, 6.0F));
        go(2000, 6000); // a gain before the only section
        for (std::size_t i = 0; i < 10; ++i)
            first.setBand(i, band(EqualizerFilterType::parametric, defaultFrequencies[i], 1.0,
                                  i % 2 == 0 ? 5.0F : -4.0F));
        go(6000, 12000); // a gain between sections
        first.setBand(3, band(EqualizerFilterType::highPass, 60.0F, 1.0, 0.0F)); // fades
        second.setGlobalGainDB(3.0F);
        go(12000, 18000);
        second.setBand(2, band(EqualizerFilterType::highShelf, 5000.0F, 0.7, -6.0F));
        go(18000, 24000);
        return left;
    };
    const std::vector<float> together = playBoth(true);
    EXPECT_TRUE(std::equal(sound.begin(), sound.begin() + 2000, together.begin()));
    const std::vector<float> apart = playBoth(false);
    EXPECT_LT(errorDB(together, apart), -120.0);
}

/// Plays `sound` through a cascade of the same designs in double precision.
std::vector<double> playInDouble(std::span<const EqualizerBandSettings> bands,
                                 std::span<const float> sound) {
    std::vector<double> result(sound.begin(), sound.end());
    for (const auto &settings : bands) {
        const StateVariableDesign d = *designBand(settings, rate);
        const double a = 1.0 / (1.0 + d.cutoff * (d.cutoff + d.damping));
        double first = 0.0;
        double second = 0.0;
        for (double &sample : result) {
            const double highpass = a * (sample - (d.cutoff + d.damping) * first - second);
            const double bandpass = first + d.cutoff * highpass;
            const double lowpass = second + d.cutoff * bandpass;
            first = bandpass + d.cutoff * highpass;
            second = lowpass + d.cutoff * bandpass;
            sample = d.high * highpass + d.band * bandpass + d.low * lowpass;
        }
    }
    return result;
}

TEST(ParametricEqualizer, KeepsRoundingErrorsLowWithTenLowBands) {
    for (const float gain : {6.0F, -6.0F}) {
        std::vector<EqualizerBandSettings> bands;
        ParametricEqualizer equalizer(10);
        equalizer.prepare(rate);
        for (std::size_t i = 0; i < 10; ++i) {
            const auto frequency = 20.0F + 5.0F * static_cast<float>(i);
            bands.push_back(
                band(EqualizerFilterType::parametric, frequency, 1.0, i % 2 == 0 ? gain : -gain));
            equalizer.setBand(i, bands.back());
        }
        const std::vector<float> white = noise(96000).left;
        const std::vector<float> low = sine(50.0, 96000).left;
        const double whiteError = errorDB(play(equalizer, white), playInDouble(bands, white));
        equalizer.reset();
        const double lowError = errorDB(play(equalizer, low), playInDouble(bands, low));
        EXPECT_LT(whiteError, -115.0);
        EXPECT_LT(lowError, -110.0);
    }
}

} // namespace
} // namespace quorbel
