// The engine's reactions to the hardware: another output device, another default output.

#include "devices/DeviceManager.h"
#include "engine/AudioEngine.h"
#include "engine/AudioEngineError.h"

#include <utility>

namespace quorbel {
namespace {

// Debounce: a device that is plugged in makes several changes in a row, and playback moves once,
// after the last.
constexpr double outputRestartDelaySeconds = 0.15;

/// Whether playback that is bound to one device is bound to the other.
bool isSameDevice(std::optional<AudioDevice> a, const std::optional<AudioDevice> &b) {
    if (a && b)
        a->identity = b->identity; // plays on through another socket
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

/// Returns the chosen device, or the default as its stand-in.
std::optional<AudioDevice> AudioEngine::wantedOutput() const {
    if (chosenUID_)
        if (auto chosen = deviceManager_.outputDevice(*chosenUID_))
            return chosen;
    return mayStandIn_ ? deviceManager_.defaultOutput() : std::nullopt;
}

void AudioEngine::followWantedOutput() {
    auto wanted = wantedOutput();
    // Equal but for the serial: the device has gone and come back, and playback is bound to the old
    // one.
    if (wanted != outputDevice_)
        moveOutput(std::move(wanted));
}

/// While nothing plays only the display depends on the device, so a missing choice is shown as such
/// until the start.
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

/// Ends the error of having no device once there is one.
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
    // Between two defaults there is no device to build a capture around; the next change brings
    // one.
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

} // namespace quorbel
