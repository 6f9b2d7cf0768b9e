#include "ui/app/QuitSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace quorbel {

QuitSignals::QuitSignals() {
    // Whoever reads the log may go, and a file may hit its limit: neither ends the program.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    descriptor_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    // Blocked only where it can be read instead: otherwise nothing but SIGKILL would end us.
    if (descriptor_ >= 0)
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

QuitSignals::~QuitSignals() {
    notifier_.reset();
    if (descriptor_ >= 0)
        close(descriptor_);
}

void QuitSignals::watch() {
    if (descriptor_ < 0)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        signalfd_siginfo info{};
        while (read(descriptor_, &info, sizeof info) == sizeof info)
            QCoreApplication::exit(0); // not `quit`, which a window could refuse
    });
}

} // namespace quorbel
