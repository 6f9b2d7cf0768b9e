#pragma once

#include "platform/dsp/SectionDesign.h"
#include "settings/records/EQBand.h"

#include <vector>

namespace quorbel {

/// The highest frequency a band is played at, in Hz, at the chain's rate.
inline constexpr double playedTopFrequencyHz = maximumBandFrequencyRatio * 48000.0;
/// The range of Q that is played; beyond it the nearer end is.
[[nodiscard]] double lowestPlayedQ();
[[nodiscard]] double highestPlayedQ();

/// `pointCount` (2 or more) frequencies in Hz from 20 Hz to 20 kHz in equal ratios.
[[nodiscard]] std::vector<double> audibleFrequencies(std::size_t pointCount);

/// The gain of one band in dB at a frequency in Hz, as the equaliser plays it: that of the band's
/// analog prototype, which the equaliser follows to 0.25 dB up to 20 kHz. A bypassed band has 0.
/// Not below -200.
[[nodiscard]] double bandResponseDB(const EQBand &band, double frequencyHz);

/// The same for every frequency, added to `sumDB`, which is as long.
void addBandResponseDB(const EQBand &band, const std::vector<double> &frequenciesHz,
                       std::vector<double> &sumDB);

} // namespace quorbel
