#pragma once

#include <cstdint>

namespace quorbel {

/// Sample rate in Hz of the processing chain, which a format has until another one is known.
inline constexpr double chainSampleRate = 48000.0;

/// A stream of 32-bit floats, non-interleaved: one plane of samples per channel.
struct StreamFormat {
    double sampleRate = 0.0; ///< Hz
    std::uint32_t channelCount = 0;

    /// True for a format that samples can be described with: a positive rate, at least one channel.
    [[nodiscard]] constexpr bool isValid() const { return sampleRate > 0.0 && channelCount > 0; }

    friend constexpr bool operator==(const StreamFormat &, const StreamFormat &) = default;
};

/// The longest block that is rendered at once, in frames; longer requests are split.
inline constexpr std::uint32_t maximumBlockFrames = 8192;

} // namespace quorbel
