#include "effects/EQProcessor.h"
#include "support/SineFit.h"
#include "ui/logic/DrawnCurves.h"

#include <gtest/gtest.h>
#include <span>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace quorbel {
namespace {

constexpr double sampleRate = 48000.0;

/// What a node's bands do to a sine, in dB: measured over its last half, when it has settled.
double playedDB(ParametricEqualizerNode &node, double frequencyHz) {
    constexpr std::uint32_t frames = 48000;
    std::vector<float> left(frames);
    std::vector<float> right(frames);
    const double step = 2.0 * std::numbers::pi * frequencyHz / sampleRate;
    for (std::uint32_t i = 0; i < frames; ++i)
        left[i] = right[i] = static_cast<float>(0.01 * std::sin(step * i));
    ParametricEqualizer equalizer(node.bandCount());
    for (std::size_t i = 0; i < node.bandCount(); ++i)
        equalizer.setBand(i, node.band(i));
    equalizer.prepare(sampleRate);
    equalizer.process(left.data(), right.data(), frames);
    return 20.0 *
           std::log10(
               SineFit::of(std::span(left).last(frames / 2), frequencyHz, sampleRate).amplitude /
               0.01);
}

TEST(EqualizerResponseTest, IsWhatTheNodesBandsPlay) {
    using Type = EQBand::FilterType;
    EQProcessor eq({{.frequency = 100, .gainDB = 6, .q = 0.7F, .filterType = Type::lowShelf},
                    {.frequency = 1000, .gainDB = -9, .q = 3},
                    {.frequency = 3000, .gainDB = 12, .q = 2, .bypassed = true},
                    {.frequency = 12000, .gainDB = 5, .q = 1, .filterType = Type::highShelf},
                    {.frequency = 18000, .q = 0.7F, .filterType = Type::lowPass}});
    eq.setGlobalGainDB(-4);
    // 31 points are a third of an octave apart; each is played and measured.
    const std::vector<double> drawn = equalizerResponseDB(eq.eq(), sampleRate, 31);
    for (std::size_t i = 0; i < drawn.size(); i += 3) {
        // A whole number of periods in the second half, so that nothing else leaks in.
        const double exact = 20.0 * std::pow(1000.0, static_cast<double>(i) / 30.0);
        const double whole = 2.0 * std::round(exact / 2.0);
        const double slope = std::abs(drawn[i] - drawn[i > 0 ? i - 1 : 1]);
        const double offPoint = std::abs(std::log(whole / exact)) / std::log(1000.0) * 30.0;
        EXPECT_NEAR(playedDB(eq.eq(), whole), drawn[i], 0.02 + 2.0 * slope * offPoint) << whole;
    }
}

} // namespace
} // namespace quorbel
