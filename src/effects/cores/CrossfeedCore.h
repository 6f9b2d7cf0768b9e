#pragma once

#include "effects/cores/StereoSection.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// Mixes each channel into the other, delayed by 0.33 ms and low-passed at 700 Hz, as the head does
/// between two speakers.
class CrossfeedCore {
  public:
    CrossfeedCore();

    /// `sampleRate` in Hz. Starts from silence. Throws std::bad_alloc. Not while processing.
    void prepare(float sampleRate);

    /// Resets to silence. [render]
    void clear() noexcept;

    /// Processes in place; `previous` and `target` are the amounts (0 to 1) at the first and the
    /// last frame. At amount a each channel keeps 1 − a/2 of itself. [render]
    void process(float *left, float *right, std::uint32_t frames, float previous,
                 float target) noexcept;

  private:
    friend class CrossfeedBlock;

    /// Even, so that the alternating offset starts every chunk with the same sign.
    static constexpr std::uint32_t chunkFrames = 128;

    /// Appends `frames` frames to both lines.
    void append(const float *left, const float *right, std::uint32_t frames) noexcept;
    /// Drops the oldest `frames` frames.
    void advance(std::uint32_t frames) noexcept;

    std::size_t delay_ = 16;
    BiquadCoefficients lowPass_;
    // Each holds the last `delay_` frames and room for a chunk of new ones.
    std::vector<float> delayL_;
    std::vector<float> delayR_;
    bool isClear_ = false;   ///< already silent: saves clearing in every block
    StereoSection crossing_; // of each channel, before it is mixed into the other
};

} // namespace quorbel
