// The engine's return after a failure in the middle of processing: the sound server ended, the last
// device was unplugged, or playback could not be started again. The user's wish to process lasts
// until they press Stop.

#include "devices/DeviceManager.h"
#include "engine/AudioEngine.h"
#include "engine/AudioEngineError.h"
#include "platform/core/Log.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

/// Interval of the looks at the hardware. A look costs next to nothing while no server answers.
constexpr double lookSeconds = 0.25;
/// A start that keeps failing is tried less often, but never abandoned.
constexpr double longestPauseSeconds = 2.0;
constexpr int looksUntilLongestPause = 3; ///< as the pause doubles
/// Grace period for the chosen device before falling back to another: after a server's start its
/// devices appear one by one.
constexpr double deviceWaitSeconds = 1.0;

} // namespace

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

/// Makes the next attempt after the longest pause: on some servers the rate is known only once
/// sound flows, and every attempt moves the applications to and fro.
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
    scheduleComeback(); // the next look, whatever the result of this one
    if (lifecycle.isStarting())
        return;
    deviceManager_.refreshIfChanged();
    if (!isComingBack() || !findOutputAgain()) // an observer of the devices may call stop
        return;
    ++comeback_.failedStarts; // reset by a success
    scheduleComeback();       // with a longer pause in case it fails
    beginStart();
}

/// Selects the output device; returns false if there is none.
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
