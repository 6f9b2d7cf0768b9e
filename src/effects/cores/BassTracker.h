#pragma once

#include "effects/cores/AnalysisRing.h"
#include "effects/cores/PowerSpectrum.h"

#include <cstdint>
#include <optional>

namespace quorbel {

/// Measures the centre frequency of the music's bass: the centroid of the power between 30 and 200
/// Hz. [analysis, or main without a timer]
class BassTracker {
  public:
    /// Returns the centre of the 4096 frames before frame `end` of the ring, 40 to 150 Hz. Empty if
    /// frames are missing or hold too little bass.
    [[nodiscard]] std::optional<float> estimate(const AnalysisRing &ring, std::uint64_t end,
                                                float sampleRate);

  private:
    PowerSpectrum spectrum_;
};

} // namespace quorbel
