#pragma once

#include "platform/dsp/EqualizerBandSettings.h"
#include "platform/dsp/StateVariableSection.h"

#include <optional>

namespace quorbel {

/// What bands are clamped to. Gain: twelve stages of +24 dB in series still fit into 32-bit floats.
inline constexpr double minimumBandFrequencyHz = 1.0;
inline constexpr double maximumBandFrequencyRatio = 0.49; ///< of the sample rate
inline constexpr double minimumBandwidthOctaves = 0.05;
inline constexpr double maximumBandwidthOctaves = 5.0;
inline constexpr double minimumBandGainDB = -96.0;
inline constexpr double maximumBandGainDB = 24.0;

/// A gain nearer to 0 dB than this, in dB, is 0 dB: far below what a control can be set to, above
/// what arithmetic on settings leaves behind.
inline constexpr double flatGainDB = 0.0005;

/// `gainDB` within the range above; NaN is 0 dB, and so is what is flat.
[[nodiscard]] double clampedGainDB(float gainDB);

/// A band's frequency in Hz, and the Q that its bandwidth stands for, within their ranges. Not for
/// NaN.
[[nodiscard]] double clampedFrequencyHz(float frequencyHz, double sampleRate);
[[nodiscard]] double clampedQuality(float bandwidthOctaves);

/// The section for one band at `sampleRate` Hz, or none when the band is flat: bypassed, at 0 dB,
/// or with a NaN in it. Stable and finite for any settings at 8000 to 384000 Hz.
///
/// Its magnitude follows the analog prototype up to nearly half the sample rate instead of being
/// squeezed towards it as the bilinear transform does. Takes about 10 µs. [any thread but the audio
/// threads]
[[nodiscard]] std::optional<StateVariableDesign> designBand(const EqualizerBandSettings &settings,
                                                            double sampleRate);

} // namespace quorbel
