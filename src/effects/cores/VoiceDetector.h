#pragma once

#include "effects/cores/AnalysisRing.h"
#include "effects/cores/PowerSpectrum.h"

#include <cstdint>
#include <optional>

namespace quorbel {

/// Estimates the share of the sound's power in the range of voices. [analysis, or main without a
/// timer]
class VoiceDetector {
  public:
    /// Returns the power from 300 to 4000 Hz over that from 60 to 10 000 Hz, for the 4096 frames
    /// before frame `end` of the ring. Empty if frames are missing or hold too little sound.
    [[nodiscard]] std::optional<float> voiceRatio(const AnalysisRing &ring, std::uint64_t end,
                                                  float sampleRate);

    /// 0 for a ratio of 0.3 or less, 1 for 0.6 or more, linear in between.
    [[nodiscard]] static float confidenceFor(float ratio) noexcept;

  private:
    PowerSpectrum spectrum_;
};

} // namespace quorbel
