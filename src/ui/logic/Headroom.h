#pragma once

#include "effects/EQProcessor.h"
#include "engine/HeldLevels.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <string>

namespace quorbel {

/// Maximum in dB of the played response from 20 Hz to 20 kHz: equaliser and tone, with the global
/// and the preset gain. Above 0, a loud tone at that frequency overshoots full scale. Accurate to
/// 0.01 dB.
[[nodiscard]] double highestPointDB(EQProcessor &eq, const SpatialConfig &spatial,
                                    double sampleRate);

/// Level reduction in dB that would have avoided all limiting so far, or all clipping if the
/// limiter is off. In tenths, not negative.
[[nodiscard]] double excessDB(const HeldLevels &levels, const MixerConfig &mixer);

/// Text of the held peaks: "Peak -0.3 dBFS, +0.2 dBTP"; "Peak –" before any sound.
[[nodiscard]] std::string heldPeakText(const HeldLevels &levels);
/// Text of the sample peak alone: "Peak -0.3 dBFS".
[[nodiscard]] std::string heldSamplePeakText(const HeldLevels &levels);

/// Active time of the limiter: "3 s of the last minute"; empty if 0.
[[nodiscard]] std::string limiterTimeText(const HeldLevels &levels);

} // namespace quorbel
