// Supervision of the hardware layer's two streams, the tap and the output: gathers their state and
// carries out the supervisor's steps.

#include "platform/hardware/pipewire/PipeWireHardware.h"
#include "platform/hardware/pipewire/PipeWireOutput.h"
#include "platform/hardware/pipewire/ServerConnection.h"
#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorbel {
namespace {

/// Longest time between two looks.
constexpr double longestWaitSeconds = 60.0;

/// Grace period for another output before the applications are heard unprocessed.
constexpr double outputSeconds = 0.4;

} // namespace

void PipeWireHardware::lookSoon() {
    if (lookEvent_ != nullptr && tap_)
        pw_loop_signal_event(pw_thread_loop_get_loop(connection_->loop()), lookEvent_);
}

void PipeWireHardware::pairMayHaveChanged() {
    isPairSeen_ = false;
    lookSoon();
}

void PipeWireHardware::seePair() {
    if (!isPairSeen_) {
        facts_ = ownPair().facts(registry_->objects(), router_->needsDeviceTap());
        facts_.tapRuns = tap_->isStreaming();
        facts_.outputRuns = output_->stream() != nullptr && output_->stream()->isStreaming();
        seenEnds_ = routingEnds();
        isPairSeen_ = true;
    }
    const OutStream *output = output_->stream();
    facts_.driverCycles = tap_->driverCycles();
    facts_.tapCycles = tap_->cycles();
    facts_.outputCycles = output != nullptr ? output->cycles() : 0;
}

void PipeWireHardware::outputStopped() {
    output_ = nullptr;
    outputStoppedAt_ = monotonicSeconds();
    if (router_)
        armTimer();
}

void PipeWireHardware::lookAround() {
    if (output_ != nullptr && !connection_->isLost())
        output_->followTail();
    if (!router_ || !tap_ || connection_->isLost())
        return;
    bool isDone = !isIORunning_ || output_ == nullptr;
    while (!isDone) {
        seePair();
        const PairStep step = supervisor_.look(facts_, monotonicSeconds());
        isPairSeen_ = isPairSeen_ && step == PairStep::none;
        switch (step) {
        case PairStep::none:
            isDone = true;
            break;
        case PairStep::route:
            beginRouting();
            break;
        case PairStep::link:
            linkOutput(*output_->stream(), output_->device());
            break;
        case PairStep::nudge:
            output_->nudge();
            break;
        case PairStep::release:
            router_->end();
            break;
        case PairStep::rebuild:
            rebuildPair();
            break;
        case PairStep::giveUp:
            router_->end();
            tell(HardwareProperty::connection, soundCutOffStatus);
            isDone = true;
            break;
        }
    }
    if (isIORunning_ && output_ != nullptr && supervisor_.isHealthy() && router_->isOn() &&
        seenEnds_ != ends_)
        beginRouting(); // with a replaced tap, or on another device
    if (isIORunning_ && output_ == nullptr && router_->isOn() &&
        monotonicSeconds() - outputStoppedAt_ >= outputSeconds) {
        router_->end();
        supervisor_.reset();
    }
    confirmReleases();
    if (router_->isOn()) {
        const bool isDue = monotonicSeconds() >= router_->nextDeadline();
        router_->checkDeadlines();
        if (isDue)
            tell(HardwareProperty::playbackStreams);
    }
    const double now = monotonicSeconds();
    const bool isResting = output_ == nullptr || !output_->stream()->isStreaming();
    const bool hasChanged = std::exchange(wasResting_, isResting) != isResting;
    if (!journal_->isEmpty() && (now >= nextBeat_ || hasChanged)) {
        nextBeat_ =
            now + (isResting ? RouteJournal::restingBeatSeconds : RouteJournal::beatSeconds);
        if (journal_->beat(isResting) && router_->isOn())
            router_->startOver();
    }
    armTimer();
}

void PipeWireHardware::armTimer() {
    const double now = monotonicSeconds();
    double next = std::min(supervisor_.nextLook(now), router_->nextDeadline());
    if (!isIORunning_ || output_ == nullptr)
        next = router_->nextDeadline();
    if (isIORunning_ && output_ == nullptr && router_->isOn())
        next = std::min(next, outputStoppedAt_ + outputSeconds);
    if (!journal_->isEmpty())
        next = std::min(next, nextBeat_);
    connection_->setTimer(timer_,
                          std::isfinite(next) ? std::min(next - now, longestWaitSeconds) : next);
}

/// The node of one of our streams; null if a client has removed it. (Ids are reused.)
const NodeRecord *PipeWireHardware::ownNode(const ServerStream &stream) const {
    if (stream.isGone() || stream.nodeID() == SPA_ID_INVALID)
        return nullptr;
    const NodeRecord *node = registry_->objects().node(stream.nodeID());
    return node != nullptr && node->name().starts_with(ownNodePrefix) ? node : nullptr;
}

OwnPair PipeWireHardware::ownPair() const {
    const OutStream *stream = output_->stream();
    return {ownNode(*tap_), stream != nullptr ? ownNode(*stream) : nullptr, output_->device(),
            tap_->isDevice()};
}

RoutingEnds PipeWireHardware::routingEnds() const {
    RoutingEnds ends = ownPair().ends(registry_->objects());
    if (const NodeRecord *home = defaultSink(); home != nullptr && ends.tapID != 0)
        ends.homeID = home->id;
    return ends;
}

void PipeWireHardware::beginRouting() {
    ends_ = routingEnds();
    if (ends_.tapID != 0)
        router_->begin(ends_);
}

/// Removes streams from the journal once the server has handled the commands that put them back.
void PipeWireHardware::confirmReleases() {
    if (!journal_->hasUnconfirmed() || journal_->releases() == awaitedReleases_)
        return;
    awaitedReleases_ = journal_->releases();
    connection_->afterRoundTrip([this, count = awaitedReleases_, of = std::weak_ptr(journal_)] {
        if (const auto journal = of.lock())
            journal->confirmReleases(count);
        lookSoon();
    });
}

/// Replaces both streams, with the same clients. Applications keep their targets until the new tap
/// exists; meanwhile the session manager plays them elsewhere.
void PipeWireHardware::rebuildPair() {
    dropOutputLinks();
    mustBeDevice_ =
        mustBeDevice_ || router_->needsDeviceTap() ||
        (ownNode(*tap_) != nullptr && registry_->objects().hasPorts(tap_->nodeID(), true) &&
         !isPlainStereo(registry_->objects(), tap_->nodeID(), true));
    tap_.reset();
    tap_ = std::make_unique<TapStream>(*connection_, pair_);
    tap_->connect(mustBeDevice_);
    tap_->setClient(ioClient_, {graphRate(), 2});
    output_->rebuild();
}

void PipeWireHardware::dropOutputLinks() {
    for (const OwnLink link : std::exchange(outputLinks_, {}))
        registry_->destroyLink(link);
}

/// Links the output to its device if the session manager does not.
void PipeWireHardware::linkOutput(const OutStream &stream, AudioObjectID device) {
    const OwnPair pair{.output = ownNode(stream), .deviceID = device};
    for (const LinkRequest &link : pair.deviceLinks(registry_->objects()))
        outputLinks_.push_back(registry_->createLink(link));
}

} // namespace quorbel
