#pragma once

#include "effects/TestSounds.h"
#include "effects/UnitHarness.h"
#include "platform/threads/ManualClock.h"
#include "platform/threads/SerialQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

namespace quorbel {

/// Returns re² + im² of bin `k` over the last 4096 of `samples`, by definition: twice the Fourier
/// sum under the window 0.8165·(1 − cos(2πn/N)).
inline double naivePower(const std::vector<double> &samples, std::size_t k) {
    constexpr std::size_t points = 4096;
    const std::size_t begin = samples.size() - points;
    const double step = 2.0 * std::numbers::pi / points;
    // Repeated multiplication of the rotation factor costs 1e-12 over 4096 steps.
    std::complex<double> factor = 1.0;
    const std::complex<double> turn = std::polar(1.0, -step * static_cast<double>(k));
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < points; ++n, factor *= turn)
        sum +=
            0.8165 * (1.0 - std::cos(step * static_cast<double>(n))) * samples[begin + n] * factor;
    return std::norm(2.0 * sum);
}

/// A unit that analyses its input 0.1 s after its allocation and then every 0.05 s.
template <typename Unit, const ComponentDescription &description>
class AnalysingUnitTest : public ::testing::Test {
  protected:
    UnitHarness make(double sampleRate = 48'000.0) {
        UnitHarness unit(std::make_unique<Unit>(description, 0, clockedSerialQueues(clock)));
        EXPECT_EQ(unit.allocate(sampleRate), statusOK);
        return unit;
    }
    static float readout(UnitHarness &unit) {
        return dynamic_cast<EffectUnit &>(unit.unit()).readout();
    }
    /// Plays in blocks and advances the clock by their duration, as file rendering does.
    Stereo playInTime(UnitHarness &unit, Stereo sound, std::size_t blockFrames = 480) {
        return inBlocks(std::move(sound), blockFrames,
                        [&](float *left, float *right, std::uint32_t frames) {
                            AudioBufferList view(left, right);
                            unit.render(view, frames);
                            clock.advance(frames / 48'000.0);
                        });
    }
    /// Plays `frames` of music in whole blocks and compares each read-out with `estimate` of the
    /// mono sound before each analysis. Returns the number of analyses.
    template <typename Estimate>
    int followSchedule(std::size_t blockFrames, std::size_t frames, double tolerance,
                       const Estimate &estimate) {
        UnitHarness unit = make();
        const Stereo music = modelSounds().at("music");
        std::vector<double> heard;
        double expected = readout(unit);
        int estimates = 0;
        for (std::size_t end = blockFrames; end <= frames; end += blockFrames) {
            Stereo block(blockFrames);
            for (std::size_t i = 0; i < blockFrames; ++i) {
                block.left[i] = music.left[end - blockFrames + i];
                block.right[i] = music.right[end - blockFrames + i];
                heard.push_back((double{block.left[i]} + double{block.right[i]}) / 2.0);
            }
            playInTime(unit, std::move(block), blockFrames);
            for (; end >= static_cast<std::size_t>(2400 * (estimates + 2)); ++estimates)
                expected = estimate(heard);
            EXPECT_NEAR(readout(unit), expected, tolerance) << "after frame " << end;
        }
        return estimates;
    }

    ManualClock clock;
};

} // namespace quorbel
