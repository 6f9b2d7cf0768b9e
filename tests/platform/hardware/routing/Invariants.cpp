#include "Invariants.h"

#include "Desktop.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace quorbel::desktop {
namespace {

using Application = Desktop::Application;

/// Properties of a node for the feedback search.
struct Hearer {
    std::uint32_t id = 0;
    bool isPlayback = false, isTap = false, isDevice = false, isDuplex = false;
    std::string_view linkGroup, client, process;
};

/// Sound paths, on the server or in the client's view.
struct Graph {
    std::vector<Hearer> nodes;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> links; ///< from output to input
};

Graph graphOf(const SimulatedServer &server) {
    Graph graph;
    for (const Node &node : server.nodes) {
        const NodeTraits &of = *node.traits;
        graph.nodes.push_back({node.id, of.isPlayback(), of.isTap(), of.isDevice(), of.isDuplex,
                               of.linkGroup, of.client, of.process});
    }
    for (const Link &link : server.links)
        graph.links.emplace_back(link.outputNode, link.inputNode);
    return graph;
}

Graph graphOf(const ServerObjects &objects, std::uint32_t tapID) {
    Graph graph;
    for (const auto &[id, node] : objects.nodes())
        graph.nodes.push_back({id, node.mediaClass().starts_with("Stream/Output"), id == tapID,
                               isOutputDevice(node), node.mediaClass() == "Audio/Duplex",
                               node.property("node.link-group"), node.property("client.id"),
                               node.property("application.process.id")});
    for (const auto &[_, link] : objects.links())
        graph.links.emplace_back(link.outputNodeID, link.inputNodeID);
    return graph;
}

bool areOneProgram(const Hearer &listener, const Hearer &player) {
    const auto same = [](std::string_view a, std::string_view b) { return !a.empty() && a == b; };
    return same(listener.linkGroup, player.linkGroup) ||
           (!listener.isDevice &&
            (same(listener.client, player.client) || same(listener.process, player.process)));
}

/// Nodes that the sound of `from` reaches through links and programs; `from` is the first.
std::vector<std::uint32_t> reachedFrom(const Graph &graph, std::uint32_t from) {
    std::vector<std::uint32_t> reached{from};
    const auto add = [&](std::uint32_t id) {
        if (std::ranges::find(reached, id) == reached.end())
            reached.push_back(id);
    };
    for (std::size_t i = 0; i < reached.size(); ++i) {
        const std::uint32_t at = reached[i];
        const auto node = std::ranges::find(graph.nodes, at, &Hearer::id);
        const bool isKnown = node != graph.nodes.end();
        if (isKnown && node->isDuplex) // its outputs carry its own recording
            continue;
        for (const auto &[output, input] : graph.links)
            if (output == at)
                add(input);
        if (!isKnown || node->isPlayback || node->isTap)
            continue;
        for (const Hearer &player : graph.nodes)
            if (player.isPlayback && areOneProgram(*node, player))
                add(player.id);
    }
    return reached;
}

/// Name of the node that a metadata value refers to; "absent" for no such node, empty for no value.
std::string nameOf(const SimulatedServer &server, std::uint32_t subject, const char *key) {
    const MetadataValue *target = server.value(subject, key);
    if (target == nullptr || target->value == "-1")
        return target == nullptr ? "" : "-1";
    const bool isObject = std::string_view(key) == targetObjectKey;
    for (const Node &node : server.nodes)
        if (std::to_string(isObject ? node.serial : node.id) == target->value)
            return node.traits->name;
    const bool isNumber = target->value.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? "absent" : target->value;
}

/// Names of the nodes that the stream is linked to, each once.
std::string places(const Desktop &desktop, const Node &node) {
    std::string result;
    for (const Node &other : desktop.server.nodes)
        if (desktop.server.isLinked(node.id, other.id))
            result += other.traits->name + " ";
    return result;
}

std::string wrongChannels(const Desktop &desktop, const Node &node, const Node &tap) {
    int left = 0, right = 0, wrong = 0;
    for (const Link &link : desktop.server.links) {
        if (link.outputNode != node.id || link.inputNode != tap.id)
            continue;
        const auto channel = [&](const Node &end, std::uint32_t port) -> std::string_view {
            for (const PortRecord &each : end.ports)
                if (each.id == port)
                    return each.channel;
            return "";
        };
        const auto from = channel(node, link.outputPort), to = channel(tap, link.inputPort);
        (to == "FL" ? left : to == "FR" ? right : wrong)++;
        if (from != to && (from != "MONO" || node.traits->channels != 1))
            ++wrong;
    }
    if (left != 1 || right != 1 || wrong != 0 || node.count(false) > 2)
        return node.traits->name + " reaches the tap with wrong channels";
    return "";
}

bool isRoutable(const NodeTraits &traits) {
    return traits.mediaClass == Class::playback && traits.fixedKey.empty();
}

/// True for a copy whose recording half is not linked: it plays nothing and is left in place.
bool isCopyOfNothing(const SimulatedServer &server, const Node &player) {
    const std::string &group = player.traits->linkGroup;
    return !group.empty() &&
           std::any_of(server.nodes.begin(), server.nodes.end(), [&](const Node &node) {
               return node.traits->mediaClass == Class::recording &&
                      node.traits->linkGroup == group &&
                      std::none_of(server.links.begin(), server.links.end(),
                                   [&](const Link &link) { return link.inputNode == node.id; });
           });
}

std::string wrongStream(const Desktop &desktop, const Desktop &without, std::size_t slot,
                        bool isRunning) {
    const Application &application = desktop.applications[slot];
    const Node *node = desktop.playback(application);
    const Node *plain = without.playback(without.applications[slot]);
    if (node == nullptr || plain == nullptr || !node->traits->isPlayback())
        return "";
    const std::string here = places(desktop, *node);
    const Node *tap = desktop.server.ours(true);
    const Node *output = desktop.server.ours(false);
    if (tap != nullptr && desktop.server.isLinked(node->id, tap->id)) {
        if (!isRunning && desktop.hasReadyDevice())
            return node->traits->name + " is linked to the tap while it is off";
        if (here != "quorbel.tap ")
            return node->traits->name + " is heard twice: " + here;
        if (!isRunning)
            return "";
        if (desktop.client.leavesAlone(node->traits->application))
            return node->traits->name + " is captured, against the rules";
        // A stream that the session manager does not link keeps its ports.
        return desktop.manager.isOld(node->serial) ? "" : wrongChannels(desktop, *node, *tap);
    }
    const bool mayBeElsewhere =
        !isRunning || !isRoutable(*node->traits) || application.movedAt >= 0 ||
        desktop.client.leavesAlone(node->traits->application) ||
        application.kind == Desktop::Kind::virtualSink || isCopyOfNothing(desktop.server, *node) ||
        // No client hears of a value restored after ours: the next retry captures the stream.
        (desktop.server.isDeaf && application.isPinUncertain) ||
        hears(desktop.server, output->id, node->id);
    if (!mayBeElsewhere)
        return node->traits->name + " is not captured but at: " + here;
    const std::string &program = node->traits->application;
    if (application.wasMovedByLinks || desktop.isPinUncertain(program) ||
        without.isPinUncertain(program) || desktop.manager.isOld(node->serial) ||
        desktop.client.wasWatchdogLost())
        return "";
    const std::string there = places(without, *plain);
    if (here != there)
        return node->traits->name + " is at: " + here + "and without us at: " + there;
    if (node->traits->isPulse && !node->traits->isAnswered && !there.empty())
        return node->traits->name + " hangs";
    return "";
}

std::string wrongPins(const Desktop &desktop, const Desktop &without, bool isOff) {
    for (std::size_t slot = 0; slot < desktop.applications.size(); ++slot) {
        const Application &application = desktop.applications[slot];
        const std::string &name = application.halves.back().application;
        if (desktop.isPinUncertain(name) || without.isPinUncertain(name))
            continue;
        const auto remembered = [&](const Desktop &of) {
            const auto found = of.manager.remembered.find(name);
            return found == of.manager.remembered.end() ? "" : found->second;
        };
        if (remembered(desktop) != remembered(without))
            return name + " is remembered at '" + remembered(desktop) + "' and without us at '" +
                   remembered(without) + "'";
        const Node *node = desktop.playback(application);
        const Node *plain = without.playback(without.applications[slot]);
        if (!isOff || node == nullptr || plain == nullptr || application.wasMovedByLinks)
            continue;
        const std::string here = chosenTarget(desktop.server, *node);
        const std::string there = chosenTarget(without.server, *plain);
        if (here != there)
            return name + " has the target '" + here + "' and without us '" + there + "'";
    }
    return "";
}

const char *leftBehind(const Desktop &desktop) {
    if (desktop.server.ours(true) != nullptr || desktop.server.ours(false) != nullptr)
        return "a node of ours is left";
    for (const Link &link : desktop.server.links)
        if (link.owner == Owner::ours)
            return "a link of ours is left";
    if (desktop.client.ledger().size() != 0)
        return "a line of the journal is left";
    for (const auto &[where, value] : desktop.server.metadata)
        if (where.second == targetObjectKey && desktop.server.wasTap(value.value))
            return "a target of ours is left";
    return nullptr;
}

} // namespace

