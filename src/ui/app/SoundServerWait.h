#pragma once

#include "platform/hardware/AudioHardware.h"
#include "platform/threads/Clock.h"
#include "ui/app/SingleInstance.h"

#include <memory>
#include <vector>

namespace quorbel {

// Functions that open this machine's hardware layer; null if there is no sound server. [main]

/// Tries once; reports a failure on standard error.
[[nodiscard]] std::unique_ptr<AudioHardware> hardwareOrComplaint();

/// Asks the user to retry after each failure; null if they decline.
[[nodiscard]] std::unique_ptr<AudioHardware> hardwareOrQuestion();

/// Waits up to 30 s for the sound server of a starting session, then reports it missing on standard
/// error. Runs the event loop meanwhile and appends the desktop's requests to `requests`. A request
/// to show the window opens a message box; the wait then lasts until the server answers or the user
/// gives up. A request to stop ends the wait.
[[nodiscard]] std::unique_ptr<AudioHardware>
awaitHardware(const SingleInstance &instance, Clock &clock, std::vector<DesktopRequest> &requests);

} // namespace quorbel
