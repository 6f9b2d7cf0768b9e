#pragma once

#include "platform/hardware/AudioHardware.h"

#include <memory>

namespace quorbel {

/// Where no sound server answers: tell the user in a message box, who can try again, or write one
/// line to standard error.
enum class WithoutServer { ask, complain };

/// The hardware layer of this machine; null without a sound server, or when the user gives up.
/// [main]
[[nodiscard]] std::unique_ptr<AudioHardware> connectToSoundServer(WithoutServer otherwise);

} // namespace quorbel
