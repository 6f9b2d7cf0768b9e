#include "platform/hardware/routing/StreamRouter.h"

#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace quorbel {
namespace {

/// The session manager links a stream within milliseconds; no listener notices a gap of this length
/// as an end.
constexpr double linkSeconds = 0.3;
constexpr double giveUpSeconds = 2.0;
/// A stream without ports cannot be heard yet, so it may take its time.
constexpr double portSeconds = 10.0;
constexpr double handshakeSeconds = 0.5;
constexpr double waitingSeconds = 5.0;
constexpr double longestRetrySeconds = 60.0;

} // namespace

StreamRouter::StreamRouter(const ServerObjects &objects, ServerCommands &commands, RouteLog &log)
    : objects_(objects), commands_(commands), log_(log) {}

void StreamRouter::begin(const RoutingEnds &ends) {
    const bool isOtherTap = isOn() && ends.tapSerial != ends_.tapSerial;
    ends_ = ends;
    ownTaps_.insert(ends.tapSerial);
    hearers_ = hearersOf(objects_, ends_.outID);
    if (isOtherTap)
        for (auto &[id, stream] : streams_) {
            const NodeRecord *node = objects_.node(id);
            if (node == nullptr)
                continue;
            dropLinks(stream);
            if (isHeld(stream))
                sendToTap(*node, stream);
            else if (stream.phase == Phase::refused)
                route(*node, stream);
        }
    lookForFeedback();
    routeAll();
}

void StreamRouter::end() {
    for (auto &[_, stream] : streams_)
        if (isHeld(stream))
            putBack(stream, Phase::released);
    // What an ended stream left behind would be applied to the next stream with its id.
    for (const std::uint32_t subject : objects_.metadataSubjects())
        for (const std::uint64_t tap : ownTaps_)
            if (isRoutedTo(objects_, subject, tap)) {
                commands_.deleteMetadata(subject, targetObjectKey);
                commands_.deleteMetadata(subject, targetNodeKey);
                break;
            }
    streams_.clear();
    cleaned_.clear();
    hearers_.clear();
    ends_ = {};
}

void StreamRouter::startOver() {
    for (auto &[_, stream] : streams_) {
        dropLinks(stream);
        if (isHeld(stream))
            log_.released(stream.route);
    }
    streams_.clear();
    routeAll();
}

bool StreamRouter::isAnyLinkedTo(std::uint32_t tapID) const {
    return std::any_of(objects_.links().begin(), objects_.links().end(),
                       [&](const auto &entry) { return entry.second.inputNodeID == tapID; });
}

bool StreamRouter::needsDeviceTap() const {
    return std::any_of(objects_.nodes().begin(), objects_.nodes().end(), [&](const auto &entry) {
        const NodeRecord &node = entry.second;
        if (isOutputDevice(node))
            return objects_.hasPorts(node.id, true) && !isPlainStereo(objects_, node.id, true);
        return isRoutable(node) && objects_.hasPorts(node.id, false) &&
               !isPlainStereo(objects_, node.id, false);
    });
}

void StreamRouter::routeAll() {
    if (!isOn() || !objects_.hasMetadata())
        return;
    for (const auto &[_, node] : objects_.nodes())
        consider(node);
}

void StreamRouter::consider(const NodeRecord &node) {
    if (!isOn() || !objects_.hasMetadata() || !node.isComplete || streams_.contains(node.id) ||
        !isRoutable(node))
        return;
    route(node, streams_[node.id]);
}

bool StreamRouter::mustNotBeCaptured(const NodeRecord &node) const {
    return hearers_.contains(node.id) || isVirtualSinkOutput(objects_, node);
}

void StreamRouter::route(const NodeRecord &node, Stream &stream) {
    stream.route = {node.id, node.serial, ends_.tapSerial, {}, {}};
    stream.retryAt = never;
    stream.wasCaptured = false;
    // Values that we set ourselves are an ended stream's with the same id, and no choice of
    // anybody's.
    const bool isInherited = std::any_of(ownTaps_.begin(), ownTaps_.end(), [&](std::uint64_t tap) {
        return isRoutedTo(objects_, node.id, tap);
    });
    if (!isInherited) {
        stream.route.targetObject = objects_.metadata(node.id, targetObjectKey);
        stream.route.targetNode = objects_.metadata(node.id, targetNodeKey);
    }
    if (mustNotBeCaptured(node)) {
        stream.phase = Phase::hearing;
    } else if (isPulseClient(node) && !isAnsweredPulseClient(node) && handshakeSink() == 0) {
        stream.phase = Phase::waiting;
        stream.retryAt = commands_.seconds() + waitingSeconds;
    } else {
        sendToTap(node, stream);
    }
}

