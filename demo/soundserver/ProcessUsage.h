#pragma once

#include <cstdint>
#include <map>
#include <sys/types.h>

namespace quorbel::soundserver {

/// Time on a processor that a process has had so far, in seconds, of all its threads.
double processorSeconds(pid_t process);

/// How often each thread of a process, by its id, has gone to sleep of its own accord and so was
/// woken up (voluntary context switches).
std::map<pid_t, std::uint64_t> wakeUps(pid_t process);

/// Wake-ups since `before`: of all threads together, and of the one that was woken most often.
struct WakeUps {
    double all = 0.0;
    double most = 0.0;
};
WakeUps wakeUpsSince(pid_t process, const std::map<pid_t, std::uint64_t> &before);

/// Wake-ups per second of a process that has nothing to do: of the first three seconds with no more
/// than two a second, or of the last ones before the deadline.
double idleWakeUps(pid_t process, double deadlineSeconds);

/// A process's memory in RAM: its own and its share of what it shares with others (Pss), in MiB.
/// Throws `ServerError` if there is no such process.
double memoryMiB(pid_t process);

/// The most memory in RAM that a process has had, shared memory included (VmHWM), in MiB. Throws
/// `ServerError` if there is no such process.
double peakMemoryMiB(pid_t process);

} // namespace quorbel::soundserver
