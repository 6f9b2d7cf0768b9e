#pragma once

#include "platform/hardware/AudioHardware.h"

#include <memory>
#include <string>

namespace quorbel {

/// Makes the hardware layer on the user's PipeWire server; null and a negative errno if none
/// answers. The only header of this folder for callers outside it: it includes none of PipeWire's.
std::unique_ptr<AudioHardware> connectToPipeWire(Status &status);

/// Name and version of the loaded client library.
[[nodiscard]] std::string pipeWireLibrary();

} // namespace quorbel
