#pragma once

#include "equalizer/ParametricEqualizerNode.h"
#include "settings/records/EQBand.h"

#include <array>
#include <cstddef>
#include <vector>

namespace quorbel {

inline constexpr std::size_t displayPointCount = 90;

/// Response in dB at `displayFrequency(0)` to `displayFrequency(89)`.
using DisplayResponse = std::array<double, displayPointCount>;

/// 20 Hz to 20 kHz in equal ratios.
[[nodiscard]] double displayFrequency(std::size_t point);

/// Simplified response for the equaliser's screen: sums one formula in f/f0 and Q per band that is
/// not bypassed, with Q at least 0.1. The played response is `equalizerResponseDB`.
[[nodiscard]] DisplayResponse displayResponse(const std::vector<EQBand> &bands);

/// Signed value of largest magnitude; the first of equal ones.
[[nodiscard]] double peakDB(const DisplayResponse &response);

/// Height of a value in dB between the bottom (0) and the top (1) of a range with 0 dB in the
/// middle.
[[nodiscard]] double drawingHeight(double valueDB, double lowDB, double highDB);

/// Heights of all points of a response.
[[nodiscard]] std::vector<double> curveValues(const DisplayResponse &response, double lowDB,
                                              double highDB);

/// Magnitude response in dB of the sections that the equaliser node runs at `sampleRate` Hz,
/// without its global gain. `pointCount` (2 or more) frequencies from 20 Hz to 20 kHz in equal
/// ratios. Not below -200.
[[nodiscard]] std::vector<double> equalizerResponseDB(const ParametricEqualizerNode &node,
                                                      double sampleRate, std::size_t pointCount);

/// Returns the levels with unmeasured bands interpolated linearly between their nearest measured
/// neighbours. Both lists have the same length.
[[nodiscard]] std::vector<double> filledLevels(std::vector<double> levels,
                                               const std::vector<bool> &isMeasured);

} // namespace quorbel
