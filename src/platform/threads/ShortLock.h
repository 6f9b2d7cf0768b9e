#pragma once

#include <pthread.h>

namespace quorbel {

/// The only lock an audio thread may take: held for a short copy, never while another is held.
/// (Exception: the settings lock, which an audio thread only tries; see AudioGraph.) Priority
/// inheritance limits an audio thread's wait to the duration of the copy. Not recursive. Use with
/// std::lock_guard.
class ShortLock {
  public:
    ShortLock() noexcept : mutex_{} {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
        // A kernel without priority inheritance gets a plain mutex: slower at worst, still correct.
        if (pthread_mutex_init(&mutex_, &attributes) != 0)
            pthread_mutex_init(&mutex_, nullptr);
        pthread_mutexattr_destroy(&attributes);
    }
    ~ShortLock() { pthread_mutex_destroy(&mutex_); }
    ShortLock(const ShortLock &) = delete;
    ShortLock &operator=(const ShortLock &) = delete;

    void lock() noexcept { pthread_mutex_lock(&mutex_); }
    bool try_lock() noexcept { return pthread_mutex_trylock(&mutex_) == 0; }
    void unlock() noexcept { pthread_mutex_unlock(&mutex_); }

  private:
    pthread_mutex_t mutex_;
};

} // namespace quorbel
