#pragma once

#include "platform/hardware/AudioHardware.h"

#include <memory>

namespace quorbel {

/// Returns this machine's hardware layer. Throws CommandError, with advice on starting a sound
/// server, if none answers.
[[nodiscard]] std::unique_ptr<AudioHardware> hardwareOrError();

} // namespace quorbel
