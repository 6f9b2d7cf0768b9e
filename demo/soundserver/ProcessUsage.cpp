#include "soundserver/ProcessUsage.h"

#include "soundserver/Waiting.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

namespace quorbel::soundserver {
namespace {

/// The figure after `name`, converted from KiB.
double memoryFigureMiB(pid_t process, const std::string &fileName, const std::string &name) {
    std::ifstream file("/proc/" + std::to_string(process) + "/" + fileName);
    for (std::string word; file >> word;) {
        if (word == name) {
            double kilobytes = 0.0;
            file >> kilobytes;
            return kilobytes / 1024.0;
        }
    }
    throw ServerError("no memory figures of process " + std::to_string(process));
}

} // namespace

double processorSeconds(pid_t process) {
    // Sums the scheduler's nanoseconds of every thread; the process's own figure has steps of a
    // hundredth of a second.
    double seconds = 0.0;
    std::error_code ignored;
    const std::string tasks = "/proc/" + std::to_string(process) + "/task";
    for (const auto &task : std::filesystem::directory_iterator(tasks, ignored)) {
        double nanoseconds = 0.0;
        std::ifstream(task.path() / "schedstat") >> nanoseconds;
        seconds += nanoseconds * 1e-9;
    }
    return seconds;
}

std::map<pid_t, std::uint64_t> wakeUps(pid_t process) {
    std::map<pid_t, std::uint64_t> counts;
    std::error_code ignored;
    const std::string tasks = "/proc/" + std::to_string(process) + "/task";
    for (const auto &task : std::filesystem::directory_iterator(tasks, ignored)) {
        std::ifstream file(task.path() / "status");
        for (std::string word; file >> word;)
            if (word == "voluntary_ctxt_switches:")
                file >> counts[std::stoi(task.path().filename())];
    }
    return counts;
}

WakeUps wakeUpsSince(pid_t process, const std::map<pid_t, std::uint64_t> &before) {
    WakeUps result;
    for (const auto &[thread, count] : wakeUps(process)) {
        const auto earlier = before.find(thread);
        const auto more =
            static_cast<double>(count - (earlier == before.end() ? 0 : earlier->second));
        result.all += more;
        result.most = std::max(result.most, more);
    }
    return result;
}

double idleWakeUps(pid_t process, double deadlineSeconds) {
    constexpr double windowSeconds = 3.0;
    constexpr double wantedPerSecond = 2.0;
    double perSecond = 0.0;
    auto since = SteadyClock::now();
    auto before = wakeUps(process);
    comesTrue(deadlineSeconds, [&] {
        const std::chrono::duration<double> elapsed = SteadyClock::now() - since;
        if (elapsed.count() < windowSeconds)
            return false;
        perSecond = wakeUpsSince(process, before).all / elapsed.count();
        since = SteadyClock::now();
        before = wakeUps(process);
        return perSecond <= wantedPerSecond;
    });
    return perSecond;
}

double memoryMiB(pid_t process) { return memoryFigureMiB(process, "smaps_rollup", "Pss:"); }

double peakMemoryMiB(pid_t process) { return memoryFigureMiB(process, "status", "VmHWM:"); }

} // namespace quorbel::soundserver
