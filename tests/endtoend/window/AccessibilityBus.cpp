#include "endtoend/window/AccessibilityBus.h"

#include "soundserver/Waiting.h"

#include <atspi/atspi.h>
#include <cstdlib>
#include <filesystem>

namespace quorbel {

using namespace soundserver;

namespace {

/// Where distributions put what no user starts.
std::string launcherPath() {
    for (const char *folder : {"/usr/libexec", "/usr/lib/at-spi2-core", "/usr/lib"}) {
        const auto path = std::filesystem::path(folder) / "at-spi-bus-launcher";
        if (exists(path))
            return path;
    }
    throw ServerError("at-spi-bus-launcher (at-spi2-core) is not installed");
}

} // namespace

AccessibilityBus::AccessibilityBus(const PrivateSoundServer &session, const std::string &display) {
    Environment environment = session.environment();
    environment["DISPLAY"] = display;
    // Killed, it would leave its bus behind: should this process die, it is asked to end instead.
    launcher_ = std::make_unique<ChildProcess>(std::vector<std::string>{"setpriv", "--pdeathsig",
                                                                        "TERM", launcherPath(),
                                                                        "--launch-immediately"},
                                               environment);
    std::string address;
    waitFor("the accessibility bus", 10.0, [&] {
        const auto question =
            session.start({"dbus-send", "--session", "--print-reply=literal", "--dest=org.a11y.Bus",
                           "/org/a11y/bus", "org.a11y.Bus.GetAddress"});
        if (question->exitStatusWithin(5.0) != 0)
            return false;
        address = question->output();
        address.erase(0, address.find_first_not_of(" \n"));
        address.erase(address.find_last_not_of(" \n") + 1);
        return !address.empty();
    });
    // For us alone: the programs ask the session for it, as they do everywhere.
    setenv("AT_SPI_BUS_ADDRESS", address.c_str(), 1);
    const int result = atspi_init();
    unsetenv("AT_SPI_BUS_ADDRESS");
    if (result != 0)
        throw ServerError("no connection to the accessibility bus");
    atspi_set_timeout(5000, 5000);
}

AccessibilityBus::~AccessibilityBus() {
    atspi_exit();
    launcher_->stop(); // which ends the bus
}

void AccessibilityBus::type(const std::string &text) {
    if (atspi_generate_keyboard_event(0, text.c_str(), ATSPI_KEY_STRING, nullptr) == FALSE)
        throw ServerError("cannot type " + text);
}

} // namespace quorbel
