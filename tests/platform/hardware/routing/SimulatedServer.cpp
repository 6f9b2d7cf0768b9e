#include "SimulatedServer.h"

#include <algorithm>
#include <utility>

namespace quorbel::desktop {

const std::vector<const char *> &channelNames(int count) {
    static const std::vector<const char *> mono{"MONO"}, stereo{"FL", "FR"},
        quadro{"FL", "FR", "RL", "RR"}, six{"FL", "FR", "FC", "LFE", "RL", "RR"},
        eight{"FL", "FR", "FC", "LFE", "RL", "RR", "SL", "SR"};
    switch (count) {
    case 1:
        return mono;
    case 4:
        return quadro;
    case 6:
        return six;
    case 8:
        return eight;
    default:
        return stereo;
    }
}

void NodeTraits::fill() {
    static constexpr const char *classes[] = {
        "Audio/Sink",          "Stream/Output/Audio",
        "Stream/Input/Audio",  "Stream/Input/Audio/Internal",
        "Audio/Sink/Internal", "Stream/Output/Audio/Internal"};
    registryProperties = {{"media.class", classes[static_cast<int>(mediaClass)]},
                          {"node.name", name}};
    if (isDuplex)
        registryProperties["media.class"] = "Audio/Duplex";
    if (!client.empty())
        registryProperties["client.id"] = client;
    if (!application.empty())
        registryProperties["application.name"] = application;
    properties = registryProperties;
    if (isAutoconnected)
        properties["node.autoconnect"] = "true";
    if (!fixedKey.empty())
        properties[fixedKey] = "true";
    if (!ownTarget.empty())
        properties["target.object"] = ownTarget;
    if (!linkGroup.empty())
        properties["node.link-group"] = linkGroup;
    if (!process.empty())
        properties["application.process.id"] = process;
    if (isPulse)
        properties["client.api"] = "pipewire-pulse";
    if (isAnswered)
        properties["pulse.attr.tlength"] = "4096";
}

Node *SimulatedServer::find(std::uint64_t serial) {
    const auto found = std::ranges::find(nodes, serial, &Node::serial);
    return found == nodes.end() ? nullptr : &*found;
}

const Node *SimulatedServer::find(std::uint64_t serial) const {
    return const_cast<SimulatedServer *>(this)->find(serial);
}

Node *SimulatedServer::findID(std::uint32_t id) {
    const auto found = std::ranges::find(nodes, id, &Node::id);
    return found == nodes.end() ? nullptr : &*found;
}

const Node *SimulatedServer::findName(const std::string &name) const {
    for (const Node &node : nodes)
        if (node.traits->name == name)
            return &node;
    return nullptr;
}

const Node *SimulatedServer::ours(bool tap) const {
    for (const Node &node : nodes)
        if (node.traits->handle != 0 && node.traits->isTap() == tap)
            return &node;
    return nullptr;
}

bool SimulatedServer::wasTap(const std::string &value) const {
    return std::any_of(taps_.begin(), taps_.end(),
                       [&](std::uint64_t serial) { return std::to_string(serial) == value; });
}

bool SimulatedServer::isLinked(std::uint32_t output, std::uint32_t input) const {
    return std::any_of(links.begin(), links.end(), [&](const Link &link) {
        return link.outputNode == output && link.inputNode == input;
    });
}

void SimulatedServer::tellClient(const Event &event) {
    if (isClientThere)
        toClient.push(event, now, random);
}

void SimulatedServer::tell(const Event &event) {
    hasChanged = true;
    if (isManagerThere)
        toManager.push(event, now, random);
    tellClient(event);
}

/// Returns the lowest free id, so that ids are reused at once. If values outlive their nodes, our
/// nodes use a separate range: other streams then inherit the same values as without us.
std::uint32_t SimulatedServer::freeNodeID(bool isOurs) const {
    std::uint32_t id = isOurs && keepsValues ? 500 : 30;
    while (std::any_of(nodes.begin(), nodes.end(), [&](const Node &node) { return node.id == id; }))
        ++id;
    return id;
}

std::uint64_t SimulatedServer::addNode(NodeTraits traits) {
    Node node;
    node.id = freeNodeID(traits.handle != 0);
    node.serial = nextSerial_++;
    node.birth = now;
    traits.fill();
    traits.registryProperties["object.serial"] = std::to_string(node.serial);
    traits.properties["object.serial"] = std::to_string(node.serial);
    node.traits = std::make_shared<const NodeTraits>(std::move(traits));
    nodes.push_back(node);
    tell(nodeEvent(Event::Kind::nodeAdded, node));
    if (node.traits->isTap()) {
        taps_.push_back(node.serial);
        setPorts(nodes.back(), 2);
    }
    return node.serial;
}

void SimulatedServer::addPort(Node &node, int index, bool input, bool monitor,
                              const char *channel) {
    node.ports.push_back(
        {nextPort_++, node.id, static_cast<std::uint32_t>(index), channel, input, monitor});
    tell(portEvent(Event::Kind::portAdded, node, node.ports.back()));
}

void SimulatedServer::addAllPorts(Node &node) {
    while (node.count(true) < node.traits->channels) {
        const int index = node.count(true);
        const char *channel = channelNames(node.traits->channels)[static_cast<std::size_t>(index)];
        addPort(node, index, true, false, channel);
        addPort(node, index, false, true, channel);
    }
}

template <typename Predicate> void SimulatedServer::removeLinksIf(const Predicate &predicate) {
    for (std::size_t i = 0; i < links.size();) {
        if (!predicate(links[i])) {
            ++i;
            continue;
        }
        const Link link = links[i];
        links.erase(links.begin() + static_cast<std::ptrdiff_t>(i));
        tell(linkEvent(Event::Kind::linkRemoved, link));
    }
    lookAtStates();
}

void SimulatedServer::removeLinksAt(std::uint32_t node) {
    removeLinksIf(
        [=](const Link &link) { return link.outputNode == node || link.inputNode == node; });
}

void SimulatedServer::setPorts(Node &node, int channels) {
    const bool input = !node.traits->isPlayback();
    removeLinksAt(node.id);
    for (const PortRecord &port : node.ports)
        tell(portEvent(Event::Kind::portRemoved, node, port));
    node.ports.clear();
    int index = 0;
    for (const char *channel : channelNames(channels))
        addPort(node, index++, input, false, channel);
}

void SimulatedServer::removeNode(std::uint64_t serial) {
    if (find(serial) == nullptr)
        return;
    const Node node = *find(serial);
    removeLinksAt(node.id);
    for (const PortRecord &port : node.ports)
        tell(portEvent(Event::Kind::portRemoved, node, port));
    std::erase_if(nodes, [&](const Node &other) { return other.serial == serial; });
    tell(nodeEvent(Event::Kind::nodeRemoved, node));
    if (keepsValues)
        return;
    setMetadata(node.id, targetObjectKey, {});
    setMetadata(node.id, targetNodeKey, {});
}

void SimulatedServer::addLink(Link link) {
    for (const Link &other : links)
        if (other.outputPort == link.outputPort && other.inputPort == link.inputPort)
            return;
    link.id = nextLink_++;
    links.push_back(link);
    tell(linkEvent(Event::Kind::linkAdded, link));
    const Node *output = findID(link.outputNode);
    const Node *input = findID(link.inputNode);
    // The PulseAudio server answers only if the stream is linked to a node of this class.
    if (output->traits->isPulse && !output->traits->isAnswered &&
        input->traits->mediaClass == Class::sink)
        answers.push_back({now + 500 + below(random, 8000), output->serial});
    lookAtStates();
}

void SimulatedServer::removeLinks(Owner owner) {
    removeLinksIf([=](const Link &link) { return link.owner == owner; });
}

void SimulatedServer::removeLinksOf(std::uint32_t outputNode) {
    removeLinksIf([=](const Link &link) { return link.outputNode == outputNode; });
}

void SimulatedServer::connectByChannel(const Node &output, const Node &input, Owner owner) {
    for (const PortRecord &from : output.ports) {
        if (from.isInput || (output.traits->isPlayback() && from.isMonitor))
            continue;
        for (const PortRecord &to : input.ports) {
            const std::string_view a = from.channel, b = to.channel;
            if (to.isInput && (a == b || a == "MONO" || b == "MONO"))
                addLink({.outputNode = output.id,
                         .inputNode = input.id,
                         .outputPort = from.id,
                         .inputPort = to.id,
                         .owner = owner});
        }
    }
}

void SimulatedServer::setMetadata(std::uint32_t subject, const std::string &key,
                                  const std::optional<MetadataValue> &value) {
    if (!hasMetadata)
        return;
    const MetadataValue *known = valueIn(metadata, subject, key.c_str());
    if (value ? known != nullptr && *known == *value : known == nullptr)
        return;
    put(metadata, subject, key, value);
    const Event event = metadataEvent(subject, key, value);
    hasChanged = true;
    if (isManagerThere)
        toManager.push(event, now, random);
    if (!isDeaf)
        tellClient(event);
}

void SimulatedServer::lookAtStates() {
    Node *tap = nullptr, *output = nullptr;
    for (Node &node : nodes)
        if (node.traits->handle != 0)
            (node.traits->isTap() ? tap : output) = &node;
    const bool tapRuns =
        tap != nullptr && std::any_of(links.begin(), links.end(),
                                      [&](const Link &link) { return link.inputNode == tap->id; });
    const auto set = [&](Node *node, bool runs) {
        if (node == nullptr || node->ran == runs)
            return;
        node->ran = runs;
        tellClient({.kind = runs ? Event::Kind::runs : Event::Kind::stops,
                    .id = node->id,
                    .serial = node->serial});
    };
    set(tap, tapRuns);
    set(output, tapRuns && output != nullptr && !output->isStuck);
}

void SimulatedServer::carryOut(const Command &command, bool isWatchdog) {
    using Kind = Command::Kind;
    Node *node = find(command.serial);
    switch (command.kind) {
    case Kind::setMetadata:
        setMetadata(command.id, command.key, command.value);
        break;
    case Kind::deleteMetadata:
        setMetadata(command.id, command.key, {});
        break;
    case Kind::createNode:
        addNode(*command.traits);
        break;
    case Kind::destroyNode:
        for (const Node &each : nodes)
            if (each.traits->handle == static_cast<int>(command.id)) {
                removeNode(each.serial);
                break;
            }
        break;
    case Kind::connect: {
        Node *input = find(command.other);
        if (node == nullptr || input == nullptr)
            break;
        if (!node->traits->isPlayback()) { // links a sink's monitor to its recorder
            if (input->count(true) != node->count(true))
                setPorts(*input, node->count(true));
        } else if (!input->traits->isStream()) {
            if (node->count(false) != input->count(true) ||
                node->ports.front().channel != input->ports.front().channel)
                setPorts(*node, input->count(true));
        } else if (node->count(false) == 0) {
            setPorts(*node, input->count(true));
        } else if (node->count(false) != input->count(true)) {
            setPorts(*input, node->count(false));
        }
        // Simulates session managers that lose a link unnoticed.
        if (!input->traits->isTap() || !losesTapLinks || !chance(random, 30))
            connectByChannel(*node, *input, Owner::manager);
        break;
    }
    case Kind::disconnect:
        removeLinksIf([=](const Link &link) {
            return node != nullptr && link.owner == Owner::manager &&
                   (link.outputNode == node->id || link.inputNode == node->id);
        });
        break;
    case Kind::createLink: {
        const auto has = [&](std::uint32_t id, std::uint32_t port) {
            const Node *end = findID(id);
            return end != nullptr && std::any_of(end->ports.begin(), end->ports.end(),
                                                 [&](const PortRecord &p) { return p.id == port; });
        };
        if (has(command.link.outputNode, command.link.outputPort) &&
            has(command.link.inputNode, command.link.inputPort))
            addLink(command.link);
        break;
    }
    case Kind::destroyLink:
        removeLinksIf([&](const Link &link) {
            return link.owner == Owner::ours && link.handle == command.serial;
        });
        break;
    case Kind::removeLink:
        removeLinksIf([&](const Link &link) { return link.id == command.id; });
        break;
    case Kind::suspend:
    case Kind::nudge:
        if (node != nullptr) {
            node->isStuck = command.kind == Kind::suspend;
            disturbedAt = node->isStuck ? now : disturbedAt;
            hasChanged = true;
            lookAtStates();
        }
        break;
    case Kind::sync:
        if (isWatchdog)
            hasWatchdogFinished = true;
        else
            toClient.push({.kind = Event::Kind::done, .serial = command.serial}, now, random);
        break;
    case Kind::bindNode:
        if (node != nullptr)
            toClient.push(nodeEvent(Event::Kind::nodeInfo, *node), now, random);
        break;
    case Kind::bindMetadata:
        if (!hasMetadata)
            break;
        for (const auto &[where, value] : metadata)
            toClient.push(metadataEvent(where.first, where.second, value, command.serial), now,
                          random);
        toClient.push({.kind = Event::Kind::metadataDone, .serial = command.serial}, now, random);
        break;
    case Kind::leave:
        clientLeaves();
        break;
    }
}

void SimulatedServer::answer() {
    for (std::size_t i = 0; i < answers.size();) {
        if (answers[i].due > now) {
            ++i;
            continue;
        }
        const std::uint64_t serial = answers[i].serial;
        answers.erase(answers.begin() + static_cast<std::ptrdiff_t>(i));
        Node *node = find(serial);
        if (node == nullptr || node->traits->isAnswered)
            continue;
        NodeTraits traits = *node->traits;
        traits.isAnswered = true;
        traits.properties["pulse.attr.tlength"] = "4096";
        node->traits = std::make_shared<const NodeTraits>(std::move(traits));
        hasChanged = true;
        tellClient(nodeEvent(Event::Kind::nodeInfo, *node));
    }
}

void SimulatedServer::snapshot(Line<Event> &line) {
    for (const Node &node : nodes) {
        line.push(nodeEvent(Event::Kind::nodeAdded, node), now, random);
        for (const PortRecord &port : node.ports)
            line.push(portEvent(Event::Kind::portAdded, node, port), now, random);
    }
    for (const Link &link : links)
        line.push(linkEvent(Event::Kind::linkAdded, link), now, random);
}

void SimulatedServer::managerArrives() {
    isManagerThere = true;
    snapshot(toManager);
    hasMetadata = true;
    hasChanged = true;
    tellClient({.kind = Event::Kind::metadataAppeared});
}

void SimulatedServer::managerLeaves() {
    isManagerThere = false;
    toManager.clear();
    fromManager.clear();
    removeLinks(Owner::manager);
    metadata.clear();
    hasMetadata = isDeaf = false;
    hasChanged = true;
    tellClient({.kind = Event::Kind::metadataGone});
}

void SimulatedServer::clientArrives() {
    isClientThere = true;
    snapshot(toClient);
    if (hasMetadata)
        toClient.push({.kind = Event::Kind::metadataAppeared}, now, random);
}

void SimulatedServer::clientLeaves() {
    isClientThere = false;
    toClient.clear();
    removeLinks(Owner::ours);
    for (const Node &node : std::vector(nodes))
        if (node.traits->handle != 0)
            removeNode(node.serial);
}

void SimulatedServer::die() {
    isManagerThere = isClientThere = hasMetadata = isDeaf = false;
    nodes.clear();
    links.clear();
    metadata.clear();
    answers.clear();
    toManager.clear();
    toClient.clear();
    fromManager.clear();
    fromClient.clear();
    fromWatchdog.clear();
    hasChanged = true;
    ++nextSerial_;
}

} // namespace quorbel::desktop
