#pragma once

#include <array>
#include <cstdint>

namespace quorbel {

/// A borrowed view of planar sound: one pointer to 32-bit floats per channel. Owns nothing, so it
/// is copied freely; a pointer may be null where a channel carries nothing.
struct AudioBufferList {
    static constexpr std::uint32_t maximumBuffers = 8;

    std::uint32_t bufferCount = 0;
    std::array<float *, maximumBuffers> data{};

    AudioBufferList() = default;
    AudioBufferList(float *left, float *right) : bufferCount(2), data{left, right} {}

    /// Whether the first two channels carry sound.
    [[nodiscard]] bool isStereo() const noexcept {
        return bufferCount >= 2 && data[0] != nullptr && data[1] != nullptr;
    }

    /// The same channels, `frames` further on.
    [[nodiscard]] AudioBufferList advancedBy(std::uint32_t frames) const noexcept {
        AudioBufferList result = *this;
        for (std::uint32_t channel = 0; channel < bufferCount; ++channel)
            if (result.data[channel] != nullptr)
                result.data[channel] += frames;
        return result;
    }
};

} // namespace quorbel
