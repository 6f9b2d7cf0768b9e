#pragma once

#include "platform/core/OutputIdentity.h"

#include <string>

namespace quorbel {

/// Display name of an output: the device's name with the socket in use, or with "call", as in
/// "Built-in Audio, Headphones".
[[nodiscard]] std::string outputLabel(const std::string &deviceName,
                                      const OutputIdentity &identity);

} // namespace quorbel
