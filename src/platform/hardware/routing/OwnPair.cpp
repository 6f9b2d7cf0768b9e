#include "platform/hardware/routing/OwnPair.h"

#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <set>

namespace quorbel {
namespace {

/// Calls `use` with each link from the node to an output device.
template <typename Use>
void forDeviceLinks(const ServerObjects &objects, std::uint32_t outputID, Use use) {
    for (const auto &[_, link] : objects.links())
        if (const NodeRecord *to = objects.node(link.inputNodeID);
            link.outputNodeID == outputID && to != nullptr && isOutputDevice(*to))
            use(link);
}

} // namespace

PairFacts OwnPair::facts(const ServerObjects &objects, bool needsDeviceTap) const {
    PairFacts facts;
    facts.hasTap = tap != nullptr && objects.ports(tap->id, true).size() >= 2;
    facts.isTapOfWrongKind =
        facts.hasTap && !isDeviceTap && (needsDeviceTap || !isPlainStereo(objects, tap->id, true));
    facts.hasOutput = output != nullptr;
    facts.hasDevice = objects.node(deviceID) != nullptr && objects.hasPorts(deviceID, true);
    if (output == nullptr)
        return facts;
    std::set<std::uint32_t> linkedPorts;
    forDeviceLinks(objects, output->id,
                   [&](const LinkRecord &link) { linkedPorts.insert(link.outputPortID); });
    // With more than two channels some may have no counterpart on the device.
    const std::size_t wanted = std::min<std::size_t>(2, objects.ports(output->id, false).size());
    facts.isOutputLinked = wanted > 0 && linkedPorts.size() >= wanted;
    return facts;
}

RoutingEnds OwnPair::ends(const ServerObjects &objects) const {
    if (tap == nullptr || output == nullptr)
        return {};
    RoutingEnds ends{tap->id, tap->serial, output->id, deviceID};
    // The session manager's temporary choice.
    forDeviceLinks(objects, output->id,
                   [&](const LinkRecord &link) { ends.deviceID = link.inputNodeID; });
    return ends;
}

std::vector<LinkRequest> OwnPair::deviceLinks(const ServerObjects &objects) const {
    std::vector<LinkRequest> links;
    if (output == nullptr)
        return links;
    const auto inputs = objects.ports(deviceID, true);
    for (const PortRecord &from : objects.ports(output->id, false)) {
        const auto to = std::find_if(inputs.begin(), inputs.end(), [&](const PortRecord &input) {
            return input.channel == from.channel || inputs.size() == 1;
        });
        if (to != inputs.end())
            links.push_back({output->id, from.id, deviceID, to->id, true});
    }
    return links;
}

} // namespace quorbel
