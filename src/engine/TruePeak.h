#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Largest magnitudes of a signal, full scale 1.
struct Peaks {
    float sample = 0.0F;
    float between = 0.0F; ///< true peak; at least the sample peak
};

/// Measures the sample and true peaks of a stereo signal at 48 kHz; the latter by the four-fold
/// oversampling of ITU-R BS.1770-4, annex 2.
///
/// The oversampling is the bottleneck. It is skipped where the samples are too small or too smooth
/// for a new maximum.
class TruePeak {
  public:
    /// Raises `held` to the peaks of the next block of any length. [render]
    void measure(const std::array<const float *, 2> &channels, std::uint32_t frames,
                 Peaks &held) noexcept;

    static constexpr std::size_t tapCount = 12;
    /// Frames at a block's start that are copied behind the samples before it; at least the taps'
    /// reach.
    static constexpr std::uint32_t headFrames = 16;
    /// Largest magnitudes of a run of samples.
    struct Extent {
        float sample = 0.0F;
        float bend = 0.0F; ///< second difference
    };
    /// State of one channel.
    struct Memory {
        /// The samples before a block, kept between blocks, then the block's head.
        alignas(64) std::array<float, tapCount - 1 + headFrames> samples{};
        Extent extentBefore; ///< of the samples before the next frame
    };

  private:
    std::array<Memory, 2> memories_;
};

} // namespace quorbel
