#include "support/soundserver/StallWitness.h"

#include "soundserver/Waiting.h"

#include <algorithm>
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

Disturbances::Disturbances(const StallWitness &witness, const Recording &heard, int quantum)
    : heard_(heard), stalls_(witness.stalls()),
      margin_(std::max<std::uint64_t>(20'000'000, 2'500'000'000ULL * quantum / 48000)) {
    constexpr std::uint64_t reportNanoseconds = 1'200'000'000; // losses are reported once a second
    std::erase_if(stalls_, [&](const StallWitness::Stall &stall) {
        return stall.end + reportNanoseconds < heard.nanosecondsOf(0);
    });
    for (const std::size_t frame : heard.framesAfterGaps())
        stalls_.push_back({heard.nanosecondsOf(frame), heard.nanosecondsOf(frame)});
}

bool Disturbances::include(std::size_t frame) const {
    const std::uint64_t when = heard_.nanosecondsOf(frame);
    return std::ranges::any_of(stalls_, [&](const StallWitness::Stall &stall) {
        return when + margin_ >= stall.begin && when <= stall.end + margin_;
    });
}

double Disturbances::undisturbedSeconds() const {
    constexpr std::size_t step = 48;
    std::size_t undisturbed = 0;
    for (std::size_t frame = 0; frame < heard_.frames(); frame += step)
        undisturbed += include(frame) ? 0 : step;
    return static_cast<double>(undisturbed) / 48000.0;
}

} // namespace quorbel::soundserver
