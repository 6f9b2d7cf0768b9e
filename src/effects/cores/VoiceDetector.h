#pragma once

#include "effects/cores/AnalysisRing.h"
#include "effects/cores/PowerSpectrum.h"

#include <cstdint>
#include <optional>

namespace quorbel {

/// Judges how much of the sound lies where voices lie. [analysis, or main
/// without a timer]
class VoiceDetector {
  public:
    /// The power between 300 and 4000 Hz by that between 60 and 10 000 Hz, of the 4096 frames
    /// before frame `end` of the ring; nothing if they are not all there, or too little sound to
    /// tell.
    [[nodiscard]] std::optional<float> voiceRatio(const AnalysisRing &ring, std::uint64_t end,
                                                  float sampleRate);

    /// 0 for a ratio of 0.3 or less, 1 for 0.6 or more, linear in between.
    [[nodiscard]] static float confidenceFor(float ratio) noexcept;

  private:
    PowerSpectrum spectrum_;
};

} // namespace quorbel
