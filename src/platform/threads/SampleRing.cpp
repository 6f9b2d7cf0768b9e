#include "platform/threads/SampleRing.h"

#include "platform/core/RingPieces.h"

#include <algorithm>
#include <mutex>

namespace quorbel {

/// Calls `fill(target, offset, count)` for the pieces of the ring that receive the newest samples.
template <typename Fill> void SampleRing::append(std::size_t count, Fill fill) noexcept {
    const std::lock_guard guard(lock_);
    const std::size_t kept = std::min(count, samples_.size());
    const std::size_t dropped = count - kept;
    forRingPieces(written_ + dropped, kept, samples_.size(),
                  [&](std::size_t index, std::size_t offset, std::size_t length) {
                      fill(samples_.data() + index, dropped + offset, length);
                  });
    written_ += count;
}

void SampleRing::write(std::span<const float> samples) noexcept {
    append(samples.size(), [&](float *target, std::size_t offset, std::size_t count) {
        std::copy_n(samples.data() + offset, count, target);
    });
}

void SampleRing::writeMean(const float *left, const float *right, std::size_t frames) noexcept {
    append(frames, [&](float *target, std::size_t offset, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            target[i] = (left[offset + i] + right[offset + i]) * 0.5F;
    });
}

bool SampleRing::snapshot(std::span<float> samples) const noexcept {
    const std::lock_guard guard(lock_);
    return copyBefore(written_, samples);
}

bool SampleRing::snapshot(std::uint64_t end, std::span<float> samples) const noexcept {
    const std::lock_guard guard(lock_);
    return copyBefore(end, samples);
}

bool SampleRing::copyBefore(std::uint64_t end, std::span<float> samples) const noexcept {
    if (end > written_ || end < samples.size() || written_ - end + samples.size() > samples_.size())
        return false;
    forRingPieces(end - samples.size(), samples.size(), samples_.size(),
                  [&](std::size_t index, std::size_t offset, std::size_t count) {
                      std::copy_n(samples_.data() + index, count, samples.data() + offset);
                  });
    return true;
}

std::uint64_t SampleRing::written() const noexcept {
    const std::lock_guard guard(lock_);
    return written_;
}

} // namespace quorbel
