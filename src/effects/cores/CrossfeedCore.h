#pragma once

#include "effects/cores/StereoSection.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// Mixes a delayed, low-passed copy of each channel into the other, as a head between two speakers
/// does: 0.33 ms late, nothing much above 700 Hz.
class CrossfeedCore {
  public:
    CrossfeedCore();

    /// `sampleRate` in Hz. Starts from silence. Throws std::bad_alloc. Not while processing.
    void prepare(float sampleRate);

    /// Back to silence. [render]
    void clear() noexcept;

    /// In place; `previous` and `target` are the amounts (0 to 1) at the first and at the last
    /// frame. At amount a each channel keeps 1 − a/2 of itself. [render]
    void process(float *left, float *right, std::uint32_t frames, float previous,
                 float target) noexcept;

  private:
    /// Puts so many frames behind those that the lines hold.
    void append(const float *left, const float *right, std::uint32_t frames) noexcept;
    /// Forgets the oldest ones.
    void advance(std::uint32_t frames) noexcept;

    std::size_t delay_ = 16;
    BiquadCoefficients lowPass_;
    // Each holds the last `delay_` frames, with room for a chunk of new ones behind them.
    std::vector<float> delayL_;
    std::vector<float> delayR_;
    StereoSection crossing_; // of each channel, before it is mixed into the other
};

} // namespace quorbel
