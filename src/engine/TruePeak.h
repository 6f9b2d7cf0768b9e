#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Largest magnitudes of a signal, full scale 1.
struct Peaks {
    float sample = 0.0F;
    float between = 0.0F; ///< of the samples and of the continuous signal between them
};

/// The peaks of a stereo signal, those between the samples by the four-fold oversampling of ITU-R
/// BS.1770-4, annex 2, at 48 kHz.
///
/// The oversampling is the bottleneck. It is skipped where the samples are too small or too smooth
/// for a new maximum.
class TruePeak {
  public:
    /// Raises `held` to the peaks of the next block of any length. [render]
    void measure(const std::array<const float *, 2> &channels, std::uint32_t frames,
                 Peaks &held) noexcept;

    static constexpr std::size_t tapCount = 12;
    /// Frames of a block that are processed beside the samples before it; at least as many as the
    /// taps reach back.
    static constexpr std::uint32_t headFrames = 16;
    /// Largest magnitudes among some samples.
    struct Extent {
        float sample = 0.0F;
        float bend = 0.0F; ///< second difference
    };
    /// Of one channel.
    struct Memory {
        /// The samples before a block, then its head. Only the former outlive a block.
        alignas(64) std::array<float, tapCount - 1 + headFrames> samples{};
        Extent extentBefore; ///< of the samples before the next frame
    };

  private:
    std::array<Memory, 2> memories_;
};

} // namespace quorbel
