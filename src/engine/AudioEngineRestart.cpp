// The engine's reactions to the hardware: another output device, another default output, and the
// return after a failure during processing.

#include "devices/DeviceManager.h"
#include "engine/AudioEngine.h"
#include "engine/AudioEngineError.h"
#include "platform/core/Log.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorbel {
namespace {

// Debounce: plugging in a device causes several changes in a row; playback moves once, after the
// last.
constexpr double outputRestartDelaySeconds = 0.15;

/// Interval of the checks of the hardware. A check costs next to nothing while no server answers.
constexpr double lookSeconds = 0.25;
/// Longest pause between retries: a failing start is never abandoned.
constexpr double longestPauseSeconds = 2.0;
constexpr int looksUntilLongestPause = 3; ///< as the pause doubles
/// Grace period for the chosen device before falling back to another: after a server's start its
/// devices appear one by one.
constexpr double deviceWaitSeconds = 1.0;

/// True if both are the same device for playback, whatever its socket.
bool isSameDevice(std::optional<AudioDevice> a, const std::optional<AudioDevice> &b) {
    if (a && b)
        a->identity = b->identity; // another socket of the same device
    return a == b;
}

} // namespace

void AudioEngine::restoreOutputChoice(std::optional<std::string> uid) {
    chosenUID_ = std::move(uid);
    mayStandIn_ = outputDevice_.has_value();
    if (chosenUID_)
        if (auto chosen = deviceManager_.outputDevice(*chosenUID_))
            setOutputDevice(std::move(chosen));
}

void AudioEngine::useDefaultOutput() {
    mayStandIn_ = true;
    followDeviceList();
}

/// Returns the chosen device, or else the default output if that may stand in.
std::optional<AudioDevice> AudioEngine::wantedOutput() const {
    if (chosenUID_)
        if (auto chosen = deviceManager_.outputDevice(*chosenUID_))
            return chosen;
    return mayStandIn_ ? deviceManager_.defaultOutput() : std::nullopt;
}

void AudioEngine::followWantedOutput() {
    auto wanted = wantedOutput();
    // A new serial alone means that the device reappeared and playback is bound to the old one.
    if (wanted != outputDevice_)
        moveOutput(std::move(wanted));
}

/// Follows the device list at rest. Keeps showing a missing choice until the start, because only
/// the display depends on it.
void AudioEngine::followDeviceList() {
    const bool isAtRest = !lifecycle.isStarting() && !isComingBack() &&
                          lifecycle.state() != EngineLifecycle::State::running();
    const auto listed =
        outputDevice_ ? deviceManager_.outputDevice(outputDevice_->uid) : std::nullopt;
    const bool isElsewhere = listed && listed->identity != outputDevice_->identity;
    if (!isAtRest || (outputDevice_ && !isOutputStandIn() && !isElsewhere))
        return;
    followWantedOutput();
    endErrorOfNoOutput();
}

/// Clears the no-output error once there is a device.
void AudioEngine::endErrorOfNoOutput() {
    const auto error = EngineLifecycle::State::error(AudioEngineError::noOutputSelected().what());
    if (!outputDevice_ || isComingBack() || lifecycle.isStarting() || lifecycle.state() != error)
        return;
    lifecycle.end();
    publishState();
}

void AudioEngine::moveOutput(std::optional<AudioDevice> device) {
    const bool changed = !isSameDevice(device, outputDevice_);
    const bool isElsewhere = !changed && device != outputDevice_;
    outputDevice_ = std::move(device);
    if (!isElsewhere)
        Q_EMIT outputDeviceChanged();
    if (changed)
        scheduleOutputRestart();
    if (changed || isElsewhere)
        followOutputRule();
}

void AudioEngine::scheduleOutputRestart() {
    if (lifecycle.state() != EngineLifecycle::State::running())
        return;
    outputRestartTask =
        Timer::once(clock_, outputRestartDelaySeconds, [this] { restartProcessEngine(); });
}

