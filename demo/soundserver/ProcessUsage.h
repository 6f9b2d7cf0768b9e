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

/// The same of all its threads together.
std::uint64_t allWakeUps(pid_t process);

/// A process's memory in RAM: its own and its share of what it shares with others (Pss), in MiB.
/// Throws `ServerError` if there is no such process.
double memoryMiB(pid_t process);

/// The most memory in RAM that a process has had, shared memory included (VmHWM), in MiB. Throws
/// `ServerError` if there is no such process.
double peakMemoryMiB(pid_t process);

} // namespace quorbel::soundserver
