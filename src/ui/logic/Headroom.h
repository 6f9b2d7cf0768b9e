#pragma once

#include "effects/EQProcessor.h"
#include "engine/HeldLevels.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <string>

namespace quorbel {

/// The highest point in dB of the response from 20 Hz to 20 kHz, as it is played: equaliser and
/// tone together, with the global gain and the preset's. Above 0, a loud tone there overshoots full
/// scale. Exact to 0.01 dB.
[[nodiscard]] double highestPointDB(EQProcessor &eq, const SpatialConfig &spatial,
                                    double sampleRate);

/// By how many dB the level would have to be lower for nothing of what was heard to be limited, or
/// to clip if the limiter is off. Tenths, not negative.
[[nodiscard]] double excessDB(const HeldLevels &levels, const MixerConfig &mixer);

/// The held peaks in words: "Peak -0.3 dBFS, +0.2 dBTP"; "Peak –" before any
/// sound.
[[nodiscard]] std::string heldPeakText(const HeldLevels &levels);
/// That of the samples alone: "Peak -0.3 dBFS".
[[nodiscard]] std::string heldSamplePeakText(const HeldLevels &levels);

/// Time for which the limiter has worked: "3 s of the last minute"; empty for none.
[[nodiscard]] std::string limiterTimeText(const HeldLevels &levels);

} // namespace quorbel
