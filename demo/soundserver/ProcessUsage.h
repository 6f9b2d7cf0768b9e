#pragma once

#include <cstdint>
#include <map>
#include <sys/types.h>

namespace quorbel::soundserver {

/// Processor time of all threads of a process so far, in seconds.
double processorSeconds(pid_t process);

/// Wake-ups (voluntary context switches) of each thread of a process, by thread id.
std::map<pid_t, std::uint64_t> wakeUps(pid_t process);

/// Wake-ups since `before`: of all threads together, and of the thread with the most.
struct WakeUps {
    double all = 0.0;
    double most = 0.0;
};
WakeUps wakeUpsSince(pid_t process, const std::map<pid_t, std::uint64_t> &before);

/// Wake-ups per second of an idle process: of the first three seconds with at most two a second, or
/// of the last three before the deadline.
double idleWakeUps(pid_t process, double deadlineSeconds);

/// A process's memory in RAM, with its share of shared memory (Pss), in MiB. Throws `ServerError`
/// if there is no such process.
double memoryMiB(pid_t process);

/// A process's peak memory in RAM, shared memory included (VmHWM), in MiB. Throws `ServerError` if
/// there is no such process.
double peakMemoryMiB(pid_t process);

} // namespace quorbel::soundserver
