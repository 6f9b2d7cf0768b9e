#pragma once

#include "effects/cores/Kept.h"
#include "effects/cores/Leveller.h"

#include <cstdint>

namespace quorbel {

/// Two gains in one pass: a leveller that steers the sound's level towards a target, and a trim
/// that glides to its own.
class AutoGainCore {
  public:
    AutoGainCore() noexcept { prepare(48'000.0F, 1.0F); }

    /// `sampleRate` in Hz; `trimTarget` (linear) is where the trim stands at once. Not while
    /// processing.
    void prepare(float sampleRate, float trimTarget) noexcept;

    /// Whether the trim has to be applied: true from the first change of its target until it has
    /// come to exactly 1 again, which in 32 bits only `prepare` brings about. [render]
    [[nodiscard]] bool trimsTo(float trimTarget) const noexcept {
        return trimTarget != 1.0F || trim_ != 1.0F;
    }

    /// The trim alone, in place; the level measured so far is kept. [render]
    void trim(float *left, float *right, std::uint32_t frames, float trimTarget) noexcept;

    /// Leveller and trim, in place. The leveller goes on from a gain of `gainDB`; returned is the
    /// gain in dB at the end. Below −45 dBFS the gain is held. [render]
    float level(float *left, float *right, std::uint32_t frames, float gainDB, float targetDB,
                float trimTarget) noexcept;

  private:
    Kept<float, float> target_; ///< linear, by dB
    LevellerSettings leveller_; // its targets are those of the last block
    float trim_ = 1.0F;
    float meanSquare_ = 0.0F;
};

} // namespace quorbel
