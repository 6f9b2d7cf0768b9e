#include "platform/threads/TerminationSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace quorbel {

TerminationSignals::TerminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    descriptor_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    // Blocks the signals only if they can be read; otherwise only SIGKILL would end the program.
    if (descriptor_ >= 0)
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

TerminationSignals::~TerminationSignals() {
    notifier_.reset();
    if (descriptor_ >= 0)
        close(descriptor_);
}

bool TerminationSignals::received() {
    signalfd_siginfo info{};
    while (read(descriptor_, &info, sizeof info) == sizeof info)
        received_ = true;
    return received_;
}

void TerminationSignals::endEventLoop() {
    if (descriptor_ < 0)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        if (received())
            QCoreApplication::exit(0); // not `quit`, which a window could refuse
    });
}

} // namespace quorbel
