#pragma once

#include "effects/cores/Leveller.h"
#include "effects/cores/Memoized.h"

#include <cstdint>

namespace quorbel {

/// Applies two gains in one pass: a leveller that steers the level towards a target, and a trim
/// that glides to its own target.
class AutoGainCore {
  public:
    AutoGainCore() noexcept { prepare(48'000.0F, 1.0F); }

    /// `sampleRate` in Hz; the trim starts at `trimTarget` (linear). Not while processing.
    void prepare(float sampleRate, float trimTarget) noexcept;

    /// True while the trim or its target differs from 1. Rounding keeps a glide from ever reaching
    /// 1 exactly; only `prepare` does. [render]
    [[nodiscard]] bool isTrimActive(float trimTarget) const noexcept {
        return trimTarget != 1.0F || trim_ != 1.0F;
    }

    /// Applies only the trim, in place; keeps the measured level. [render]
    void trim(float *left, float *right, std::uint32_t frames, float trimTarget) noexcept;

    /// Applies leveller and trim in place. The leveller starts at `gainDB`; returns its gain at the
    /// end, in dB. Below −45 dBFS the gain is held. Finishes `crossfeed` first, in the same pass,
    /// if not null. [render]
    float level(float *left, float *right, std::uint32_t frames, float gainDB, float targetDB,
                float trimTarget, CrossfeedBlock *crossfeed = nullptr) noexcept;

  private:
    Memoized<float, float> target_; ///< linear, by dB
    LevellerSettings leveller_;     // with the last block's targets
    float trim_ = 1.0F;
    float meanSquare_ = 0.0F;
};

} // namespace quorbel
