#include "platform/hardware/pipewire/Watchdog.h"

#include <csignal>
#include <initializer_list>
#include <unistd.h>

// Watches over one run of the program and puts applications back on their own devices when it dies.
// A program of its own, so that nothing that ends the other ends this: it has its own session and
// lets no signal of a closing terminal or desktop stop it before its work is done.
int main() {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGQUIT, SIGPIPE})
        std::signal(signal, SIG_IGN);
    return quorbel::runWatchdog(STDIN_FILENO);
}
