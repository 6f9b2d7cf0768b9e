// Script of the simulated machine: events that a test or a demonstration triggers, and queries of
// their results.

#include "platform/hardware/simulated/SimulatedHardware.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace quorbel {

using simulated::Playing;
using simulated::Recording;

// Devices

AudioObjectID SimulatedHardware::addDevice(SimulatedDevice device) {
    AudioObjectID id = 0;
    if (isReusingIDs_ && !freeIDs_.empty()) {
        id = freeIDs_.back();
        freeIDs_.pop_back();
    } else {
        id = newID();
    }
    const bool isFirst = devices_.empty() && (defaultUID_.empty() || !isDefaultLagging_);
    if (isFirst)
        defaultUID_ = device.uid;
    rearrange([&] {
        auto &added = devices_[id];
        added = std::make_unique<Device>(std::move(device), clock_, pace_);
        added->serial = ++lastSerial_;
    });
    notify(HardwareProperty::deviceList);
    if (isFirst)
        notify(HardwareProperty::defaultOutput);
    return id;
}

void SimulatedHardware::removeDevice(const std::string &uid) {
    rearrange([&] {
        const AudioObjectID id = idOf(uid);
        devices_.erase(id);
        freeIDs_.push_back(id);
        for (auto &[output, started] : outputs_)
            if (started.device == id)
                started.device = 0; // the id may be given to another device
    });
    const bool wasDefault = defaultUID_ == uid && !isDefaultLagging_;
    if (wasDefault)
        defaultUID_ = devices_.empty() ? std::string() : devices_.begin()->second->script.uid;
    notify(HardwareProperty::deviceList);
    if (wasDefault)
        notify(HardwareProperty::defaultOutput);
}

void SimulatedHardware::setDefaultOutput(const std::string &uid) {
    rearrange([&] { defaultUID_ = deviceNamed(uid).script.uid; });
    notify(HardwareProperty::defaultOutput);
}

void SimulatedHardware::setIdentity(const std::string &uid, OutputIdentity identity) {
    deviceNamed(uid).script.identity = std::move(identity);
    notify(HardwareProperty::deviceList);
}

void SimulatedHardware::setSampleRate(const std::string &uid, double sampleRate) {
    rearrange([&] {
        Device &device = deviceNamed(uid);
        device.script.sampleRate = sampleRate;
        const StreamFormat format{.sampleRate = sampleRate, .channelCount = 2};
        for (const auto &[id, proc] : procs_)
            if (proc.isRunning && clockOf(proc.device) == &device)
                proc.client->ioFormatChanged(format);
        for (const auto &[output, started] : outputs_)
            if (find(started.device) == &device)
                started.client->renderFormatChanged(format);
    });
}

void SimulatedHardware::setBlockFrames(const std::string &uid,
                                       std::vector<std::uint32_t> blockFrames) {
    rearrange([&] { deviceNamed(uid).script.blockFrames = std::move(blockFrames); });
}

// Applications

AudioObjectID SimulatedHardware::play(simulated::Sound sound, std::string deviceUID) {
    const AudioObjectID id = newID();
    rearrange([&] {
        applications_[id] = {.playing = std::make_shared<Playing>(Playing{std::move(sound)}),
                             .deviceUID = std::move(deviceUID)};
    });
    return id;
}

void SimulatedHardware::stopPlaying(AudioObjectID application) {
    rearrange([&] { applications_.erase(application); });
}

void SimulatedHardware::setPlaybackStreams(std::vector<PlaybackStream> streams) {
    playbackStreams_ = std::move(streams);
    notify(HardwareProperty::playbackStreams);
}

void SimulatedHardware::setSuspended(bool suspended) {
    rearrange([&] {
        isSuspended_ = suspended;
        for (const auto &[output, started] : outputs_)
            suspended ? started.client->renderPaused() : started.client->renderResumed();
    });
}

// Failures

void SimulatedHardware::setAsleep(bool asleep) {
    rearrange([&] { isAsleep_ = asleep; });
}

void SimulatedHardware::loseConnection(Status status) {
    rearrange([&] {
        connection_ = status;
        isReachable_ = false;
        taps_.clear();
        aggregates_.clear();
        procs_.clear();
        outputs_.clear();
    });
    notify(HardwareProperty::connection);
}

// Results

void SimulatedHardware::watchCallbacks(simulated::CallbackWatch &watch) {
    rearrange([&] { watch_ = &watch; });
}

Recording SimulatedHardware::takeRecording(const std::string &uid) {
    return std::exchange(deviceNamed(uid).cycles.recording(), {});
}

std::vector<TapDescription> SimulatedHardware::taps() const {
    std::vector<TapDescription> result;
    for (const auto &[id, description] : taps_)
        result.push_back(description);
    return result;
}

std::vector<AggregateDescription> SimulatedHardware::aggregates() const {
    std::vector<AggregateDescription> result;
    for (const auto &[id, description] : aggregates_)
        result.push_back(description);
    return result;
}

bool SimulatedHardware::isCapturing() const {
    return std::ranges::any_of(procs_, [](const auto &entry) { return entry.second.isRunning; });
}

bool SimulatedHardware::isPlaying() const { return !outputs_.empty(); }

bool SimulatedHardware::isListenedTo() const { return !listeners_.empty(); }

void SimulatedHardware::notify(HardwareProperty property) {
    std::vector<HardwareListener *> told;
    for (const auto &[listened, listener] : listeners_)
        if (listened == property)
            told.push_back(listener);
    const auto tellAll = [&] {
        for (HardwareListener *listener : told)
            listener->propertyChanged(property, connection_);
    };
    if (pace_ == Pace::threads)
        std::thread(tellAll).join(); // never on the main thread, as on a real machine
    else
        tellAll();
}

} // namespace quorbel
