#pragma once

#include "engine/ChainSettings.h"

namespace quorbel::bench {

/// Every stage on, with ten bands of the equaliser.
[[nodiscard]] ChainSettings everythingOn();

} // namespace quorbel::bench
