// The router's choice of streams to capture: follows the rules of programs and excludes streams
// that hear the processed sound.

#include "platform/hardware/routing/ProgramDecision.h"
#include "platform/hardware/routing/StreamRouter.h"
#include "platform/hardware/routing/StreamRules.h"

namespace quorbel {

void StreamRouter::setRules(const ProgramRules &rules) {
    rules_ = rules;
    applyRulesToAll();
}

void StreamRouter::applyRulesToAll() {
    if (!hasTap())
        return;
    for (auto &[id, stream] : streams_)
        if (const NodeRecord *node = objects_.node(id))
            applyRules(*node, stream);
}

/// Applies the rules to a known stream after the rules or their inputs may have changed.
void StreamRouter::applyRules(const NodeRecord &node, Stream &stream) {
    if (stream.phase == Phase::released || stream.phase == Phase::unread)
        return;
    const bool isExcused = stream.phase == Phase::excused;
    if (isLeftAlone(node) == isExcused && stream.phase != Phase::measured)
        return;
    if (isHeld(stream))
        putBack(stream, Phase::excused);
    else
        route(node, stream);
}

bool StreamRouter::isLeftAlone(const NodeRecord &node) const {
    return decideTreatment(objects_, rules_, node, isSurroundOutput_) != StreamTreatment::processed;
}

/// Counting a node's ports searches all ports, so the output's channels are cached here instead of
/// counted for every decision.
void StreamRouter::seeOutput() {
    isSurroundOutput_ =
        isSurroundDevice(objects_, ends_.deviceID) && isSurroundDevice(objects_, ends_.homeID);
}

StreamTreatment StreamRouter::treatmentOf(const NodeRecord &node) const {
    const StreamTreatment decided = decideTreatment(objects_, rules_, node, isSurroundOutput_);
    const auto found = streams_.find(node.id);
    if (found == streams_.end())
        return decided == StreamTreatment::processed ? StreamTreatment::pending : decided;
    switch (found->second.phase) {
    case Phase::captured:
        return StreamTreatment::processed;
    case Phase::hearing:
        return StreamTreatment::copy;
    case Phase::refused:
        return StreamTreatment::refused;
    case Phase::released:
        return decided == StreamTreatment::processed ? StreamTreatment::moved : decided;
    case Phase::unread:
    case Phase::routing:
    case Phase::waiting:
    case Phase::measured:
    case Phase::excused:
        break;
    }
    return decided == StreamTreatment::processed ? StreamTreatment::pending : decided;
}

void StreamRouter::clientChanged(std::uint32_t clientID) {
    if (!hasTap())
        return;
    for (auto &[id, stream] : streams_)
        if (const NodeRecord *node = objects_.node(id);
            node != nullptr && node->property("client.id") == std::to_string(clientID))
            applyRules(*node, stream);
}

bool StreamRouter::mustNotBeCaptured(const NodeRecord &node) const {
    return hearers_.contains(node.id) || isVirtualSinkOutput(objects_, node) ||
           isUndecidedCopy(objects_, node);
}

/// True if the link carries the processed sound, or is the input of a loopback or filter.
bool StreamRouter::mayChangeHearers(const LinkRecord &link) const {
    const NodeRecord *listener = objects_.node(link.inputNodeID);
    return link.outputNodeID == ends_.outID || hearers_.contains(link.outputNodeID) ||
           (listener != nullptr && listener->mediaClass().starts_with("Stream/Input") &&
            !listener->property("node.link-group").empty());
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

} // namespace quorbel
