#pragma once

#include "equalizer/ParametricEqualizerNode.h"
#include "settings/records/EQBand.h"

#include <array>
#include <cstddef>
#include <vector>

namespace quorbel {

inline constexpr std::size_t displayPointCount = 90;

/// A response in dB at `displayFrequency(0)` to `displayFrequency(89)`.
using DisplayResponse = std::array<double, displayPointCount>;

/// 20 Hz to 20 kHz in equal ratios.
[[nodiscard]] double displayFrequency(std::size_t point);

/// The response as the equaliser's screen draws it: each band's share follows from a simple formula
/// in f/f0 and Q that shows the band's purpose. The equaliser plays `equalizerResponseDB`. Bypassed
/// bands have no share, a Q below 0.1 counts as 0.1.
[[nodiscard]] DisplayResponse displayResponse(const std::vector<EQBand> &bands);

/// The value of largest magnitude, with its sign; of equal ones the first.
[[nodiscard]] double peakDB(const DisplayResponse &response);

/// Height of a value in dB between the bottom (0) and the top (1) of a range with 0 dB in the
/// middle.
[[nodiscard]] double drawingHeight(double valueDB, double lowDB, double highDB);

/// The heights of a response.
[[nodiscard]] std::vector<double> curveValues(const DisplayResponse &response, double lowDB,
                                              double highDB);

/// Magnitude response in dB of the sections that the equaliser node runs at `sampleRate` Hz,
/// without its global gain. `pointCount` (2 or more) frequencies from 20 Hz to 20 kHz in equal
/// ratios. Not below -200.
[[nodiscard]] std::vector<double> equalizerResponseDB(const ParametricEqualizerNode &node,
                                                      double sampleRate, std::size_t pointCount);

/// Levels for drawing: a band that is not measured is interpolated linearly between its nearest
/// measured neighbours. Both lists have one length.
[[nodiscard]] std::vector<double> filledLevels(std::vector<double> levels,
                                               const std::vector<bool> &isMeasured);

} // namespace quorbel
