#include "platform/graph/NonFinite.h"

#include <algorithm>
#include <bit>

namespace quorbel {

namespace {

constexpr std::uint32_t carry = 0x80000000U;

// Sets the sign bit for samples of at least 2^40, infinity and NaN by one addition: without their
// signs, floats have the order of their bit patterns, infinity and NaN last.
constexpr std::uint32_t carryIfUnusable(float sample) {
    constexpr std::uint32_t limit = std::bit_cast<std::uint32_t>(0x1p40F);
    return (std::bit_cast<std::uint32_t>(sample) & ~carry) + (carry - limit);
}

constexpr std::uint32_t chunkFrames = 64; // a constant length lets the compiler vectorise the scan

bool chunkHasUnusable(const float *samples) noexcept {
    std::uint32_t all = 0;
    for (std::uint32_t i = 0; i < chunkFrames; ++i)
        all |= carryIfUnusable(samples[i]);
    return (all & carry) != 0;
}

std::uint32_t replaceInFrames(const AudioBufferList &buffers, std::uint32_t begin,
                              std::uint32_t end) noexcept {
    std::uint32_t found = 0;
    for (std::uint32_t i = begin; i < end; ++i) {
        bool bad = false;
        for (std::uint32_t channel = 0; channel < buffers.bufferCount; ++channel) {
            float *samples = buffers.data[channel];
            if (samples != nullptr && (carryIfUnusable(samples[i]) & carry) != 0) {
                samples[i] = 0.0F;
                bad = true;
            }
        }
        found += bad ? 1 : 0;
    }
    return found;
}

} // namespace

std::uint32_t replaceNonFinite(const AudioBufferList &buffers, std::uint32_t frames) noexcept {
    std::uint32_t found = 0;
    std::uint32_t begin = 0;
    for (; begin + chunkFrames <= frames; begin += chunkFrames) {
        bool any = false;
        for (std::uint32_t channel = 0; channel < buffers.bufferCount; ++channel)
            if (buffers.data[channel] != nullptr)
                any |= chunkHasUnusable(buffers.data[channel] + begin);
        if (any)
            found += replaceInFrames(buffers, begin, begin + chunkFrames);
    }
    return found + replaceInFrames(buffers, begin, frames);
}

} // namespace quorbel