void StreamRouter::sendToTap(const NodeRecord &node, Stream &stream) {
    stream.route.tapSerial = ends_.tapSerial;
    stream.phase = Phase::routing;
    log_.routed(stream.route);
    stream.writtenNode = routeTo(ends_.tapSerial, objects_, commands_, stream.route);
    const double now = commands_.seconds();
    const bool hasPorts = objects_.hasPorts(node.id, false);
    stream.linkAt = hasPorts ? now + linkSeconds : never;
    stream.giveUpAt = now + (hasPorts ? giveUpSeconds : portSeconds);
    if (hasPorts)
        startHandshake(node, stream);
    lookAtLinks(node.id, stream);
}

/// An output device that an unanswered client of the PulseAudio server can be linked to; 0 if none.
std::uint32_t StreamRouter::handshakeSink() const {
    const NodeRecord *device = objects_.node(ends_.deviceID);
    if (device != nullptr && isOutputDevice(*device) && objects_.hasPorts(device->id, true))
        return device->id;
    for (const auto &[id, node] : objects_.nodes())
        if (isOutputDevice(node) && objects_.hasPorts(id, true))
            return id;
    return 0;
}

// A PulseAudio client is answered only once its stream is linked to a real sink; linked to the tap
// alone it would wait for ever. So it gets a short-lived passive link to the output device beside
// the tap's.
void StreamRouter::startHandshake(const NodeRecord &node, Stream &stream) {
    const std::uint32_t sink = handshakeSink();
    if (!isPulseClient(node) || isAnsweredPulseClient(node) || stream.handshake != 0 || sink == 0)
        return;
    const PortRecord from = objects_.ports(node.id, false).front();
    const PortRecord to = objects_.ports(sink, true).front();
    stream.handshake = commands_.createLink({node.id, from.id, sink, to.id, true});
    stream.handshakeEnd = commands_.seconds() + handshakeSeconds;
}

void StreamRouter::dropLinks(Stream &stream) {
    for (const OwnLink link : stream.links)
        commands_.destroyLink(link);
    stream.links.clear();
    if (stream.handshake != 0)
        commands_.destroyLink(stream.handshake);
    stream.handshake = 0;
    stream.handshakeEnd = never;
}

void StreamRouter::putBack(Stream &stream, Phase phase) {
    dropLinks(stream);
    stream.phase = phase;
    stream.linkAt = never;
    stream.giveUpAt = never;
    stream.retryAt = never;
    restoreRoute(objects_, commands_, stream.route);
    log_.released(stream.route);
}

/// True if both channels of the tap get the stream's sound.
bool StreamRouter::isFullyLinked(std::uint32_t id) const {
    std::set<std::uint32_t> fed;
    for (const auto &[_, link] : objects_.links())
        if (link.outputNodeID == id && link.inputNodeID == ends_.tapID)
            fed.insert(link.inputPortID);
    return fed.size() >= 2 && isPlainStereo(objects_, ends_.tapID, true);
}

/// The device that the stream is linked to beside the tap; null if none. A link of a handshake does
/// not count.
const NodeRecord *StreamRouter::deviceLinkedTo(std::uint32_t id) const {
    if (const auto stream = streams_.find(id);
        stream != streams_.end() && stream->second.handshake != 0)
        return nullptr;
    for (const auto &[_, link] : objects_.links())
        if (const NodeRecord *other = objects_.node(link.inputNodeID);
            link.outputNodeID == id && other != nullptr && isOutputDevice(*other))
            return other;
    return nullptr;
}

void StreamRouter::lookAtLinks(std::uint32_t id, Stream &stream) {
    if (stream.phase == Phase::routing && isFullyLinked(id)) {
        stream.phase = Phase::captured;
        stream.wasCaptured = true;
        stream.linkAt = never;
        stream.giveUpAt = never;
        stream.failures = 0;
    } else if (stream.phase == Phase::captured && !isFullyLinked(id)) {
        stream.phase = Phase::routing;
        stream.linkAt = commands_.seconds() + linkSeconds;
        stream.giveUpAt = commands_.seconds() + giveUpSeconds;
    }
}

