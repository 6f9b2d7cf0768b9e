// Profiles of outputs: waiting for an identity, adopting settings, leaving an output alone.

#include "devices/DeviceManager.h"
#include "engine/AudioEngine.h"
#include "engine/OutputRule.h"
#include "platform/core/Log.h"

#include <fmt/format.h>

namespace quorbel {
namespace {

/// A running session manager names the route within milliseconds.
constexpr double longestIdentityWaitSeconds = 1.0;

} // namespace

void AudioEngine::setOutputRule(OutputRule *rule) {
    outputRule_ = rule;
    followOutputRule();
}

bool AudioEngine::hasOutputRule() const {
    return outputRule_ != nullptr && outputDevice_ && outputRule_->isActive();
}

OutputUse AudioEngine::useOfOutput() const {
    return hasOutputRule() ? outputRule_->useOf(*outputDevice_) : OutputUse{};
}

void AudioEngine::adoptOutput() {
    identityDeadline_.invalidate();
    if (hasOutputRule())
        outputRule_->adopt(*outputDevice_);
}

void AudioEngine::followOutputRule() {
    playback_.setStaysOnDevice(hasOutputRule());
    if (lifecycle.isStarting())
        return; // the start asks the rule itself
    const OutputUse use = useOfOutput();
    const bool isRunning = lifecycle.state() == EngineLifecycle::State::running();
    if (!use.isAwaited) {
        decideOutput(use.isLeftAlone);
        return;
    }
    // Keeps the settings while waiting; the deadline decides with the names known by then.
    if ((isRunning || isLeavingAlone_) && !identityDeadline_.isSet())
        identityDeadline_ = Timer::once(clock_, longestIdentityWaitSeconds,
                                        [this] { decideOutput(useOfOutput().isLeftAlone); });
}

void AudioEngine::decideOutput(bool isLeftAlone) {
    identityDeadline_.invalidate();
    if (lifecycle.state() == EngineLifecycle::State::running()) {
        if (isLeftAlone)
            leaveOutputAlone();
        else if (!outputRestartTask.isSet()) // otherwise the restart adopts it
            adoptOutput();
    } else if (isLeavingAlone_ && !isLeftAlone) {
        beginStart();
    } else {
        adoptOutput();
    }
}

/// Lets applications play directly on the output until another is in use or the rule changes.
void AudioEngine::leaveOutputAlone() {
    comebackTimer.invalidate();
    lifecycle.end();
    stopTimersAndSpectrum();
    teardown();
    isLeavingAlone_ = true;
    adoptOutput();
    observeHardware();
    publishState();
    logLine("AudioEngine", fmt::format("ieșirea '{}' este lăsată în pace", outputDevice_->name));
}

/// Returns true if the start must wait for the output's identity and then continues by itself.
bool AudioEngine::awaitIdentity(EngineLifecycle::Generation start) {
    if (!useOfOutput().isAwaited || hasWaitedForIdentity_)
        return false;
    if (!identityDeadline_.isSet())
        identityDeadline_ = Timer::once(clock_, longestIdentityWaitSeconds, [this, start] {
            hasWaitedForIdentity_ = true;
            continueStart(start);
        });
    deviceManager_.onHardwareChange = [this, start] {
        followWantedOutput();
        continueStart(start);
    };
    deviceManager_.startObservingHardware();
    deviceManager_.refreshIfChanged(); // changes from before the observation
    followWantedOutput();
    return useOfOutput().isAwaited;
}

} // namespace quorbel
