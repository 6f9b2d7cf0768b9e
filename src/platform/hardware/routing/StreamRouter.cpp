#include "platform/hardware/routing/StreamRouter.h"

#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace quorbel {
namespace {

/// The session manager links a stream within milliseconds; no listener notices a gap of this length
/// as an end.
constexpr double linkSeconds = 0.2;
constexpr double captureSeconds = 2.0;
/// A stream without ports cannot be heard yet, so it may take its time.
constexpr double portSeconds = 10.0;
constexpr double handshakeSeconds = 0.5;
constexpr double waitingSeconds = 5.0;
constexpr double longestRetrySeconds = 60.0;
/// A session manager of 0.5 restores the target of an application by the key that a user's move
/// has too. A user does not move a stream in its first second.
constexpr double restoringSeconds = 1.0;
constexpr double rememberSeconds = 0.1;
/// The session manager restores the target of a new stream within this time, if the machine is not
/// too busy. Short, because the stream is heard unprocessed until it is routed.
constexpr double restoredSeconds = 0.05;
/// A reading that takes longer is not waited for.
constexpr double answerSeconds = 1.0;
/// While the session manager moves our output, nothing seems to hear it. Echoes of what we set come
/// back within this time too, so no stream is sent to the tap while they are under way.
constexpr double settleSeconds = 0.25;

} // namespace

StreamRouter::StreamRouter(const ServerObjects &objects, ServerCommands &commands, RouteLog &log)
    : objects_(objects), commands_(objects, commands), log_(log), memory_(objects) {}

void StreamRouter::begin(const RoutingEnds &ends) {
    const bool isOtherTap = isOn() && ends.tapSerial != ends_.tapSerial;
    ends_ = ends;
    ownTaps_.insert(ends.tapSerial);
    hearers_ = hearersOf(objects_, ends_.outID);
    dropInheritedIDs();
    if (isOtherTap)
        for (auto &[id, stream] : streams_) {
            const NodeRecord *node = objects_.node(id);
            if (node == nullptr)
                continue;
            const bool wasLinkedByUs = !stream.links.empty();
            dropLinks(stream);
            if (isHeld(stream)) {
                sendToTap(*node, stream);
                if (wasLinkedByUs) // the session manager does not
                    stream.linkAt = commands_.seconds();
            } else if (stream.phase == Phase::refused) {
                route(*node, stream);
            }
        }
    lookForFeedback();
    routeAll();
}

/// Ids are used again: the "target.node" of a stream may name a device that is gone, and by now a
/// node of ours. The session manager would link it to the tap, whatever the stream hears.
void StreamRouter::dropInheritedIDs() {
    for (const std::uint32_t subject : objects_.metadataSubjects()) {
        const auto value = commands_.expected(subject, targetNodeKey);
        if (value && isOwnID(*value))
            commands_.setMetadata(subject, targetNodeKey, {"Spa:Id", "-1"});
    }
    for (auto &[_, stream] : streams_)
        if (stream.route.targetNode && isOwnID(*stream.route.targetNode))
            stream.route.targetNode.reset();
}