void StreamRouter::linkToTap(std::uint32_t id, Stream &stream) {
    const auto outputs = objects_.ports(id, false);
    const auto inputs = objects_.ports(ends_.tapID, true);
    if (outputs.empty())
        return;
    for (const PortRecord &input : inputs) {
        const auto isInput = [&](const auto &entry) {
            return entry.second.outputNodeID == id && entry.second.inputPortID == input.id;
        };
        if (std::any_of(objects_.links().begin(), objects_.links().end(), isInput))
            continue;
        auto from = std::find_if(outputs.begin(), outputs.end(), [&](const PortRecord &output) {
            return output.channel == input.channel;
        });
        if (from == outputs.end()) // mono, or channels without a place
            from = outputs.begin() + std::min<std::ptrdiff_t>(input.index, std::ssize(outputs) - 1);
        stream.links.push_back(commands_.createLink({id, from->id, ends_.tapID, input.id, false}));
    }
}

/// The user has moved the stream by its links alone. With our target it would go back to the tap,
/// with the one before to that; so the place that the user gave it becomes its target.
void StreamRouter::leaveAt(const NodeRecord &place, Stream &stream) {
    dropLinks(stream);
    stream.phase = Phase::released;
    stream.linkAt = never;
    stream.giveUpAt = never;
    routeTo(place.serial, objects_, commands_, stream.route);
    log_.released(stream.route);
}

void StreamRouter::lookForFeedback() {
    if (!isOn())
        return;
    hearers_ = hearersOf(objects_, ends_.outID);
    for (auto &[id, stream] : streams_) {
        const NodeRecord *node = objects_.node(id);
        if (node == nullptr)
            continue;
        if (isHeld(stream) && mustNotBeCaptured(*node))
            putBack(stream, Phase::hearing);
        else if (stream.phase == Phase::hearing && !mustNotBeCaptured(*node))
            route(*node, stream);
    }
}

void StreamRouter::nodeChanged(const NodeRecord &node) {
    if (!isOn())
        return;
    if (const auto found = streams_.find(node.id); found == streams_.end()) {
        consider(node);
    } else if (Stream &stream = found->second; isAnsweredPulseClient(node)) {
        if (stream.handshake != 0)
            commands_.destroyLink(stream.handshake);
        stream.handshake = 0;
        stream.handshakeEnd = never;
        if (stream.phase == Phase::waiting)
            route(node, stream);
    }
    // The sink half of a virtual device may become known after its output half was routed, and a
    // program's recording after its playback.
    if (!node.property("node.link-group").empty() || !node.property("client.id").empty())
        lookForFeedback();
}

void StreamRouter::nodeRemoved(const NodeRecord &node) {
    const auto found = streams_.find(node.id);
    if (found == streams_.end())
        return;
    if (isHeld(found->second)) {
        cleaned_[node.id] = found->second.writtenNode;
        putBack(found->second, Phase::released);
    } else {
        dropLinks(found->second);
    }
    streams_.erase(found);
}

void StreamRouter::portAdded(const PortRecord &port) {
    const auto found = streams_.find(port.nodeID);
    const NodeRecord *node = objects_.node(port.nodeID);
    if (!isOn() || port.isMonitor || node == nullptr)
        return;
    if (!port.isInput && found != streams_.end() && found->second.phase == Phase::routing) {
        Stream &stream = found->second;
        if (stream.linkAt == never) {
            stream.linkAt = commands_.seconds() + linkSeconds;
            stream.giveUpAt = commands_.seconds() + giveUpSeconds;
        }
        startHandshake(*node, stream);
    } else if (port.isInput && isOutputDevice(*node)) {
        for (auto &[id, stream] : streams_)
            if (const NodeRecord *waiting = objects_.node(id);
                stream.phase == Phase::waiting && waiting != nullptr)
                route(*waiting, stream);
    }
}

void StreamRouter::linkAdded(const LinkRecord &link) {
    if (!isOn())
        return;
    if (const auto found = streams_.find(link.outputNodeID); found != streams_.end())
        lookAtLinks(found->first, found->second);
    if (link.inputNodeID != ends_.tapID)
        lookForFeedback();
}

void StreamRouter::linkRemoved(const LinkRecord &link) {
    if (!isOn())
        return;
    if (const auto found = streams_.find(link.outputNodeID); found != streams_.end())
        lookAtLinks(found->first, found->second);
    if (link.inputNodeID != ends_.tapID)
        lookForFeedback();
}

