#pragma once

#include "equalizer/EqualizerBandSettings.h"
#include "equalizer/StateVariableSection.h"

#include <optional>

namespace quorbel {

/// Ranges to which bands are clamped. Gain: twelve stages of +24 dB in series still fit into 32-bit
/// floats.
inline constexpr double minimumBandFrequencyHz = 1.0;
inline constexpr double maximumBandFrequencyRatio = 0.49; ///< of the sample rate
inline constexpr double minimumBandwidthOctaves = 0.05;
inline constexpr double maximumBandwidthOctaves = 5.0;
inline constexpr double minimumBandGainDB = -96.0;
inline constexpr double maximumBandGainDB = 24.0;

/// Smaller gains, in dB, count as 0 dB: far below the step of a control, above the rounding errors
/// of arithmetic on settings.
inline constexpr double flatGainDB = 0.0005;

/// Returns `gainDB` clamped to the range above; 0 for NaN and for flat gains.
[[nodiscard]] double clampedGainDB(float gainDB);

/// A band's frequency in Hz and the Q of its bandwidth, clamped to their ranges. Not for NaN.
[[nodiscard]] double clampedFrequencyHz(float frequencyHz, double sampleRate);
[[nodiscard]] double clampedQuality(float bandwidthOctaves);

/// Designs the section of one band at `sampleRate` Hz; empty if the band is flat: bypassed, at 0
/// dB, or with a NaN. Stable and finite for any settings at 8000 to 384000 Hz.
///
/// Its magnitude follows the analog prototype up to nearly half the sample rate, without the
/// bilinear transform's compression towards it. Takes about 10 µs. [any thread but the audio
/// threads]
[[nodiscard]] std::optional<StateVariableDesign> designBand(const EqualizerBandSettings &settings,
                                                            double sampleRate);

} // namespace quorbel
