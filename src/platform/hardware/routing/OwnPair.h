#pragma once

#include "platform/hardware/routing/PairSupervisor.h"
#include "platform/hardware/routing/ServerObjects.h"
#include "platform/hardware/routing/StreamLinker.h"

#include <cstdint>
#include <vector>

namespace quorbel {

/// Our two streams among the server's objects, and the output's device.
struct OwnPair {
    const NodeRecord *tap = nullptr; ///< null without a node, like `output`
    const NodeRecord *output = nullptr;
    std::uint32_t deviceID = 0; ///< chosen for the output
    bool isDeviceTap = false;   ///< the tap counts as a device

    /// Facts shown by the server's objects; the others keep their defaults. `needsDeviceTap`: as
    /// `StreamRouter::needsDeviceTap`.
    [[nodiscard]] PairFacts facts(const ServerObjects &objects, bool needsDeviceTap) const;
    /// Ends for the router, without the default device; all 0 if a stream has no node.
    [[nodiscard]] RoutingEnds ends(const ServerObjects &objects) const;
    /// Links from the output to its device, channel by channel.
    [[nodiscard]] std::vector<LinkRequest> deviceLinks(const ServerObjects &objects) const;
};

} // namespace quorbel
