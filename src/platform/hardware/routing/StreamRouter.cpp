#include "platform/hardware/routing/StreamRouter.h"

#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorbel {
namespace {

/// Deadline of the session manager's links, which take milliseconds. Short enough that listeners do
/// not mistake the gap for an end.
constexpr double linkSeconds = 0.2;
constexpr double captureSeconds = 2.0;
/// Deadline of a stream without ports, longer because it is not heard yet.
constexpr double portSeconds = 10.0;
constexpr double waitingSeconds = 5.0;
constexpr double longestRetrySeconds = 60.0;
/// The session manager restores the target of a new stream within this time, unless the machine is
/// very busy. Short, because the stream is heard unprocessed until it is routed.
constexpr double restoredSeconds = 0.05;
/// Deadline of a reading of the metadata table.
constexpr double answerSeconds = 1.0;

} // namespace

StreamRouter::StreamRouter(const ServerObjects &objects, ServerCommands &commands, RouteLog &log)
    : objects_(objects), commands_(objects, commands), log_(log), memory_(objects),
      linker_(objects, commands_, ends_) {}

void StreamRouter::restore(std::vector<RoutedStream> leftovers) {
    for (const RoutedStream &stream : inOrderOfUndoing(objects_, std::move(leftovers))) {
        restoreRoute(objects_, commands_, stream);
        log_.released(stream);
    }
}

void StreamRouter::begin(const RoutingEnds &ends) {
    const bool isOtherTap = isOn() && ends.tapSerial != ends_.tapSerial;
    ends_ = ends;
    ownTaps_.insert(ends.tapSerial);
    seeOutput();
    hearers_ = hearersOf(objects_, ends_.outID);
    dropInheritedIDs();
    if (isOtherTap)
        for (auto &[id, stream] : streams_) {
            const NodeRecord *node = objects_.node(id);
            if (node == nullptr)
                continue;
            const bool wasLinkedByUs = !stream.links.own.empty();
            linker_.drop(stream.links);
            if (isHeld(stream)) {
                sendToTap(*node, stream);
                if (wasLinkedByUs) // and not by the session manager
                    stream.linkAt = commands_.seconds();
            } else if (stream.phase == Phase::refused) {
                route(*node, stream);
            }
        }
    lookForFeedback();
    applyRulesToAll();
    routeAll();
}

void StreamRouter::end() {
    std::vector<RoutedStream> held;
    for (const auto &[_, stream] : streams_)
        if (isHeld(stream))
            held.push_back(stream.route);
    for (const RoutedStream &route : inOrderOfUndoing(objects_, std::move(held))) {
        Stream &stream = streams_.at(route.streamID);
        stream.route = route;
        putBack(stream, Phase::released);
    }
    for (const Ended &ended : ended_)
        cleanUp(ended.route);
    ended_.clear();
    for (const std::uint32_t subject : objects_.metadataSubjects())
        if (hasOwnTarget(subject)) {
            commands_.deleteMetadata(subject, targetObjectKey);
            commands_.deleteMetadata(subject, targetNodeKey);
        }
    streams_.clear();
    hearers_.clear();
    ends_ = {};
}

void StreamRouter::startOver() {
    for (auto stream = streams_.begin(); stream != streams_.end();) {
        const NodeRecord *node = objects_.node(stream->first);
        linker_.drop(stream->second.links);
        // Keeps the route: our target, still set, hides the stream's own one.
        if (node != nullptr && hasTap() && isHeld(stream->second) && hasOwnTarget(stream->first)) {
            sendToTap(*node, stream->second);
            ++stream;
            continue;
        }
        if (isHeld(stream->second))
            log_.released(stream->second.route);
        stream = streams_.erase(stream);
    }
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
    if (!hasTap() || !objects_.hasMetadata())
        return;
    dropInheritedIDs();
    for (const auto &[_, node] : objects_.nodes())
        learnTarget(node);
    for (const auto &[_, node] : objects_.nodes())
        consider(node, metadataAt_);
}