void StreamRouter::metadataChanged(std::uint32_t subject, std::string_view key,
                                   const std::optional<MetadataValue> &value) {
    if (!isOn())
        return;
    if (const auto cleaned = cleaned_.find(subject);
        cleaned != cleaned_.end() && key == targetNodeKey) {
        // Set for a new stream with the id before our deletion of the old one's value took effect.
        if (value && *value != cleaned->second)
            commands_.setMetadata(subject, targetNodeKey, *value);
        cleaned_.erase(cleaned);
    }
    const auto found = streams_.find(subject);
    if (found == streams_.end())
        return;
    if (key == targetObjectKey)
        targetObjectChanged(subject, found->second, value);
    else if (key == targetNodeKey)
        targetNodeChanged(subject, found->second, value);
}

void StreamRouter::targetObjectChanged(std::uint32_t id, Stream &stream,
                                       const std::optional<MetadataValue> &value) {
    const bool isOurs =
        value && std::any_of(ownTaps_.begin(), ownTaps_.end(), [&](std::uint64_t tap) {
            return value->value == std::to_string(tap);
        });
    if (!isOurs && isHeld(stream)) {
        // Somebody else decides now. The value is kept: should ours turn up after it (the two were
        // sent at the same moment), the stream is with us after all and goes back to where they
        // wanted it.
        dropLinks(stream);
        stream.phase = Phase::released;
        stream.linkAt = never;
        stream.giveUpAt = never;
        log_.released(stream.route);
        stream.route.targetObject = value;
        const auto node = objects_.metadata(id, targetNodeKey);
        if (node != stream.writtenNode)
            stream.route.targetNode = node;
    } else if (isOurs && stream.phase == Phase::released) {
        stream.phase = Phase::routing;
        stream.linkAt = commands_.seconds() + linkSeconds;
        stream.giveUpAt = commands_.seconds() + giveUpSeconds;
        log_.routed(stream.route);
        lookAtLinks(id, stream);
    }
}

void StreamRouter::targetNodeChanged(std::uint32_t id, Stream &stream,
                                     const std::optional<MetadataValue> &value) {
    // Our own deletion comes back as no value.
    if (!value || *value == stream.writtenNode)
        return;
    stream.route.targetNode = value;
    if (!isHeld(stream))
        return;
    // The session manager restores a remembered target at the moment in which a stream appears; if
    // our value came after it, that one is remembered now.
    log_.routed(stream.route);
    stream.writtenNode = rememberedTarget(objects_, stream.route);
    commands_.deleteMetadata(id, targetNodeKey);
    commands_.setMetadata(id, targetNodeKey, stream.writtenNode);
}

void StreamRouter::metadataArrived() { routeAll(); }

void StreamRouter::metadataGone() {
    // A new session manager knows nothing of what was routed, and the values went with the old one.
    for (auto &[_, stream] : streams_) {
        dropLinks(stream);
        if (isHeld(stream))
            log_.released(stream.route);
    }
    streams_.clear();
    cleaned_.clear();
}

void StreamRouter::checkDeadlines() {
    const double now = commands_.seconds();
    for (auto &[id, stream] : streams_) {
        const NodeRecord *node = objects_.node(id);
        if (node == nullptr)
            continue;
        if (now >= stream.handshakeEnd) {
            putBack(stream, Phase::waiting);
            stream.retryAt = now + waitingSeconds;
        }
        if (now >= stream.linkAt) {
            stream.linkAt = never;
            const NodeRecord *device = deviceLinkedTo(id);
            if (device == nullptr)
                linkToTap(id, stream);
            else if (stream.wasCaptured && !objects_.isLinked(id, ends_.tapID))
                leaveAt(*device, stream);
        }
        if (now >= stream.giveUpAt) {
            putBack(stream, Phase::refused);
            stream.retryAt = now + std::min(longestRetrySeconds, std::exp2(++stream.failures));
        }
        if (now >= stream.retryAt)
            route(*node, stream);
    }
}

double StreamRouter::nextDeadline() const {
    double next = never;
    for (const auto &[_, stream] : streams_)
        next =
            std::min({next, stream.linkAt, stream.giveUpAt, stream.retryAt, stream.handshakeEnd});
    return next;
}

} // namespace quorbel
