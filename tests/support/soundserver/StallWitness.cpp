#include "support/soundserver/StallWitness.h"

#include "soundserver/Waiting.h"

#include <pthread.h>
#include <sched.h>

namespace quorbel::soundserver {

StallWitness::StallWitness(double lateSeconds)
    : late_(static_cast<std::int64_t>(lateSeconds * 1e9)) {
    cpu_set_t ours;
    sched_getaffinity(0, sizeof ours, &ours);
    for (int processor = 0; processor < CPU_SETSIZE; ++processor)
        if (CPU_ISSET(processor, &ours))
            watchers_.emplace_back([this, processor] { watch(processor); });
}

StallWitness::~StallWitness() {
    ends_ = true;
    for (std::thread &watcher : watchers_)
        watcher.join();
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
        const auto planned = SteadyClock::now() + late_ / 2;
        std::this_thread::sleep_until(planned);
        const auto now = SteadyClock::now();
        if (now >= planned + late_) {
            const std::lock_guard lock(mutex_);
            stalls_.push_back({static_cast<std::uint64_t>(planned.time_since_epoch().count()),
                               static_cast<std::uint64_t>(now.time_since_epoch().count())});
        }
    }
}

} // namespace quorbel::soundserver