void StreamRouter::consider(const NodeRecord &node, double appearedAt) {
    if (!hasTap() || !objects_.hasMetadata() || !node.isComplete || streams_.contains(node.id))
        return;
    if (!isRoutable(node)) {
        if (hasOwnTarget(node.id)) // left by an ended stream with the same id
            commands_.deleteMetadata(node.id, targetObjectKey);
        return;
    }
    Stream &stream = streams_[node.id];
    stream.appearedAt = appearedAt;
    if (!commands_.isDeaf() || hasOwnTarget(node.id) || !isRestoring(node, stream)) {
        route(node, stream);
    } else {
        stream.phase = Phase::unread;
        stream.readAt = appearedAt + restoredSeconds;
    }
}

void StreamRouter::route(const NodeRecord &node, Stream &stream) {
    stream.route = {.streamID = node.id, .streamSerial = node.serial, .tapSerial = ends_.tapSerial};
    stream.retryAt = never;
    // Our own values belong to an ended stream with the same id and are not a user's choice.
    const bool isInherited = hasOwnTarget(node.id);
    if (isInherited) {
        // Setting it again would raise no event, so its order relative to a target that the session
        // manager restores would be unknown.
        commands_.deleteMetadata(node.id, targetObjectKey);
    } else {
        stream.route.targetObject = commands_.expected(node.id, targetObjectKey);
        stream.route.targetNode = commands_.expected(node.id, targetNodeKey);
        memory_.learn(node, stream.route.targetObject, stream.route.targetNode);
    }
    if (!isRestoring(node, stream))
        stream.route.remembered = memory_.of(node);
    shareTarget(node);
    const bool isMeasured = node.format || !isSurroundOutput_ ||
                            commands_.seconds() - stream.appearedAt >= settleSeconds;
    const bool isExcused = isLeftAlone(node);
    if (isExcused || mustNotBeCaptured(node) || !isMeasured) {
        stream.phase = isExcused ? Phase::excused : !isMeasured ? Phase::measured : Phase::hearing;
        if (stream.phase == Phase::measured)
            stream.retryAt = stream.appearedAt + settleSeconds;
        if (isInherited)
            undoRoute(objects_, commands_, stream.route);
    } else if (isPulseClient(node) && !isAnsweredPulseClient(node) && !linker_.hasHandshakeSink()) {
        stream.phase = Phase::waiting;
        stream.retryAt = commands_.seconds() + waitingSeconds;
    } else {
        sendToTap(node, stream);
    }
}

void StreamRouter::sendToTap(const NodeRecord &node, Stream &stream) {
    stream.phase = Phase::routing;
    if (!hasTap()) // the next tap takes the stream
        return;
    std::erase_if(ended_, [&](const Ended &ended) {
        const bool hadID = ended.route.streamID == node.id;
        if (hadID)
            log_.released(ended.route);
        return hadID;
    });
    if (stream.route.tapSerial != ends_.tapSerial)
        stream.route.formerTapSerial = std::exchange(stream.route.tapSerial, ends_.tapSerial);
    linker_.noteFormer(node.id, stream.links);
    log_.routed(stream.route);
    const double now = commands_.seconds();
    stream.wasCaptured = false;
    stream.rememberAt = never;
    stream.rememberedAt = now;
    const bool isToBeRead = std::exchange(stream.isReading, false) || isRestoring(node, stream) ||
                            stream.route.remembered != memory_.of(node);
    stream.readAt = isToBeRead ? stream.appearedAt + settleSeconds : never;
    routeTo(ends_.tapSerial, objects_, commands_, stream.route);
    if (objects_.hasPorts(node.id, false)) {
        awaitLinks(stream);
        linker_.startHandshake(node, stream.links);
    } else {
        stream.linkAt = never;
        stream.giveUpAt = now + portSeconds;
    }
    lookAtLinks(node.id, stream);
}

