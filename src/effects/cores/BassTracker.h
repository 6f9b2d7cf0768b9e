#pragma once

#include "effects/cores/AnalysisRing.h"
#include "effects/cores/PowerSpectrum.h"

#include <cstdint>
#include <optional>

namespace quorbel {

/// Finds where the bass of the music lies: the centre of the power between 30 and 200 Hz.
/// [analysis, or main without a timer]
class BassTracker {
  public:
    /// Of the 4096 frames before frame `end` of the ring, in Hz, 40 to 150; nothing if they are not
    /// all there, or too little bass to tell.
    [[nodiscard]] std::optional<float> estimate(const AnalysisRing &ring, std::uint64_t end,
                                                float sampleRate);

  private:
    PowerSpectrum spectrum_;
};

} // namespace quorbel
