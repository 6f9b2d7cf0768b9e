#pragma once

#include "effects/cores/AnalysisRing.h"
#include "effects/cores/PowerSpectrum.h"

#include <optional>

namespace quorbel {

/// Finds where the bass of the music lies: the centre of the power between 30 and 200 Hz.
/// [analysis]
class BassTracker {
  public:
    /// In Hz, 40 to 150; nothing while there are not yet 4096 frames, or too little bass to tell.
    [[nodiscard]] std::optional<float> estimate(const AnalysisRing &ring, float sampleRate);

  private:
    PowerSpectrum spectrum_;
};

} // namespace quorbel