std::string chosenTarget(const SimulatedServer &server, const Node &node) {
    std::string target = nameOf(server, node.id, targetObjectKey);
    if (target.empty())
        target = nameOf(server, node.id, targetNodeKey);
    if (target.empty())
        target = node.traits->ownTarget;
    return target == "-1" ? "" : target;
}

bool hears(const SimulatedServer &server, std::uint32_t from, std::uint32_t to) {
    const auto reached = reachedFrom(graphOf(server), from);
    return std::find(reached.begin() + 1, reached.end(), to) != reached.end();
}

std::string fedBack(const SimulatedClient &client) {
    const ServerObjects &objects = client.objects();
    const RoutingEnds &ends = client.ends();
    const std::string tap = std::to_string(ends.tapSerial);
    const NodeRecord *output = objects.node(ends.outID);
    if (output == nullptr || output->mediaClass() != "Stream/Output/Audio/Internal" ||
        objects.nodeWithSerial(ends.tapSerial) == nullptr)
        return "";
    for (const std::uint32_t id : reachedFrom(graphOf(objects, ends.tapID), ends.outID)) {
        const auto target = objects.metadata(id, targetObjectKey);
        const NodeRecord *node = objects.node(id);
        if (target && target->value == tap && client.isSentToTap(id) && node != nullptr &&
            id != ends.outID && node->isComplete && node->mediaClass().starts_with("Stream/Output"))
            return node->name();
    }
    return "";
}

