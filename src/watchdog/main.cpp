#include "platform/hardware/pipewire/Watchdog.h"

#include <csignal>
#include <initializer_list>
#include <unistd.h>

// Watches over one run of the program and puts applications back on their own devices when it dies.
// A program of its own, so that it outlives the other: it has its own session and ignores the
// signals of a closing terminal or desktop.
int main() {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGQUIT, SIGPIPE})
        std::signal(signal, SIG_IGN);
    return quorbel::runWatchdog(STDIN_FILENO);
}