/// Starts the deadlines of a stream with ports: the session manager links it within milliseconds.
void StreamRouter::awaitLinks(Stream &stream) {
    stream.linkAt = commands_.seconds() + linkSeconds;
    stream.giveUpAt = commands_.seconds() + captureSeconds;
}

/// Drops our links of a stream and all its deadlines.
void StreamRouter::letGo(Stream &stream, Phase phase) {
    linker_.drop(stream.links);
    stream.phase = phase;
    stream.linkAt = never;
    stream.giveUpAt = never;
    stream.retryAt = never;
    stream.leaveAt = never;
    stream.rememberAt = never;
    stream.readAt = never;
    stream.isReading = false;
}

void StreamRouter::putBack(Stream &stream, Phase phase) {
    letGo(stream, phase);
    if (hasOwnTarget(stream.route.streamID))
        undoRoute(objects_, commands_, stream.route);
    log_.released(stream.route);
}

void StreamRouter::lookAtLinks(std::uint32_t id, Stream &stream) {
    if (!hasTap())
        return;
    if (stream.phase == Phase::routing && linker_.isFullyLinked(id)) {
        stream.phase = Phase::captured;
        stream.wasCaptured = true;
        stream.linkAt = never;
        stream.giveUpAt = never;
        stream.failures = 0;
    } else if (stream.phase == Phase::captured && !linker_.isFullyLinked(id)) {
        stream.phase = Phase::routing;
        awaitLinks(stream);
    }
    // A client has linked a captured stream to a device too, and the session manager keeps that
    // link: the stream is heard twice.
    if (stream.phase != Phase::captured || linker_.deviceBeside(id, stream.links) == nullptr)
        stream.leaveAt = never;
    else if (stream.leaveAt == never)
        stream.leaveAt = commands_.seconds() + linkSeconds;
}

/// Ends the stream's sound on a device besides the tap.
void StreamRouter::endDoubleSound(const NodeRecord &node, Stream &stream) {
    if (!stream.links.own.empty()) {
        // The session manager was late: it moves streams that are not linked to the tap.
        linker_.drop(stream.links);
        sendToTap(node, stream);
    } else if (const NodeRecord *place = linker_.removeFormer(node.id, stream.links)) {
        leaveAt(*place, stream);
    }
}

void StreamRouter::nodeChanged(const NodeRecord &node) {
    // At once: the session manager may link by an inherited target as soon as our node has ports.
    if (node.name().starts_with(ownNodePrefix))
        dropInherited(node.id);
    if (!isOn())
        return;
    // The sink half of a virtual device may appear after its output half was routed, and a
    // program's recording after its playback.
    if (!node.property("node.link-group").empty() || !node.property("client.id").empty())
        lookForFeedback();
    if (const auto found = streams_.find(node.id); found == streams_.end()) {
        consider(node, commands_.seconds());
    } else if (Stream &stream = found->second; isAnsweredPulseClient(node)) {
        linker_.endHandshake(stream.links);
        if (stream.phase == Phase::waiting)
            route(node, stream);
    }
    if (const auto found = streams_.find(node.id); found != streams_.end() && hasTap())
        applyRules(node, found->second);
}

void StreamRouter::nodeRemoved(const NodeRecord &node) {
    for (std::uint32_t *end : {&ends_.tapID, &ends_.outID, &ends_.deviceID, &ends_.homeID})
        if (*end == node.id) {
            *end = 0;
            seeOutput();
        }
    memory_.forgetPlace(node.serial);
    const auto found = streams_.find(node.id);
    if (found == streams_.end())
        return;
    linker_.drop(found->second.links);
    if (isHeld(found->second))
        ended_.push_back({found->second.route, commands_.seconds() + settleSeconds});
    streams_.erase(found);
}

