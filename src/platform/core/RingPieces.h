#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Splits `frames` frames of a ring from frame `begin` into one or two contiguous pieces. Frame p
/// has index p mod `capacity`. Calls `copy(index, offset, count)` for each piece: `index` of its
/// first frame in the ring, `offset` from `begin`. `frames` is at most `capacity`. [any]
template <typename Copy>
void forRingPieces(std::uint64_t begin, std::size_t frames, std::size_t capacity, Copy copy) {
    const auto index = static_cast<std::size_t>(begin % capacity);
    const std::size_t first = std::min(frames, capacity - index);
    copy(index, std::size_t{0}, first);
    if (first < frames)
        copy(std::size_t{0}, first, frames - first);
}

} // namespace quorbel
