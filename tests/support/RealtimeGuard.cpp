#include "support/RealtimeGuard.h"

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QUORBEL_SANITIZER_HOOKS 1
// From the sanitizers' runtime, whose header some compilers lack.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void *,
                                                                          std::size_t),
                                                         void (*onFree)(const volatile void *));
#else
#define QUORBEL_SANITIZER_HOOKS 0
#include <dlfcn.h>
#include <pthread.h>
#endif

namespace quorbel::testing {

namespace {

// No constructor, so that counting works from a thread's first instruction.
thread_local constinit RealtimeViolations seen;

} // namespace

#if QUORBEL_SANITIZER_HOOKS

RealtimeGuard::RealtimeGuard() {
    [[maybe_unused]] static const int installed = __sanitizer_install_malloc_and_free_hooks(
        [](const volatile void *, std::size_t) { ++seen.allocations; },
        [](const volatile void *) { ++seen.frees; });
    start_ = seen;
}

bool RealtimeGuard::countsLocks() { return false; }

#else

namespace {

// ShortLock is the program's only mutex with priority inheritance, which the C library records in a
// bit of the mutex's kind.
bool isShortLock(const pthread_mutex_t &mutex) {
    constexpr int priorityInheriting = 32;
    return (mutex.__data.__kind & priorityInheriting) != 0;
}

template <typename Function> Function *original(const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

RealtimeGuard::RealtimeGuard() : start_(seen) {}

bool RealtimeGuard::countsLocks() { return true; }

#endif

RealtimeViolations RealtimeGuard::violations() const {
    return {seen.allocations - start_.allocations, seen.frees - start_.frees,
            seen.foreignLocks - start_.foreignLocks};
}

} // namespace quorbel::testing

#if !QUORBEL_SANITIZER_HOOKS

using quorbel::testing::isShortLock;
using quorbel::testing::original;
using quorbel::testing::seen;

extern "C" {

// The C library's own names of the replaced functions.
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *memory);

void *malloc(std::size_t size) {
    ++seen.allocations;
    return __libc_malloc(size);
}

void *calloc(std::size_t count, std::size_t size) {
    ++seen.allocations;
    return __libc_calloc(count, size);
}

void *realloc(void *memory, std::size_t size) {
    ++seen.allocations;
    return __libc_realloc(memory, size);
}

void *memalign(std::size_t alignment, std::size_t size) {
    ++seen.allocations;
    return __libc_memalign(alignment, size);
}

void *aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void **memory, std::size_t alignment, std::size_t size) {
    *memory = memalign(alignment, size);
    constexpr int outOfMemory = 12;
    return *memory != nullptr ? 0 : outOfMemory;
}

void free(void *memory) {
    if (memory != nullptr)
        ++seen.frees;
    __libc_free(memory);
}

int pthread_mutex_lock(pthread_mutex_t *mutex) {
    static auto *const lock = original<int(pthread_mutex_t *)>("pthread_mutex_lock");
    if (!isShortLock(*mutex))
        ++seen.foreignLocks;
    return lock(mutex);
}

int pthread_rwlock_rdlock(pthread_rwlock_t *rwlock) {
    static auto *const lock = original<int(pthread_rwlock_t *)>("pthread_rwlock_rdlock");
    ++seen.foreignLocks;
    return lock(rwlock);
}

int pthread_rwlock_wrlock(pthread_rwlock_t *rwlock) {
    static auto *const lock = original<int(pthread_rwlock_t *)>("pthread_rwlock_wrlock");
    ++seen.foreignLocks;
    return lock(rwlock);
}

} // extern "C"

#endif
