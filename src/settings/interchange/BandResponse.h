#pragma once

#include "equalizer/SectionDesign.h"
#include "platform/core/StreamFormat.h"
#include "settings/records/EQBand.h"

#include <vector>

namespace quorbel {

/// Highest played frequency of a band in Hz, at the chain's rate.
inline constexpr double playedTopFrequencyHz = maximumBandFrequencyRatio * chainSampleRate;
/// The played range of Q; values beyond it are clamped.
[[nodiscard]] double lowestPlayedQ();
[[nodiscard]] double highestPlayedQ();

/// Frequencies in Hz of one or all of `pointCount` (2 or more) points, spaced logarithmically from
/// 20 Hz to 20 kHz.
[[nodiscard]] double audibleFrequency(std::size_t point, std::size_t pointCount);
[[nodiscard]] std::vector<double> audibleFrequencies(std::size_t pointCount);

/// A power ratio in dB, -200 or more.
[[nodiscard]] double decibelsOfPower(double power);

/// Adds one band's gain in dB at each frequency in Hz to `sumDB`, a list of the same length; 0 for
/// a bypassed band. Uses the analog prototype, which the equaliser follows to 0.25 dB up to 20 kHz.
void addBandResponseDB(const EQBand &band, const std::vector<double> &frequenciesHz,
                       std::vector<double> &sumDB);

} // namespace quorbel