std::string wrongWhenQuiet(const Desktop &desktop, const Desktop &without) {
    const bool isRunning = desktop.client.published() == Published::running;
    const Node *tap = desktop.server.ours(true);
    const Node *output = desktop.server.ours(false);
    if (isRunning) {
        if (tap == nullptr || output == nullptr)
            return "running without streams";
        int linked = 0, heard = 0;
        for (const Link &link : desktop.server.links) {
            linked += static_cast<int>(link.outputNode == output->id);
            heard += static_cast<int>(link.inputNode == tap->id);
        }
        if (heard > 0 && output->isStuck)
            return "running with an output that is suspended";
        if (linked == 0 || linked < output->count(false))
            return "running without a device";
        if (tap->count(true) != 2)
            return "running with a tap of wrong channels";
    } else if (desktop.client.wantsOn() && desktop.hasReadyDevice()) {
        return "not running again";
    }
    int alive = 0;
    for (std::size_t slot = 0; slot < desktop.applications.size(); ++slot) {
        alive += static_cast<int>(desktop.applications[slot].serials.size());
        if (auto wrong = wrongStream(desktop, without, slot, isRunning); !wrong.empty())
            return wrong;
    }
    if (static_cast<int>(desktop.client.ledger().size()) > alive &&
        !desktop.client.wasWatchdogLost())
        return "the journal is longer than the list of streams";
    if (!desktop.client.isAlive() || !desktop.client.wantsOn())
        if (const char *left = leftBehind(desktop);
            left != nullptr && !desktop.client.wasWatchdogLost())
            return left;
    return wrongPins(desktop, without, !isRunning && !desktop.client.wasWatchdogLost());
}

} // namespace quorbel::desktop
