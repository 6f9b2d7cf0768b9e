#pragma once

#include "equalizer/SectionDesign.h"
#include "platform/core/StreamFormat.h"
#include "settings/records/EQBand.h"

#include <vector>

namespace quorbel {

/// The highest frequency a band is played at, in Hz, at the chain's rate.
inline constexpr double playedTopFrequencyHz = maximumBandFrequencyRatio * chainSampleRate;
/// The range of Q that is played; beyond it the nearer end is.
[[nodiscard]] double lowestPlayedQ();
[[nodiscard]] double highestPlayedQ();

/// Frequencies in Hz of `pointCount` (2 or more) points from 20 Hz to 20 kHz in equal ratios: of
/// one point, and of all.
[[nodiscard]] double audibleFrequency(std::size_t point, std::size_t pointCount);
[[nodiscard]] std::vector<double> audibleFrequencies(std::size_t pointCount);

/// A ratio of powers in dB, not below -200.
[[nodiscard]] double decibelsOfPower(double power);

/// Adds to `sumDB` the gain of one band in dB at each frequency in Hz, as the equaliser plays it:
/// that of the band's analog prototype, which the equaliser follows to 0.25 dB up to 20 kHz. A
/// bypassed band has 0. Both lists have one length.
void addBandResponseDB(const EQBand &band, const std::vector<double> &frequenciesHz,
                       std::vector<double> &sumDB);

} // namespace quorbel
