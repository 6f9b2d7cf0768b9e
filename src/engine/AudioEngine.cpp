#include "engine/AudioEngine.h"

#include "devices/DeviceManager.h"
#include "effects/EffectComponents.h"
#include "engine/AudioEngineError.h"
#include "engine/ChainFormat.h"
#include "platform/graph/MixerNode.h"

#include <utility>

namespace quorbel {
namespace {

constexpr auto ringBufferFrames = static_cast<std::int64_t>(chainSampleRate); // one second

/// Constant read-outs before the refresh stops. An active analysis makes several ticks in this time
/// and changes a reading at least at every second one.
constexpr int restingReadouts = 5;

} // namespace

AudioEngine::AudioEngine(AudioHardware &hardware, DeviceManager &deviceManager, Clock &clock,
                         std::vector<EQBand> bands, const UnitRegistration &registerUnits,
                         SerialQueueFactory queues)
    : deviceManager_(deviceManager), clock_(clock), registry_(clock), ringBuffer(ringBufferFrames),
      chain_(registry_, clock, std::move(bands)),
      playback_(hardware.makeOutput(), chain_, ringBuffer, std::move(queues)), systemTap(hardware),
      diagnostics_(clock, ringBuffer, systemTap, playback_), spectrumAnalyzer_(clock),
      self_(std::make_shared<AudioEngine *>(this)) {
    registerUnits(registry_);
    systemTap.onRateRefused = [&clock, weak = std::weak_ptr(self_)](double sampleRate) {
        clock.post([weak, sampleRate] {
            if (const auto self = weak.lock())
                (*self)->failAtRate(sampleRate);
        });
    };
    connect(&deviceManager_, &DeviceManager::outputDevicesChanged, this,
            &AudioEngine::followDeviceList);
    playback_.graph().setCyclesHandler([&clock, self = std::weak_ptr(self_)](bool doCome) {
        clock.post([self, doCome] {
            if (const auto engine = self.lock())
                (*engine)->setCyclesCome(doCome);
        });
    });
}

AudioEngine::~AudioEngine() {
    lifecycle.end();
    stopTimersAndSpectrum();
    teardown();
}

void AudioEngine::allEffectUnits(AudioUnitRegistry &registry) {
    // Bass and voice analyses run at the same times: one wake-up serves both.
    registerEffectUnits(registry, sharedThreadSerialQueues("Quorbel.Analysis"));
}

// Settings

void AudioEngine::setSpatial(const SpatialConfig &spatial) {
    spatial_ = spatial;
    applySpatial();
    Q_EMIT spatialChanged();
}

void AudioEngine::setMixer(const MixerConfig &mixer) {
    mixer_ = mixer;
    applyMixer();
    Q_EMIT mixerChanged();
}

void AudioEngine::applySpatial() {
    chain_.applySpatial(spatial_);
    playback_.updateTail();
}

void AudioEngine::applyMixer() {
    chain_.applyMixer(mixer_);
    if (lifecycle.state() != EngineLifecycle::State::running())
        return;
    if (mixer_.spectrumEnabled)
        attachSpectrum();
    else
        spectrumAnalyzer_.detach();
}

void AudioEngine::attachSpectrum() {
    if (mixer_.spectrumEnabled && isDisplayed_)
        spectrumAnalyzer_.attach(playback_.graph(), playback_.graph().mainMixer());
}

void AudioEngine::setOutputDevice(std::optional<AudioDevice> device) {
    chosenUID_ = device ? std::optional(device->uid) : std::nullopt;
    mayStandIn_ = chosenUID_.has_value();
    moveOutput(std::move(device));
    endErrorOfNoOutput();
}

void AudioEngine::setComparing(bool comparing) {
    if (comparing == comparing_)
        return;
    comparing_ = comparing;
    chain_.setBypassed(comparing);
    Q_EMIT comparingChanged();
}

// Start and stop

void AudioEngine::start() {
    if (lifecycle.isStarting() || isLeavingAlone_ ||
        lifecycle.state() == EngineLifecycle::State::running())
        return;
    if (isComingBack()) {
        comeback_.failedStarts = 0;
        comeBack();
        return;
    }
    upheavals_ = {};
    beginStart();
}

void AudioEngine::beginStart() {
    setComparing(false);
    const auto generation = lifecycle.beginStart();
    if (!generation)
        return;
    hasWaitedForIdentity_ = false;
    identityDeadline_.invalidate();
    deviceManager_.refreshIfChanged(); // a stopped engine does not listen to the hardware
    // Keeps a missing choice if there is no stand-in, so that the error can name it.
    if (wantedOutput())
        followWantedOutput();
    chain_.instantiateCustomUnits([this, start = *generation] { continueStart(start); });
}

void AudioEngine::continueStart(EngineLifecycle::Generation start) {
    // A stop in the meantime has already torn everything down and published its state.
    if (!lifecycle.isCurrent(start) || awaitIdentity(start))
        return;
    if (useOfOutput().isLeftAlone) {
        leaveOutputAlone();
        return;
    }
    adoptOutput();
    try {
        playback_.configure(deviceManager_, outputDevice_);
        if (!systemTap.isRunning())
            activateTap();
        playback_.start();
    } catch (const std::exception &error) {
        teardown();
        lifecycle.failStart(start, error.what());
        if (std::exchange(isLeavingAlone_, false))
            awaitComeback();
        publishState();
        return;
    }
    if (!lifecycle.isCurrent(start)) {
        teardown();
        publishState();
        return;
    }
    {
        const auto change = changeSettings();
        applySpatial();
        applyMixer();
    }
    attachSpectrum();
    observeHardware();
    if (lifecycle.finishStart(start)) {
        isLeavingAlone_ = false;
        startTimers();
        finishComeback();
        // Catches changes from before the listeners were installed.
        deviceManager_.refreshIfChanged();
        handleHardwareChange();
    }
    publishState();
}

void AudioEngine::activateTap() {
    try {
        systemTap.activate(ringBuffer, chainFormat);
    } catch (...) {
        systemTap.cleanup();
        throw;
    }
}

void AudioEngine::observeHardware() {
    // The engine clears these in every teardown, so they never outlive it.
    deviceManager_.onHardwareChange = [this] { handleHardwareChange(); };
    deviceManager_.onHardwareLost = [this](Status status) {
        failRunning((status == soundCutOffStatus ? AudioEngineError::soundCutOff()
                                                 : AudioEngineError::soundServerLost(status))
                        .what());
    };
    deviceManager_.startObservingHardware();
}

void AudioEngine::startTimers() {
    startReadouts();
    diagnostics_.start([this] { Q_EMIT lossesChanged(); });
}

void AudioEngine::startReadouts() {
    standingReadouts_ = 0;
    if (isDisplayed_)
        bassReadoutTimer = Timer::repeating(clock_, readOutSeconds, [this] { updateReadouts(); });
}

void AudioEngine::setDisplayed(bool isDisplayed) {
    if (isDisplayed == isDisplayed_)
        return;
    isDisplayed_ = isDisplayed;
    chain_.setDisplayed(isDisplayed);
    const bool isRunning = lifecycle.state() == EngineLifecycle::State::running();
    if (!isDisplayed) {
        bassReadoutTimer.invalidate();
        spectrumAnalyzer_.detach();
    } else if (isRunning) {
        updateReadouts();
        startReadouts();
        attachSpectrum();
    }
}

void AudioEngine::refreshReadouts() {
    if (isDisplayed_ || lifecycle.state() != EngineLifecycle::State::running())
        return;
    chain_.setDisplayed(true); // brings them up to date
    updateReadouts();
    chain_.setDisplayed(false);
}

/// A stale report from before a restart of playback is always followed by a current one.
void AudioEngine::setCyclesCome(bool doCome) {
    doCyclesCome_ = doCome;
    systemTap.logFormatChange(); // streams stop and start again for a new format
    chain_.setIdle(!doCome);
    diagnostics_.setIdle(!doCome);
    spectrumAnalyzer_.setIdle(!doCome);
    if (doCome && lifecycle.state() == EngineLifecycle::State::running() &&
        !bassReadoutTimer.isSet())
        startReadouts();
}

void AudioEngine::stop() {
    comebackTimer.invalidate();
    isLeavingAlone_ = false;
    lifecycle.end();
    stopTimersAndSpectrum();
    teardown();
    publishState();
}

void AudioEngine::stopTimersAndSpectrum() {
    outputRestartTask.invalidate();
    identityDeadline_.invalidate();
    bassReadoutTimer.invalidate();
    diagnostics_.stop();
    spectrumAnalyzer_.detach();
}

void AudioEngine::teardown() {
    playback_.fadeOut(); // while the graph still renders
    deviceManager_.stopObservingHardware();
    deviceManager_.onHardwareChange = nullptr;
    deviceManager_.onHardwareLost = nullptr;
    systemTap.cleanup();
    systemTap.markStopped();
    playback_.stop();
    ringBuffer.reset();
}

// Published values

void AudioEngine::publishState() {
    // Emits even without a change: callers use it to detect the end of a start.
    state_ = lifecycle.state();
    Q_EMIT stateChanged();
}

void AudioEngine::updateReadouts() {
    systemTap.logFormatChange();
    const MeterReadings now = chain_.readings();
    standingReadouts_ =
        doCyclesCome_ || now != std::exchange(lastReadings_, now) ? 0 : standingReadouts_ + 1;
    if (standingReadouts_ >= restingReadouts)
        bassReadoutTimer.invalidate();
    updateMeters(now.limiterReductionDB, now.autoGainDB);
    if (published_.updateBassTracking(now.bassTrackedFrequency))
        Q_EMIT bassTrackedFrequencyChanged();
    if (published_.updateVoiceConfidence(now.voiceConfidence))
        Q_EMIT voiceConfidenceChanged();
    updateHeldLevels();
}

void AudioEngine::updateHeldLevels() {
    const HeldLevels now = chain_.heldLevels();
    if (std::exchange(heldLevels_, now) != now)
        Q_EMIT heldLevelsChanged();
}

void AudioEngine::clearHeldLevels() {
    chain_.clearHeldLevels();
    updateHeldLevels();
}

void AudioEngine::updateMeters(float limiterReduction, float autoGain) {
    if (published_.updateLimiterReduction(limiterReduction))
        Q_EMIT limiterReductionDBChanged();
    if (published_.updateAutoGain(autoGain))
        Q_EMIT autoGainDBChanged();
}

} // namespace quorbel
