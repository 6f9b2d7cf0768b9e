#pragma once

#include <cstdint>

namespace quorbel {

/// Sample rate of the processing chain, in Hz; the default until another rate is known.
inline constexpr double chainSampleRate = 48000.0;

/// A stream of 32-bit floats, non-interleaved: one plane of samples per channel.
struct StreamFormat {
    double sampleRate = 0.0; ///< Hz
    std::uint32_t channelCount = 0;

    [[nodiscard]] constexpr bool isValid() const { return sampleRate > 0.0 && channelCount > 0; }

    friend constexpr bool operator==(const StreamFormat &, const StreamFormat &) = default;
};

/// Longest block rendered at once, in frames; longer requests are split.
inline constexpr std::uint32_t maximumBlockFrames = 8192;

} // namespace quorbel
