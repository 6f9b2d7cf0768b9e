#pragma once

#include "effects/cores/Memoized.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// Stereo peak limiter with 1.3 ms of look-ahead: the delay lets the gain fall before a peak. No
/// output sample exceeds the threshold.
class LookaheadLimiterCore {
  public:
    /// Starts from silence and unity gain. `sampleRate` in Hz. Throws std::bad_alloc and leaves the
    /// limiter unprepared. Not while processing.
    void prepare(float sampleRate);

    /// Resets to silence and unity gain.
    void clear() noexcept;

    /// Limits `frameCount` frames in place to ± `thresholdLin` (linear, above 0). Does nothing
    /// before `prepare`. [render]
    void process(float *left, float *right, std::uint32_t frameCount, float thresholdLin) noexcept;

    /// Delay in frames.
    [[nodiscard]] std::size_t lookahead() const { return lookahead_; }

    /// Largest reduction of the last block, in dB, never negative.
    [[nodiscard]] float gainReductionDB() const { return gainReductionDB_; }

  private:
    void processBlock(float *left, float *right, std::uint32_t count, float thresholdLin,
                      float &smallestGain) noexcept;

    std::size_t lookahead_ = 0;
    // Each line holds the last `lookahead_` frames and room for a block of new ones; empty before
    // `prepare`. A peak is the larger magnitude of both channels.
    std::vector<float> delayL_;
    std::vector<float> delayR_;
    std::vector<float> peaks_;
    std::vector<float> gains_; // of one block
    float gain_ = 1.0F;
    float attackCoeff_ = 0.0F;
    float releaseCoeff_ = 0.0F;
    float gainReductionDB_ = 0.0F;
    Memoized<float, float> reductionDB_; ///< by the smallest gain
};

} // namespace quorbel
