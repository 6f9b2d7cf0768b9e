#pragma once

#include "platform/core/OutputIdentity.h"
#include "platform/hardware/routing/ServerObjects.h"

namespace quorbel {

/// Returns where a device's sound comes out, from its node and its card (null without one).
[[nodiscard]] OutputIdentity identityOf(const NodeRecord &node, const DeviceRecord *card);

} // namespace quorbel
