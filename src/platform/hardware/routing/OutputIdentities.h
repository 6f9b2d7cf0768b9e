#pragma once

#include "platform/core/OutputIdentity.h"
#include "platform/hardware/routing/ServerObjects.h"

namespace quorbel {

/// Identifies the physical output of a device by its node and its card (null without one).
[[nodiscard]] OutputIdentity identityOf(const NodeRecord &node, const DeviceRecord *card);

} // namespace quorbel
