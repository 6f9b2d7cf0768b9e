// The router's targets in the session manager's metadata: tells our values from the user's choices,
// and sets the value to be remembered.

#include "platform/hardware/routing/StreamRouter.h"
#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <string>
#include <utility>

namespace quorbel {
namespace {

/// Period after a stream's start without moves by the user. A session manager of 0.5 restores an
/// application's target in it, with the key of a user's move.
constexpr double restoringSeconds = 1.0;
constexpr double rememberSeconds = 0.1;

} // namespace

/// Resets values of "target.node" that name our node with this id. The server reuses ids, so such
/// a value was meant for a device that is gone; the session manager would link the stream to us.
void StreamRouter::dropInherited(std::uint32_t ownID) {
    for (const std::uint32_t subject : objects_.metadataSubjects()) {
        const auto value = commands_.expected(subject, targetNodeKey);
        if (value && value->value == std::to_string(ownID))
            commands_.setMetadata(subject, targetNodeKey, {"Spa:Id", "-1"});
    }
}

void StreamRouter::dropInheritedIDs() {
    dropInherited(ends_.tapID);
    dropInherited(ends_.outID);
    for (auto &[_, stream] : streams_)
        if (stream.route.targetNode && isOwnID(*stream.route.targetNode))
            stream.route.targetNode.reset();
}

bool StreamRouter::isOwnID(const MetadataValue &value) const {
    return value.value == std::to_string(ends_.tapID) || value.value == std::to_string(ends_.outID);
}

bool StreamRouter::isOwnTap(const MetadataValue &value) const {
    return std::any_of(ownTaps_.begin(), ownTaps_.end(),
                       [&](std::uint64_t tap) { return value.value == std::to_string(tap); });
}

/// True if the target of the stream is one of our taps, the current or an earlier one.
bool StreamRouter::hasOwnTarget(std::uint32_t id) const {
    const auto target = commands_.expected(id, targetObjectKey);
    return target && isOwnTap(*target);
}

void StreamRouter::learnTarget(const NodeRecord &node) {
    if (node.isComplete && isPlayback(node) && !hasOwnTarget(node.id) &&
        !streams_.contains(node.id))
        memory_.learn(node, commands_.expected(node.id, targetObjectKey),
                      commands_.expected(node.id, targetNodeKey));
}

/// Copies the remembered target of a program into the routes of all its streams.
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

/// True while the session manager may still restore the target of a new stream. If we wrote an
/// equal value first, its write would raise no event, and the stream's target would stay unknown.
bool StreamRouter::isRestoring(const NodeRecord &node, const Stream &stream) const {
    return commands_.seconds() - stream.appearedAt < settleSeconds && !stream.route.targetObject &&
           !stream.route.targetNode && node.property("target.object").empty() &&
           node.property("state.restore-target") != "false";
}

/// Continues a stream after its target, or the lack of one, has been read.
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
        // The session manager has restored the tap for a stream that ended during our writes.
        if (const auto found = streams_.find(subject);
            found == streams_.end() || !isHeld(found->second))
            commands_.deleteMetadata(subject, targetObjectKey);
        return;
    }
    // Our write under way came after this change by another client and replaces it, even if routing
    // has ended by now.
    const bool isReplaced = commands_.isUnderWay(subject, key);
    const auto found = streams_.find(subject);
    const NodeRecord *node = objects_.node(subject);
    const bool isKnown = node != nullptr && node->isComplete && isPlayback(*node);
    // A stream without our target has a new value: setting an equal one would raise no event.
    const bool isOther =
        found == streams_.end() || !isHeld(found->second) ||
        (isObject ? found->second.route.targetObject : found->second.route.targetNode) != value;
    // An ended stream's values are deleted late, when its id may belong to another stream.
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

/// Leaves a stream to the client that has given it another target.
void StreamRouter::release(Stream &stream) {
    letGo(stream, Phase::released);
    // Our "target.node" would send the stream elsewhere once the other target is removed.
    if (stream.route.targetObject)
        remember(stream);
    else if (remembersOwnTarget(objects_, stream.route))
        commands_.write(stream.route.streamID, targetNodeKey, stream.route.targetNode);
    else
        undoRoute(objects_, commands_, stream.route);
    log_.released(stream.route);
}

/// Releases a stream that the user has moved by its links alone. Our target, and the one before it,
/// would move it away again, so the user's place becomes its target.
void StreamRouter::leaveAt(const NodeRecord &place, Stream &stream) {
    letGo(stream, Phase::released);
    routeTo(place.serial, objects_, commands_, stream.route);
    memory_.setPlace(stream.route.streamSerial, {"Spa:Id", std::to_string(place.serial)});
    log_.released(stream.route);
}

/// Makes the session manager remember the user's choice after another value was written.
void StreamRouter::remember(Stream &stream) {
    const double now = commands_.seconds();
    // Limits the rate: two clients that answer each other's writes would never stop.
    if (now - stream.rememberedAt < rememberSeconds && stream.rememberedTwice) {
        stream.rememberAt = stream.rememberedAt + rememberSeconds;
        return;
    }
    stream.rememberedTwice = now - stream.rememberedAt < rememberSeconds;
    stream.rememberedAt = now;
    stream.rememberAt = never;
    const MetadataValue value = rememberedTarget(objects_, stream.route);
    // Deletes first, because setting an equal value raises no event.
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

void StreamRouter::metadataArrived() {
    metadataAt_ = commands_.seconds();
    routeAll();
}

void StreamRouter::metadataGone() {
    // The values are gone with the old session manager, and a new one does not know the routes.
    for (auto &[_, stream] : streams_) {
        linker_.drop(stream.links);
        if (isHeld(stream))
            log_.released(stream.route);
    }
    streams_.clear();
    for (const Ended &ended : ended_)
        log_.released(ended.route);
    ended_.clear();
    commands_.clear();
}

// Removes an ended stream's values, which the server would apply to the next stream with its id.
// Runs after a delay, because some servers remove them, and spares a target that the session
// manager has restored meanwhile for a new stream with the id.
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

} // namespace quorbel
