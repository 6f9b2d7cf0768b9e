#include "support/RealtimeGuard.h"

#include "platform/threads/ShortLock.h"

#include <gtest/gtest.h>

#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

namespace quorbel::testing {
namespace {

// Checks the guard itself, because every test of real-time code relies on it.
TEST(RealtimeGuardTest, CountsOnlyAllocationsAndForeignLocksOfItsThread) {
    std::mutex mutex;
    std::shared_mutex sharedMutex;
    ShortLock shortLock;
    std::thread other;

    const RealtimeGuard quiet;
    { const std::lock_guard lock(shortLock); }
    EXPECT_EQ(quiet.violations(), RealtimeViolations{});

    const RealtimeGuard memory;
    {
        const std::vector<float> vector(100);
        EXPECT_EQ(memory.violations().allocations, 1U);
    }
    EXPECT_EQ(memory.violations().frees, 1U);
    ::operator delete(::operator new(256, std::align_val_t(64)), std::align_val_t(64));
    EXPECT_EQ(memory.violations().allocations, 2U);

    if (RealtimeGuard::countsLocks()) {
        const RealtimeGuard locks;
        { const std::lock_guard lock(mutex); }
        { const std::shared_lock lock(sharedMutex); }
        { const std::unique_lock lock(sharedMutex); }
        EXPECT_EQ(locks.violations().foreignLocks, 3U);
    }

    other = std::thread([&] {
        const std::lock_guard lock(mutex);
        const std::vector<float> vector(100);
    });
    const RealtimeGuard elsewhere;
    other.join();
    EXPECT_EQ(elsewhere.violations().allocations, 0U);
}

} // namespace
} // namespace quorbel::testing