void StreamRouter::portAdded(const PortRecord &port) {
    const auto found = streams_.find(port.nodeID);
    const NodeRecord *node = objects_.node(port.nodeID);
    if (!isOn() || port.isMonitor || node == nullptr)
        return;
    if (isOfOutput(port)) {
        seeOutput();
        applyRulesToAll();
    }
    if (!port.isInput && found != streams_.end() && found->second.phase == Phase::routing) {
        Stream &stream = found->second;
        if (stream.linkAt == never)
            awaitLinks(stream);
        linker_.startHandshake(*node, stream.links);
    } else if (port.isInput && isOutputDevice(*node)) {
        for (auto &[id, stream] : streams_) {
            const NodeRecord *client = objects_.node(id);
            if (client != nullptr && stream.phase == Phase::waiting)
                route(*client, stream);
            else if (client != nullptr && isHeld(stream) && objects_.hasPorts(id, false))
                linker_.startHandshake(*client, stream.links); // no device was present before
        }
    }
}

void StreamRouter::portRemoved(const PortRecord &port) {
    if (isOfOutput(port))
        seeOutput();
}

void StreamRouter::linkAdded(const LinkRecord &link) {
    if (!isOn())
        return;
    if (const auto found = streams_.find(link.outputNodeID); found != streams_.end())
        lookAtLinks(found->first, found->second);
    if (mayChangeHearers(link))
        lookForFeedback();
}

void StreamRouter::linkRemoved(const LinkRecord &link) {
    if (!isOn())
        return;
    if (const auto found = streams_.find(link.outputNodeID); found != streams_.end()) {
        found->second.links.former.erase(link.id);
        lookAtLinks(found->first, found->second);
    }
    if (mayChangeHearers(link))
        lookForFeedback();
}

void StreamRouter::checkDeadlines() {
    const double now = commands_.seconds();
    std::erase_if(ended_, [&](const Ended &ended) {
        const bool isDue = now >= ended.cleanAt;
        if (isDue)
            cleanUp(ended.route);
        return isDue;
    });
    if (!hasTap())
        return;
    bool isReadingDue = false;
    for (auto &[id, stream] : streams_) {
        const NodeRecord *node = objects_.node(id);
        if (node == nullptr)
            continue;
        if (now >= stream.readAt) {
            stream.readAt = never;
            const bool isUnanswered = std::exchange(stream.isReading, false);
            if (!isUnanswered && (stream.phase == Phase::unread || commands_.isDeaf())) {
                isReadingDue = stream.isReading = true;
                stream.readAt = now + answerSeconds;
            } else {
                targetIsKnown(*node, stream);
            }
        }
        if (now >= stream.links.handshakeEnd) {
            putBack(stream, Phase::waiting);
            stream.retryAt = now + waitingSeconds;
        }
        if (now >= stream.linkAt) {
            stream.linkAt = never;
            const NodeRecord *device = linker_.deviceBeside(id, stream.links);
            if (device == nullptr)
                linker_.linkToTap(id, stream.links);
            else if (stream.wasCaptured && !objects_.isLinked(id, ends_.tapID))
                leaveAt(*device, stream);
            else // not unlinked from it yet
                stream.linkAt = now + linkSeconds;
        }
        if (now >= stream.leaveAt) {
            stream.leaveAt = never;
            endDoubleSound(*node, stream);
        }
        if (now >= stream.rememberAt) {
            shareTarget(*node);
            remember(stream);
        }
        if (now >= stream.giveUpAt) {
            putBack(stream, Phase::refused);
            stream.retryAt = now + std::min(longestRetrySeconds, std::exp2(++stream.failures));
        }
        if (now >= stream.retryAt)
            route(*node, stream);
    }
    if (isReadingDue)
        commands_.readMetadata();
}

double StreamRouter::nextDeadline() const {
    double next = never;
    for (const Ended &ended : ended_)
        next = std::min(next, ended.cleanAt);
    if (!hasTap())
        return next;
    for (const auto &[_, stream] : streams_)
        next = std::min({next, stream.readAt, stream.leaveAt, stream.rememberAt, stream.linkAt,
                         stream.giveUpAt, stream.retryAt, stream.links.handshakeEnd});
    return next;
}

} // namespace quorbel
