#pragma once

#include "effects/cores/Kept.h"
#include "effects/cores/Leveller.h"

#include <cstdint>

namespace quorbel {

/// Two gains in one pass: a leveller that steers the level towards a target, and a trim that glides
/// to a target of its own.
class AutoGainCore {
  public:
    AutoGainCore() noexcept { prepare(48'000.0F, 1.0F); }

    /// `sampleRate` in Hz; The trim starts at `trimTarget` (linear). Not while processing.
    void prepare(float sampleRate, float trimTarget) noexcept;

    /// Whether the trim has to be applied: true from the first change of its target until it is
    /// exactly 1 again. In 32 bits the glide never gets there; only `prepare` does. [render]
    [[nodiscard]] bool trimsTo(float trimTarget) const noexcept {
        return trimTarget != 1.0F || trim_ != 1.0F;
    }

    /// Applies the trim alone, in place; keeps the level measured so far. [render]
    void trim(float *left, float *right, std::uint32_t frames, float trimTarget) noexcept;

    /// Applies leveller and trim in place. The leveller starts at `gainDB`; returns its gain at the
    /// end, in dB. Below −45 dBFS the gain is held. Finishes `crossfeed` before it, in the same
    /// pass, if that is not null. [render]
    float level(float *left, float *right, std::uint32_t frames, float gainDB, float targetDB,
                float trimTarget, CrossfeedBlock *crossfeed = nullptr) noexcept;

  private:
    Kept<float, float> target_; ///< linear, by dB
    LevellerSettings leveller_; // its targets are those of the last block
    float trim_ = 1.0F;
    float meanSquare_ = 0.0F;
};

} // namespace quorbel
