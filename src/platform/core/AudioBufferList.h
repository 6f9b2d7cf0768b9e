#pragma once

#include <array>
#include <cstdint>

namespace quorbel {

/// A borrowed view of planar sound: one pointer to 32-bit floats per channel. Cheap to copy; a null
/// pointer marks a channel without data.
struct AudioBufferList {
    static constexpr std::uint32_t maximumBuffers = 8;

    std::uint32_t bufferCount = 0;
    std::array<float *, maximumBuffers> data{};

    AudioBufferList() = default;
    AudioBufferList(float *left, float *right) : bufferCount(2), data{left, right} {}

    /// True if the first two channels carry data.
    [[nodiscard]] bool isStereo() const noexcept {
        return bufferCount >= 2 && data[0] != nullptr && data[1] != nullptr;
    }

    /// Returns the same channels, starting `frames` later.
    [[nodiscard]] AudioBufferList advancedBy(std::uint32_t frames) const noexcept {
        AudioBufferList result = *this;
        for (std::uint32_t channel = 0; channel < bufferCount; ++channel)
            if (result.data[channel] != nullptr)
                result.data[channel] += frames;
        return result;
    }
};

} // namespace quorbel