bool StreamRouter::isOwnID(const MetadataValue &value) const {
    return value.value == std::to_string(ends_.tapID) || value.value == std::to_string(ends_.outID);
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
        dropLinks(stream->second);
        // One that is ours still has nothing else from which its own targets could be read.
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

void StreamRouter::learnTarget(const NodeRecord &node) {
    if (node.isComplete && isPlayback(node) && !hasOwnTarget(node.id) &&
        !streams_.contains(node.id))
        learn(node, commands_.expected(node.id, targetObjectKey),
              commands_.expected(node.id, targetNodeKey));
}

void StreamRouter::learn(const NodeRecord &node, const std::optional<MetadataValue> &object,
                         const std::optional<MetadataValue> &target) {
    const auto place = places_.find(node.serial);
    const bool isOurs = place != places_.end() && object == place->second;
    memory_.learn(node, isOurs ? std::nullopt : object, target);
}

/// The other streams of a program are put back so that its target is remembered.
void StreamRouter::shareTarget(const NodeRecord &of) {
    const std::string target = memory_.of(of);
    for (auto &[id, stream] : streams_) {
        const NodeRecord *node = objects_.node(id);
        if (node == nullptr || stream.route.remembered == target ||
            programOf(*node) != programOf(of))
            continue;
        if (isRestoring(*node, stream))
            continue; // its target is read first
        stream.route.remembered = target;
        if (isHeld(stream))
            log_.routed(stream.route);
    }
}

void StreamRouter::consider(const NodeRecord &node, double appearedAt) {
    if (!hasTap() || !objects_.hasMetadata() || !node.isComplete || streams_.contains(node.id))
        return;
    if (!isRoutable(node)) {
        if (hasOwnTarget(node.id)) // of an ended stream with its id
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

bool StreamRouter::mustNotBeCaptured(const NodeRecord &node) const {
    return hearers_.contains(node.id) || isVirtualSinkOutput(objects_, node) ||
           isUndecidedCopy(objects_, node);
}

void StreamRouter::route(const NodeRecord &node, Stream &stream) {
    stream.route = {.streamID = node.id, .streamSerial = node.serial, .tapSerial = ends_.tapSerial};
    stream.retryAt = never;
    // Values that we set ourselves are an ended stream's with the same id, and no choice of
    // anybody's.
    const bool isInherited = hasOwnTarget(node.id);
    if (isInherited) {
        // Setting it again would not be an event, so its order relative to what the session manager
        // restores would be unknown.
        commands_.deleteMetadata(node.id, targetObjectKey);
    } else {
        stream.route.targetObject = commands_.expected(node.id, targetObjectKey);
        stream.route.targetNode = commands_.expected(node.id, targetNodeKey);
        learn(node, stream.route.targetObject, stream.route.targetNode);
    }
    if (!isRestoring(node, stream))
        stream.route.remembered = memory_.of(node);
    shareTarget(node);
    if (mustNotBeCaptured(node)) {
        stream.phase = Phase::hearing;
        if (isInherited)
            undoRoute(objects_, commands_, stream.route);
    } else if (isPulseClient(node) && !isAnsweredPulseClient(node) && handshakeSink() == 0) {
        stream.phase = Phase::waiting;
        stream.retryAt = commands_.seconds() + waitingSeconds;
    } else {
        sendToTap(node, stream);
    }
}

/// True while the session manager may still give a new stream the target that it remembers. The
/// same value from us would make its own one no event, and it would not be known to be the
/// stream's.
bool StreamRouter::isRestoring(const NodeRecord &node, const Stream &stream) const {
    return commands_.seconds() - stream.appearedAt < settleSeconds && !stream.route.targetObject &&
           !stream.route.targetNode && node.property("target.object").empty() &&
           node.property("state.restore-target") != "false";
}

void StreamRouter::sendToTap(const NodeRecord &node, Stream &stream) {
    stream.phase = Phase::routing;
    if (!hasTap()) // the next one takes it
        return;
    std::erase_if(ended_, [&](const Ended &ended) {
        const bool hadID = ended.route.streamID == node.id;
        if (hadID)
            log_.released(ended.route);
        return hadID;
    });
    if (stream.route.tapSerial != ends_.tapSerial)
        stream.route.formerTapSerial = std::exchange(stream.route.tapSerial, ends_.tapSerial);
    stream.formerLinks.clear();
    for (const auto &[id, link] : objects_.links())
        if (link.outputNodeID == node.id && link.inputNodeID != ends_.tapID)
            stream.formerLinks.insert(id);
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
        startHandshake(node, stream);
    } else {
        stream.linkAt = never;
        stream.giveUpAt = now + portSeconds;
    }
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

/// True if the target of the stream is a tap of ours, of now or of before.
bool StreamRouter::hasOwnTarget(std::uint32_t id) const {
    const auto target = commands_.expected(id, targetObjectKey);
    return target && isOwnTap(*target);
}

bool StreamRouter::isOwnTap(const MetadataValue &value) const {
    return std::any_of(ownTaps_.begin(), ownTaps_.end(),
                       [&](std::uint64_t tap) { return value.value == std::to_string(tap); });
}

void StreamRouter::dropLinks(Stream &stream) {
    for (const OwnLink link : stream.links)
        commands_.destroyLink(link);
    stream.links.clear();
    endHandshake(stream);
}

void StreamRouter::endHandshake(Stream &stream) {
    if (stream.handshake != 0)
        commands_.destroyLink(stream.handshake);
    stream.handshake = 0;
    stream.handshakeEnd = never;
}

/// It has ports now, so the session manager links it within milliseconds.
void StreamRouter::awaitLinks(Stream &stream) {
    stream.linkAt = commands_.seconds() + linkSeconds;
    stream.giveUpAt = commands_.seconds() + captureSeconds;
}

/// The stream is not held any more: none of its deadlines is.
void StreamRouter::letGo(Stream &stream, Phase phase) {
    dropLinks(stream);
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

// What an ended stream leaves behind would be applied to the next stream with its id. It is removed
// a moment later: some servers do it themselves, and the session manager may have restored a target
// for a new stream with the id by the time at which our deletion would arrive.
void StreamRouter::cleanUp(const RoutedStream &route) {
    const std::uint32_t id = route.streamID;
    const auto found = streams_.find(id);
    if (hasOwnTarget(id) && (found == streams_.end() || !isHeld(found->second))) {
        commands_.deleteMetadata(id, targetObjectKey);
        if (objects_.node(id) == nullptr ||
            commands_.expected(id, targetNodeKey) == rememberedTarget(objects_, route))
            commands_.deleteMetadata(id, targetNodeKey);
    }
    log_.released(route);
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
    if (!hasTap())
        return;
    if (stream.phase == Phase::routing && isFullyLinked(id)) {
        stream.phase = Phase::captured;
        stream.wasCaptured = true;
        stream.linkAt = never;
        stream.giveUpAt = never;
        stream.failures = 0;
    } else if (stream.phase == Phase::captured && !isFullyLinked(id)) {
        stream.phase = Phase::routing;
        awaitLinks(stream);
    }
    // Heard twice: somebody has linked it by hand, and the session manager does not take that away.
    if (stream.phase != Phase::captured || deviceLinkedTo(id) == nullptr)
        stream.leaveAt = never;
    else if (stream.leaveAt == never)
        stream.leaveAt = commands_.seconds() + linkSeconds;
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
    letGo(stream, Phase::released);
    routeTo(place.serial, objects_, commands_, stream.route);
    places_[stream.route.streamSerial] = {"Spa:Id", std::to_string(place.serial)};
    log_.released(stream.route);
}

/// Of a stream that a device gets beside the tap.
void StreamRouter::endDoubleSound(const NodeRecord &node, Stream &stream) {
    if (!stream.links.empty()) {
        // The session manager was only late: it moves what is not linked to the tap.
        dropLinks(stream);
        sendToTap(node, stream);
        return;
    }
    const NodeRecord *place = nullptr;
    for (const auto &[id, link] : objects_.links()) {
        const NodeRecord *to = objects_.node(link.inputNodeID);
        if (link.outputNodeID != node.id || to == nullptr || !isOutputDevice(*to))
            continue;
        if (stream.formerLinks.contains(id))
            commands_.removeLink(id);
        else
            place = to;
    }
    if (place != nullptr) // somebody has linked it by hand
        leaveAt(*place, stream);
}

void StreamRouter::lookForFeedback() {
    if (!hasTap() || ends_.outID == 0)
        return;
    hearers_ = hearersOf(objects_, ends_.outID);
    for (auto &[id, stream] : streams_) {
        const NodeRecord *node = objects_.node(id);
        if (node == nullptr)
            continue;
        if (isHeld(stream) && mustNotBeCaptured(*node))
            putBack(stream, Phase::hearing);
        else if (stream.phase != Phase::hearing)
            continue;
        else if (mustNotBeCaptured(*node))
            stream.retryAt = never;
        else if (stream.retryAt == never)
            stream.retryAt = commands_.seconds() + settleSeconds;
    }
}

/// True if the link carries the processed sound, or decides about a copy.
bool StreamRouter::mayChangeHearers(const LinkRecord &link) const {
    const NodeRecord *listener = objects_.node(link.inputNodeID);
    return link.outputNodeID == ends_.outID || hearers_.contains(link.outputNodeID) ||
           (listener != nullptr && listener->mediaClass().starts_with("Stream/Input") &&
            !listener->property("node.link-group").empty());
}

void StreamRouter::nodeChanged(const NodeRecord &node) {
    if (!isOn())
        return;
    // The sink half of a virtual device may become known after its output half was routed, and a
    // program's recording after its playback.
    if (!node.property("node.link-group").empty() || !node.property("client.id").empty())
        lookForFeedback();
    if (const auto found = streams_.find(node.id); found == streams_.end()) {
        consider(node, commands_.seconds());
    } else if (Stream &stream = found->second; isAnsweredPulseClient(node)) {
        endHandshake(stream);
        if (stream.phase == Phase::waiting)
            route(node, stream);
    }
}

void StreamRouter::nodeRemoved(const NodeRecord &node) {
    for (std::uint32_t *end : {&ends_.tapID, &ends_.outID, &ends_.deviceID})
        if (*end == node.id)
            *end = 0;
    places_.erase(node.serial);
    const auto found = streams_.find(node.id);
    if (found == streams_.end())
        return;
    dropLinks(found->second);
    if (isHeld(found->second))
        ended_.push_back({found->second.route, commands_.seconds() + settleSeconds});
    streams_.erase(found);
}

void StreamRouter::portAdded(const PortRecord &port) {
    const auto found = streams_.find(port.nodeID);
    const NodeRecord *node = objects_.node(port.nodeID);
    if (!isOn() || port.isMonitor || node == nullptr)
        return;
    if (!port.isInput && found != streams_.end() && found->second.phase == Phase::routing) {
        Stream &stream = found->second;
        if (stream.linkAt == never)
            awaitLinks(stream);
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
    if (mayChangeHearers(link))
        lookForFeedback();
}

void StreamRouter::linkRemoved(const LinkRecord &link) {
    if (!isOn())
        return;
    if (const auto found = streams_.find(link.outputNodeID); found != streams_.end()) {
        found->second.formerLinks.erase(link.id);
        lookAtLinks(found->first, found->second);
    }
    if (mayChangeHearers(link))
        lookForFeedback();
}

void StreamRouter::metadataChanged(std::uint32_t subject, std::string_view key,
                                   const std::optional<MetadataValue> &value) {
    const bool isObject = key == targetObjectKey;
    if ((!isObject && key != targetNodeKey) || commands_.takeEcho(subject, key, value))
        return;
    if (!isObject && value && isOn() && isOwnID(*value)) {
        dropInheritedIDs();
        return;
    }
    if (isObject && value && isOwnTap(*value)) {
        // The session manager has remembered the tap of a stream that ended within our writes.
        if (const auto found = streams_.find(subject);
            found == streams_.end() || !isHeld(found->second))
            commands_.deleteMetadata(subject, targetObjectKey);
        return;
    }
    // Somebody else's. A write of ours that is still under way came after it and replaces it, even
    // if we have ended by now.
    const bool isReplaced = commands_.isUnderWay(subject, key);
    const auto found = streams_.find(subject);
    const NodeRecord *node = objects_.node(subject);
    const bool isKnown = node != nullptr && node->isComplete && isPlayback(*node);
    // Without us, setting the value that a stream has already would not be an event.
    const bool isOther =
        found == streams_.end() || !isHeld(found->second) ||
        (isObject ? found->second.route.targetObject : found->second.route.targetNode) != value;
    // What an ended stream had is deleted late, when its id may be another's already.
    const bool isCleanedUp =
        !value && (found == streams_.end() ||
                   commands_.seconds() - found->second.appearedAt < restoringSeconds);
    if (isKnown && isOther && !isCleanedUp) {
        memory_.choose(*node, key, value);
        shareTarget(*node);
    }
    if (found == streams_.end() || !isHeld(found->second)) {
        if (isReplaced)
            commands_.write(subject, isObject ? targetObjectKey : targetNodeKey, value);
        return;
    }
    Stream &stream = found->second;
    (isObject ? stream.route.targetObject : stream.route.targetNode) = value;
    if (isKnown)
        stream.route.remembered = memory_.of(*node);
    log_.routed(stream.route);
    if (!isObject || isReplaced)
        remember(stream);
    else if (value && node != nullptr && commands_.seconds() - stream.appearedAt < restoringSeconds)
        sendToTap(*node, stream);
    else
        release(stream);
}

/// Somebody else has given the stream another target: it is theirs.
void StreamRouter::release(Stream &stream) {
    letGo(stream, Phase::released);
    // What we have set as "target.node" would send it elsewhere once that target is taken away.
    if (stream.route.targetObject)
        remember(stream);
    else if (remembersOwnTarget(objects_, stream.route))
        commands_.write(stream.route.streamID, targetNodeKey, stream.route.targetNode);
    else
        undoRoute(objects_, commands_, stream.route);
    log_.released(stream.route);
}

/// Has the session manager remember the user's own choice after another value was written.
void StreamRouter::remember(Stream &stream) {
    const double now = commands_.seconds();
    // Two that write in turns must not do so without end.
    if (now - stream.rememberedAt < rememberSeconds && stream.rememberedTwice) {
        stream.rememberAt = stream.rememberedAt + rememberSeconds;
        return;
    }
    stream.rememberedTwice = now - stream.rememberedAt < rememberSeconds;
    stream.rememberedAt = now;
    stream.rememberAt = never;
    const MetadataValue value = rememberedTarget(objects_, stream.route);
    // Deleted first, because setting an equal value is not an event.
    commands_.deleteMetadata(stream.route.streamID, targetNodeKey);
    commands_.setMetadata(stream.route.streamID, targetNodeKey, value);
}

void StreamRouter::metadataRead() {
    for (auto &[id, stream] : streams_) {
        const NodeRecord *node = objects_.node(id);
        if (node == nullptr || !std::exchange(stream.isReading, false))
            continue;
        stream.readAt = never;
        targetIsKnown(*node, stream);
    }
}

/// The session manager has restored the stream's target, if it remembers one.
void StreamRouter::targetIsKnown(const NodeRecord &node, Stream &stream) {
    if (stream.phase == Phase::unread) {
        route(node, stream);
    } else if (isHeld(stream)) {
        const std::string before = stream.route.remembered;
        shareTarget(node);
        if (stream.route.remembered != before)
            remember(stream);
    }
}

void StreamRouter::metadataArrived() {
    metadataAt_ = commands_.seconds();
    routeAll();
}

void StreamRouter::metadataGone() {
    // A new session manager knows nothing of what was routed, and the values went with the old one.
    for (auto &[_, stream] : streams_) {
        dropLinks(stream);
        if (isHeld(stream))
            log_.released(stream.route);
    }
    streams_.clear();
    for (const Ended &ended : ended_)
        log_.released(ended.route);
    ended_.clear();
    commands_.clear();
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
            else // not taken off it yet
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
                         stream.giveUpAt, stream.retryAt, stream.handshakeEnd});
    return next;
}

} // namespace quorbel
