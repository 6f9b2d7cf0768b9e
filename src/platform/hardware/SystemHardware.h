#pragma once

#include "platform/hardware/AudioHardware.h"

#include <memory>
#include <string>

namespace quorbel {

/// Makes the hardware layer of the running system; the backend that is linked defines it. Returns
/// null and sets a negative errno if no sound server answers.
std::unique_ptr<AudioHardware> makeSystemHardware(Status &status);

/// Name and version of the backend's library, such as "PipeWire 1.4.2".
[[nodiscard]] std::string systemHardwareLibrary();

} // namespace quorbel
