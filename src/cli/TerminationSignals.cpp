#include "cli/TerminationSignals.h"

#include "cli/CommandError.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace quorbel {

// The signals stay blocked to the end: a second Ctrl-C must not cut the putting back short.
TerminationSignals::TerminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    descriptor_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    if (descriptor_ < 0)
        throw CommandError("cannot watch for signals");
}

TerminationSignals::~TerminationSignals() { close(descriptor_); }

bool TerminationSignals::received() {
    signalfd_siginfo info{};
    while (read(descriptor_, &info, sizeof info) == sizeof info)
        received_ = true;
    return received_;
}

} // namespace quorbel
