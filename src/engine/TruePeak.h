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
/// The oversampling is the bottleneck. It is skipped where the samples are too small for a new
/// maximum.
class TruePeak {
  public:
    /// Raises `held` to the peaks of the next block of any length. [render]
    void measure(const std::array<const float *, 2> &channels, std::uint32_t frames,
                 Peaks &held) noexcept;

    static constexpr std::size_t tapCount = 12;
    static constexpr std::uint32_t tileFrames = 64;
    /// Of one channel.
    struct Memory {
        /// The samples that the taps of a tile reach: those before it, then its own. Only the
        /// former outlive a tile.
        alignas(64) std::array<float, tapCount - 1 + tileFrames> samples{};
        float largestBefore = 0.0F; ///< of the samples before the tile
    };

  private:
    std::array<Memory, 2> memories_;
};

} // namespace quorbel
