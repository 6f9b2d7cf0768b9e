#pragma once

#include <atomic>
#include <thread>

namespace quorbel {

/// A pointer that one real-time thread uses and the control side may take away. The real-time side
/// never waits; the control side waits for at most the one use under way.
template <typename T> class RealtimeSlot {
  public:
    /// The pointer for the duration of one use; may be null. [capture, render]
    class Use {
      public:
        explicit Use(RealtimeSlot &slot) noexcept : slot_(slot) {
            slot_.busy_.store(true);
            pointer_ = slot_.pointer_.load();
        }
        ~Use() { slot_.busy_.store(false); }
        Use(const Use &) = delete;
        Use &operator=(const Use &) = delete;

        T *operator->() const noexcept { return pointer_; }
        explicit operator bool() const noexcept { return pointer_ != nullptr; }

      private:
        RealtimeSlot &slot_;
        T *pointer_;
    };

    /// When this returns, the earlier pointer is no longer used. [main, control]
    void set(T *pointer) {
        pointer_.store(pointer);
        while (busy_.load())
            std::this_thread::yield();
    }
    [[nodiscard]] T *get() const { return pointer_.load(); }

  private:
    // Sequentially consistent: either the user sees the new pointer or the setter sees the slot
    // busy.
    std::atomic<T *> pointer_{nullptr};
    std::atomic<bool> busy_{false};
};

} // namespace quorbel
