#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace quorbel {

/// Triple buffer: hands the newest value from one thread to another without lock or wait. One slot
/// belongs to the writer, one to the reader, one is exchanged. Skips values that the reader did not
/// fetch in time. Assigning a T must not allocate if the writer must not.
///
/// Threads: `publish` by one thread, `fetch` and `current` by one other.
template <typename T> class LatestValue {
  public:
    explicit LatestValue(const T &initial) : slots_{initial, initial, initial} {}

    void publish(const T &value) {
        slots_[writerSlot_] = value;
        const std::uint32_t mine = writerSlot_ | freshBit;
        writerSlot_ = exchange_.exchange(mine, std::memory_order_acq_rel) & slotMask;
    }

    /// Returns true if a value was published since the last call; `current` then returns it.
    bool fetch() noexcept {
        if ((exchange_.load(std::memory_order_relaxed) & freshBit) == 0)
            return false;
        readerSlot_ = exchange_.exchange(readerSlot_, std::memory_order_acq_rel) & slotMask;
        return true;
    }

    [[nodiscard]] const T &current() const noexcept { return slots_[readerSlot_]; }

  private:
    static constexpr std::uint32_t slotMask = 3;
    static constexpr std::uint32_t freshBit = 4;

    std::array<T, 3> slots_;
    std::uint32_t writerSlot_ = 0; // writer only
    std::uint32_t readerSlot_ = 1; // reader only
    std::atomic<std::uint32_t> exchange_{
        2}; // index of the exchanged slot, and whether it is newer than the reader's
};

} // namespace quorbel
