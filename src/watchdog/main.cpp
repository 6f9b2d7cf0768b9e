#include "platform/hardware/pipewire/Watchdog.h"

#include <csignal>
#include <initializer_list>
#include <unistd.h>

// Watches one run of the program and moves applications back to their own devices when it dies.
// Runs as a separate program to outlive it: has its own session and ignores the signals of a
// closing terminal or desktop.
int main() {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGQUIT, SIGPIPE})
        std::signal(signal, SIG_IGN);
    return quorbel::runWatchdog(STDIN_FILENO);
}
