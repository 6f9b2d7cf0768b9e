#include "equalizer/SectionDesign.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorbel {
namespace {

TEST(SectionDesign, IsStableAndFiniteForAnySettings) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float values[] = {-infinity, -1e9F,  -1.0F, 0.0F,     1e-30F, 0.01F,   1.0F,
                                20.0F,     400.0F, 5e3F,  23900.0F, 1e9F,   infinity};
    for (const double sampleRate : {8000.0, 44100.0, 48000.0, 384000.0})
        for (const auto type : {EqualizerFilterType::parametric, EqualizerFilterType::lowPass,
                                EqualizerFilterType::highPass, EqualizerFilterType::lowShelf,
                                EqualizerFilterType::highShelf})
            for (const float frequency : values)
                for (const float octaves : values)
                    for (const float gain : {-infinity, -96.0F, -3.0F, 0.5F, 24.0F, 1e9F}) {
                        const auto design =
                            designBand({type, frequency, octaves, gain, false}, sampleRate);
                        ASSERT_TRUE(design);
                        // This filter form is stable if both are positive.
                        EXPECT_GT(design->cutoff, 0.0);
                        EXPECT_GT(design->damping, 0.0);
                        const SectionCoefficients section(*design);
                        for (const float value : {section.cutoff, section.feedback, section.scale,
                                                  section.direct, section.first, section.second}) {
                            EXPECT_TRUE(std::isfinite(value))
                                << frequency << " Hz, " << octaves << " octaves, " << gain << " dB";
                            EXPECT_LT(std::abs(value), 1e6F)
                                << static_cast<int>(type) << " at " << frequency << " Hz, "
                                << octaves << " octaves, " << gain << " dB, rate " << sampleRate;
                        }
                    }
}

// Neighbouring settings must give similar filters: a fit that jumps to another minimum would cause
// zipper noise while a slider moves.
TEST(SectionDesign, MovesSmoothlyWithItsSettings) {
    for (const auto type : {EqualizerFilterType::parametric, EqualizerFilterType::highShelf,
                            EqualizerFilterType::lowPass, EqualizerFilterType::highPass})
        for (const float octaves : {0.36F, 1.39F, 2.5F}) {
            double previous[3] = {};
            for (int percent = 0; percent < 532; ++percent) { // 100 Hz to 20 kHz
                const float frequency = 100.0F * std::pow(1.01F, static_cast<float>(percent));
                const auto design = designBand({type, frequency, octaves, 9.0F, false}, 48000.0);
                for (int i = 0; i < 3; ++i) {
                    const double probe[] = {1000.0, 5000.0, 15000.0};
                    const double level = 10.0 * std::log10(design->power(probe[i] / 48000.0));
                    // 1 % in frequency moves even the steepest of these slopes by less than 0.6 dB.
                    if (previous[i] != 0.0 && level > -40.0) {
                        EXPECT_LT(std::abs(level - previous[i]), 0.7)
                            << static_cast<int>(type) << " at " << frequency << " Hz";
                    }
                    previous[i] = level;
                }
            }
        }
}

} // namespace
} // namespace quorbel
