#include "support/soundserver/StallWitness.h"

#include <ctime>
#include <pthread.h>
#include <sched.h>

namespace quorbel::soundserver {
namespace {

std::uint64_t monotonicNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000U +
           static_cast<std::uint64_t>(now.tv_nsec);
}

void waitUntil(std::uint64_t nanoseconds) {
    const timespec moment{static_cast<time_t>(nanoseconds / 1'000'000'000U),
                          static_cast<long>(nanoseconds % 1'000'000'000U)};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &moment, nullptr) != 0) {
    }
}

} // namespace

StallWitness::StallWitness(double lateSeconds)
    : lateNanoseconds_(static_cast<std::uint64_t>(lateSeconds * 1e9)) {
    cpu_set_t ours;
    sched_getaffinity(0, sizeof ours, &ours);
    for (int processor = 0; processor < CPU_SETSIZE; ++processor) {
        if (CPU_ISSET(processor, &ours)) {
            watchers_.emplace_back([this, processor] { watch(processor); });
        }
    }
}

StallWitness::~StallWitness() {
    ends_ = true;
    for (std::thread &watcher : watchers_) {
        watcher.join();
    }
}

std::vector<StallWitness::Stall> StallWitness::stalls() const {
    const std::lock_guard lock(mutex_);
    return stalls_;
}

void StallWitness::watch(int processor) {
    cpu_set_t only;
    CPU_ZERO(&only);
    CPU_SET(processor, &only);
    pthread_setaffinity_np(pthread_self(), sizeof only, &only);
    const sched_param urgent{.sched_priority = 89}; // sound servers and their clients have 88
    pthread_setschedparam(pthread_self(), SCHED_FIFO, &urgent);
    while (!ends_) {
        const std::uint64_t planned = monotonicNanoseconds() + lateNanoseconds_ / 2;
        waitUntil(planned);
        const std::uint64_t now = monotonicNanoseconds();
        if (now >= planned + lateNanoseconds_) {
            const std::lock_guard lock(mutex_);
            stalls_.push_back({planned, now});
        }
    }
}

} // namespace quorbel::soundserver
