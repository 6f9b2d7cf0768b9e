#pragma once

#include "platform/hardware/AudioHardware.h"

#include <memory>
#include <string>

namespace quorbel {

/// The hardware layer on the user's PipeWire server; null and a negative errno when none answers.
/// The one header of this folder for callers outside it: it brings none of the server's own.
std::unique_ptr<AudioHardware> connectToPipeWire(Status &status);

/// Name and version of the client library that is loaded.
[[nodiscard]] std::string pipeWireLibrary();

} // namespace quorbel
