#pragma once

#include "platform/hardware/AudioHardware.h"
#include "platform/threads/Clock.h"
#include "ui/app/SingleInstance.h"

#include <memory>
#include <vector>

namespace quorbel {

// Ways to the hardware layer of this machine. Each returns null without a sound server. [main]

/// One attempt, with a line on standard error if it fails.
[[nodiscard]] std::unique_ptr<AudioHardware> hardwareOrComplaint();

/// Offers the user another try after each attempt that fails; null when they give up.
[[nodiscard]] std::unique_ptr<AudioHardware> hardwareOrQuestion();

/// Waits up to 30 s for the server of a session that is itself still starting, then says on
/// standard error what is missing. The event loop runs meanwhile, and requests of the desktop are
/// appended to `requests`. One to show the window shows what is missing; the wait then lasts until
/// the server comes or the user gives up. One to stop ends it.
[[nodiscard]] std::unique_ptr<AudioHardware>
awaitHardware(const SingleInstance &instance, Clock &clock, std::vector<DesktopRequest> &requests);

} // namespace quorbel
