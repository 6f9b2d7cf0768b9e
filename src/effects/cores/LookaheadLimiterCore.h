#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// A stereo peak limiter with 1.3 ms of look-ahead: the sound is delayed by that much, so that the
/// gain has fallen before a peak comes out. No sample ever leaves beyond the threshold.
class LookaheadLimiterCore {
  public:
    /// Starts from silence and unity gain. `sampleRate` in Hz. Throws std::bad_alloc, and is then
    /// unprepared. Not while processing.
    void prepare(float sampleRate);

    /// Limits `frameCount` frames in place to ± `thresholdLin` (linear, above 0). Does nothing
    /// before `prepare`. [render]
    void process(float *left, float *right, std::uint32_t frameCount, float thresholdLin) noexcept;

    /// The delay in frames.
    [[nodiscard]] std::size_t lookahead() const { return lookahead_; }

    /// The largest reduction of the last block, in dB, never negative.
    [[nodiscard]] float gainReductionDB() const { return gainReductionDB_; }

  private:
    std::size_t lookahead_ = 0;
    // Rings of lookahead + 1 frames that share the index. The peaks are those of both channels.
    std::vector<float> delayL_;
    std::vector<float> delayR_;
    std::vector<float> peaks_;
    std::size_t writeIndex_ = 0;
    float gain_ = 1.0F;
    float attackCoeff_ = 0.0F;
    float releaseCoeff_ = 0.0F;
    float gainReductionDB_ = 0.0F;
};

} // namespace quorbel
