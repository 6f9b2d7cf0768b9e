#pragma once

#include "platform/hardware/AudioHardware.h"

#include <memory>

namespace quorbel {

/// The hardware layer of this machine. Throws CommandError, with how to start one, where no sound
/// server answers.
[[nodiscard]] std::unique_ptr<AudioHardware> hardwareOrError();

} // namespace quorbel
