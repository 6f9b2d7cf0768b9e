#pragma once

#include "platform/core/OutputIdentity.h"

#include <string>

namespace quorbel {

/// The user's name for an output: the device's name, with the socket in use or that it is a call,
/// as in "Built-in Audio, Headphones".
[[nodiscard]] std::string outputLabel(const std::string &deviceName,
                                      const OutputIdentity &identity);

} // namespace quorbel
