#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <array>

namespace quorbel {
namespace {

bool haveEqual(const NodeRecord &a, const NodeRecord &b, const char *key) {
    const std::string &value = a.property(key);
    return !value.empty() && value == b.property(key);
}

/// True for a link that carries a device's recording, not the sound played on it.
bool isRecorded(const ServerObjects &objects, const NodeRecord *device, const LinkRecord &link) {
    const PortRecord *port = objects.port(link.outputPortID);
    return device != nullptr && device->mediaClass() == "Audio/Duplex" && port != nullptr &&
           !port->isMonitor;
}

bool areOfOneProgram(const NodeRecord &a, const NodeRecord &b) {
    if (haveEqual(a, b, "node.link-group") || haveEqual(a, b, "client.id"))
        return true;
    // All modules of the PulseAudio server run in its one process.
    return haveEqual(a, b, "application.process.id") && a.property("pulse.module.id").empty() &&
           b.property("pulse.module.id").empty();
}

} // namespace

bool isRoutable(const NodeRecord &node) {
    if (node.mediaClass() != "Stream/Output/Audio" || node.property("node.autoconnect") != "true")
        return false;
    // Each of these properties forbids moving the stream; a move would destroy some streams.
    constexpr std::array fixed{"node.dont-reconnect", "node.dont-move", "node.dont-fallback",
                               "node.exclusive"};
    return std::none_of(fixed.begin(), fixed.end(),
                        [&](const char *key) { return node.property(key) == "true"; });
}

bool isPlayback(const NodeRecord &node) { return node.mediaClass().starts_with("Stream/Output"); }

std::string programOf(const NodeRecord &node) {
    for (const char *key :
         {"media.role", "application.id", "application.name", "media.name", "node.name"})
        if (const std::string &value = node.property(key); !value.empty())
            return node.mediaClass() + ":" + key + ":" + value;
    return {};
}

bool isPulseClient(const NodeRecord &node) {
    return node.property("client.api") == "pipewire-pulse";
}

bool isAnsweredPulseClient(const NodeRecord &node) {
    return !node.property("pulse.attr.tlength").empty();
}

bool isVirtualSinkOutput(const ServerObjects &objects, const NodeRecord &node) {
    const std::string &group = node.property("node.link-group");
    if (group.empty())
        return false;
    return std::any_of(objects.nodes().begin(), objects.nodes().end(), [&](const auto &entry) {
        const NodeRecord &other = entry.second;
        return other.mediaClass().starts_with("Audio/Sink") &&
               other.property("node.link-group") == group;
    });
}

bool isUndecidedCopy(const ServerObjects &objects, const NodeRecord &node) {
    const std::string &group = node.property("node.link-group");
    if (group.empty())
        return false;
    const auto isLinked = [&](std::uint32_t recorder) {
        return std::any_of(objects.links().begin(), objects.links().end(),
                           [&](const auto &entry) { return entry.second.inputNodeID == recorder; });
    };
    return std::any_of(objects.nodes().begin(), objects.nodes().end(), [&](const auto &entry) {
        const NodeRecord &other = entry.second;
        return other.mediaClass().starts_with("Stream/Input") &&
               other.property("node.link-group") == group && !isLinked(other.id);
    });
}

bool isPlainStereo(const ServerObjects &objects, std::uint32_t nodeID, bool input) {
    const auto ports = objects.ports(nodeID, input);
    return std::count_if(ports.begin(), ports.end(),
                         [](const PortRecord &port) { return !port.isMonitor; }) == 2 &&
           std::all_of(ports.begin(), ports.end(), [](const PortRecord &port) {
               return port.isMonitor || port.channel == "FL" || port.channel == "FR";
           });
}

std::set<std::uint32_t> hearersOf(const ServerObjects &objects, std::uint32_t nodeID) {
    std::set<std::uint32_t> hearers;
    std::vector<std::uint32_t> fresh{nodeID};
    const auto add = [&](std::uint32_t id) {
        if (id != nodeID && hearers.insert(id).second)
            fresh.push_back(id);
    };
    while (!fresh.empty()) {
        const std::uint32_t from = fresh.back();
        fresh.pop_back();
        const NodeRecord *listener = objects.node(from);
        for (const auto &[_, link] : objects.links())
            if (link.outputNodeID == from && !isRecorded(objects, listener, link))
                add(link.inputNodeID);
        if (listener == nullptr || from == nodeID || isPlayback(*listener))
            continue;
        // A sink passes its sound on only if it is virtual, through its output half.
        const bool isSink = isOutputDevice(*listener);
        if (isSink && listener->property("node.link-group").empty())
            continue;
        for (const auto &[id, node] : objects.nodes())
            if (isPlayback(node) && (isSink ? haveEqual(*listener, node, "node.link-group")
                                            : areOfOneProgram(*listener, node)))
                add(id);
    }
    return hearers;
}

} // namespace quorbel
