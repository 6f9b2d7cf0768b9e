#pragma once

#include "platform/core/OutputIdentity.h"
#include "platform/hardware/routing/ServerObjects.h"

namespace quorbel {

/// Where a device's sound comes out, from its node and the card that the node belongs to (null
/// where there is none).
[[nodiscard]] OutputIdentity identityOf(const NodeRecord &node, const DeviceRecord *card);

} // namespace quorbel
