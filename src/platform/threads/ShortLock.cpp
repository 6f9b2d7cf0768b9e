#include "platform/threads/ShortLock.h"

namespace quorbel {

ShortLock::ShortLock() noexcept : mutex_{} {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    // A kernel without priority inheritance gets a plain mutex: slower at worst, still correct.
    if (pthread_mutex_init(&mutex_, &attributes) != 0)
        pthread_mutex_init(&mutex_, nullptr);
    pthread_mutexattr_destroy(&attributes);
}

} // namespace quorbel
