#pragma once

#include "platform/hardware/AudioHardware.h"

#include <memory>
#include <string>

namespace quorbel {

/// The one place that chooses a backend: the hardware layer of the system that the program runs on.
/// Null and a negative errno when there is no sound server to talk to.
std::unique_ptr<AudioHardware> makeSystemHardware(Status &status);

/// Name and version of the library that it uses, such as "PipeWire 1.4.2".
[[nodiscard]] std::string systemHardwareLibrary();

} // namespace quorbel
