#include "analysis/SpectrumRing.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <mutex>

namespace quorbel {

SpectrumRing::SpectrumRing(std::size_t capacity) : storage_(capacity) {
    assert(std::has_single_bit(capacity));
}

void SpectrumRing::write(std::span<const float> samples) noexcept {
    const std::lock_guard guard(lock_);
    while (!samples.empty()) {
        const std::size_t begin = slot(writeIdx_);
        const auto piece = samples.first(std::min(storage_.size() - begin, samples.size()));
        std::ranges::copy(piece, storage_.data() + begin);
        writeIdx_ += static_cast<std::int64_t>(piece.size());
        samples = samples.subspan(piece.size());
    }
}

std::int64_t SpectrumRing::written() const noexcept {
    const std::lock_guard guard(lock_);
    return writeIdx_;
}

bool SpectrumRing::snapshot(std::span<float> into) const noexcept {
    assert(into.size() <= storage_.size());
    const auto count = static_cast<std::int64_t>(into.size());
    const std::lock_guard guard(lock_);
    if (writeIdx_ < count)
        return false;
    const std::size_t begin = slot(writeIdx_ - count);
    const std::size_t first = std::min(storage_.size() - begin, into.size());
    std::copy_n(storage_.data() + begin, first, into.data());
    std::copy_n(storage_.data(), into.size() - first, into.data() + first);
    return true;
}

} // namespace quorbel
