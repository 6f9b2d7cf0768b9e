// The engine's reactions to the hardware: another output device, another default output.

#include "devices/DeviceManager.h"
#include "engine/AudioEngine.h"
#include "engine/AudioEngineError.h"

#include <utility>

namespace quorbel {
namespace {

// A device that is plugged in makes several changes in a row; playback moves once, after the last.
constexpr double outputRestartDelaySeconds = 0.15;

} // namespace

void AudioEngine::moveOutput(std::optional<AudioDevice> device) {
    const bool changed = device != outputDevice_;
    outputDevice_ = std::move(device);
    Q_EMIT outputDeviceChanged();
    if (changed)
        scheduleOutputRestart();
}

void AudioEngine::scheduleOutputRestart() {
    if (lifecycle.state() != EngineLifecycle::State::running())
        return;
    outputRestartTask =
        Timer::once(clock_, outputRestartDelaySeconds, [this] { restartProcessEngine(); });
}

void AudioEngine::restartProcessEngine() {
    // Capture goes on meanwhile.
    spectrumAnalyzer_.detach();
    try {
        playback_.fadeOut();
        playback_.stop();
        playback_.configure(deviceManager_, outputDevice_);
        playback_.start();
        applySpatial();
        applyMixer();
        ++upheavals_.outputRestarts;
    } catch (const std::exception &error) {
        failRunning(error.what());
    }
}

void AudioEngine::handleHardwareChange() {
    if (vanishedUID_ && deviceManager_.outputDevice(*vanishedUID_)) {
        setOutputDevice(deviceManager_.outputDevice(*vanishedUID_));
    } else if (outputDevice_) {
        const auto listed = deviceManager_.outputDevice(outputDevice_->uid);
        if (!listed) {
            if (!vanishedUID_)
                vanishedUID_ = outputDevice_->uid;
            moveOutput(deviceManager_.defaultOutput());
        } else if (listed->id != outputDevice_->id) {
            moveOutput(listed); // it went and came back: what plays is bound to the old one
        }
    }

    const auto defaultUID = deviceManager_.currentDefaultOutputUID();
    // Between two defaults there is nothing to build a capture around; the next change brings one.
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