void AudioEngine::restartProcessEngine() {
    outputRestartTask.invalidate();
    // Capture continues meanwhile.
    if (identityDeadline_.isSet()) {
        scheduleOutputRestart();
        return;
    }
    spectrumAnalyzer_.detach();
    try {
        playback_.fadeOut();
        playback_.stop();
        adoptOutput();
        playback_.configure(deviceManager_, outputDevice_);
        playback_.start();
        applySpatial();
        applyMixer();
        ++upheavals_.outputRestarts;
        Q_EMIT lossesChanged();
    } catch (const std::exception &error) {
        failRunning(error.what());
    }
}

void AudioEngine::handleHardwareChange() {
    followWantedOutput();

    const auto defaultUID = deviceManager_.currentDefaultOutputUID();
    // Without a default there is no device to capture around; the next change brings one.
    if (defaultUID && systemTap.isOutdatedBy(*defaultUID))
        rebuildTap();
}

void AudioEngine::rebuildTap() {
    try {
        systemTap.cleanup();
        activateTap();
    } catch (const std::exception &error) {
        failRunning(error.what());
    }
}

// Failures: the sound server ended, the last device was unplugged, or playback could not restart.
// The engine retries until the user presses Stop.

void AudioEngine::failRunning(std::string_view message) {
    lifecycle.fail(message);
    stopTimersAndSpectrum();
    teardown();
    isLeavingAlone_ = false;
    awaitComeback();
    publishState();
    logLine("AudioEngine", fmt::format("procesarea s-a oprit ({}); revine singură", message));
}

void AudioEngine::awaitComeback() {
    comeback_ = {};
    comeback_.failedAt = clock_.now();
    scheduleComeback();
}

/// Retries after the longest pause: some servers know the rate only once sound flows, and every
/// attempt moves the applications twice.
void AudioEngine::failAtRate(double sampleRate) {
    if (lifecycle.state() != EngineLifecycle::State::running())
        return;
    failRunning(AudioEngineError::rateNotSupported(sampleRate).what());
    comeback_.failedStarts = looksUntilLongestPause;
    scheduleComeback();
}

void AudioEngine::scheduleComeback() {
    const double pause =
        std::min(lookSeconds * std::exp2(comeback_.failedStarts), longestPauseSeconds);
    comebackTimer = Timer::once(clock_, pause, [this] { comeBack(); });
}

void AudioEngine::comeBack() {
    scheduleComeback(); // the next check, whatever the result of this one
    if (lifecycle.isStarting())
        return;
    deviceManager_.refreshIfChanged();
    if (!isComingBack() || !findOutputAgain()) // an observer of the devices may call stop
        return;
    ++comeback_.failedStarts; // reset by a success
    scheduleComeback();       // with a longer pause in case it fails
    beginStart();
}

/// Selects the output device; returns false while there is none or the grace period lasts.
bool AudioEngine::findOutputAgain() {
    if (deviceManager_.outputDevices().empty()) {
        comeback_.devicesSince.reset();
        return false;
    }
    if (!comeback_.devicesSince)
        comeback_.devicesSince = clock_.now();
    const auto isThere = [this](const std::optional<std::string> &uid) {
        return uid && deviceManager_.outputDevice(*uid);
    };
    const auto lastUsed = outputDevice_ ? std::optional(outputDevice_->uid) : std::nullopt;
    const bool isAwaited = (chosenUID_ || lastUsed) && !isThere(chosenUID_) && !isThere(lastUsed);
    if (isAwaited && clock_.now() - *comeback_.devicesSince < deviceWaitSeconds)
        return false;
    followWantedOutput();
    return outputDevice_.has_value();
}

void AudioEngine::finishComeback() {
    if (!comebackTimer.isSet())
        return;
    comebackTimer.invalidate();
    ++upheavals_.comebacks;
    logLine("AudioEngine",
            fmt::format("procesarea a revenit după {:.1f} s", clock_.now() - comeback_.failedAt));
}

} // namespace quorbel
