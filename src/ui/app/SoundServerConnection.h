#pragma once

#include "platform/hardware/AudioHardware.h"

#include <memory>

namespace quorbel {

/// The hardware layer of this machine. Where no sound server answers, the user is told and can try
/// again; null when they give up. [main]
[[nodiscard]] std::unique_ptr<AudioHardware> connectToSoundServer();

} // namespace quorbel
