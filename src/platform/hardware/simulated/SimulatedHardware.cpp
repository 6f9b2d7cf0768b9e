#include "platform/hardware/simulated/SimulatedHardware.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

namespace quorbel {

using simulated::CyclePlan;
using simulated::OperationLog;
using simulated::Playing;

SimulatedHardware::SimulatedHardware(Clock &clock, Pace pace) : clock_(clock), pace_(pace) {}

SimulatedHardware::~SimulatedHardware() = default;

// AudioHardware: devices

Status SimulatedHardware::reconnect() {
    const auto verdict = operations_.note(Operation::reconnect);
    if (connection_ == statusOK)
        return statusOK;
    if (!verdict.carryOut)
        return verdict.status;
    if (!isReachable_)
        return -EHOSTDOWN;
    rearrange([&] {
        connection_ = statusOK;
        ownProcess_ = 0;
        // A new server assigns new ids.
        std::map<AudioObjectID, std::unique_ptr<Device>> renumbered;
        for (auto &[id, device] : devices_) {
            device->serial = ++lastSerial_;
            renumbered[newID()] = std::move(device);
        }
        freeIDs_.clear();
        devices_ = std::move(renumbered);
    });
    return statusOK;
}

Status SimulatedHardware::processObject(std::int32_t, AudioObjectID &process) {
    if (const auto verdict = note(Operation::processObject); !verdict.carryOut)
        return verdict.status;
    if (ownProcess_ == 0)
        ownProcess_ = newID();
    process = ownProcess_;
    return statusOK;
}

Status SimulatedHardware::defaultOutputDevice(AudioObjectID &device) {
    if (const auto verdict = note(Operation::defaultOutputDevice); !verdict.carryOut)
        return verdict.status;
    const AudioObjectID id = defaultOutput();
    if (id == 0)
        return -ENODEV;
    device = id;
    return statusOK;
}

Status SimulatedHardware::deviceList(std::vector<AudioObjectID> &devices) {
    if (const auto verdict = note(Operation::deviceList); !verdict.carryOut)
        return verdict.status;
    devices.clear();
    for (const auto &[id, device] : devices_)
        devices.push_back(id);
    return statusOK;
}

std::uint64_t SimulatedHardware::deviceSerial(AudioObjectID device) {
    const auto *found = find(device);
    return found == nullptr || connection_ != statusOK ? 0 : found->serial;
}

std::optional<std::string> SimulatedHardware::deviceUID(AudioObjectID device) {
    const auto *found = find(device);
    if (!note(Operation::deviceUID).carryOut || found == nullptr)
        return std::nullopt;
    return found->script.uid;
}

std::optional<std::string> SimulatedHardware::deviceName(AudioObjectID device) {
    const auto *found = find(device);
    if (!note(Operation::deviceName).carryOut || found == nullptr)
        return std::nullopt;
    return found->script.name;
}

std::optional<std::string> SimulatedHardware::deviceManufacturer(AudioObjectID device) {
    const auto *found = find(device);
    if (!note(Operation::deviceManufacturer).carryOut || found == nullptr)
        return std::nullopt;
    return found->script.manufacturer;
}

OutputIdentity SimulatedHardware::outputIdentity(AudioObjectID device) {
    const auto *found = find(device);
    if (found == nullptr || connection_ != statusOK)
        return {};
    OutputIdentity identity = found->script.identity;
    identity.node = found->script.uid;
    return identity;
}

Status SimulatedHardware::streamChannelCounts(AudioObjectID device, Scope scope,
                                              std::vector<std::uint32_t> &channelsPerBuffer) {
    if (const auto verdict = note(Operation::streamChannelCounts); !verdict.carryOut)
        return verdict.status;
    const auto *found = find(device);
    if (found == nullptr)
        return -ENODEV;
    channelsPerBuffer =
        scope == Scope::input ? found->script.inputChannels : found->script.outputChannels;
    return statusOK;
}

Status SimulatedHardware::addListener(HardwareProperty property, HardwareListener &listener) {
    // Works without a server too: listeners outlive connections.
    if (const auto verdict = operations_.note(Operation::addListener); !verdict.carryOut)
        return verdict.status;
    assert(std::ranges::count(listeners_, std::pair(property, &listener)) == 0);
    listeners_.emplace_back(property, &listener);
    return statusOK;
}

Status SimulatedHardware::removeListener(HardwareProperty property, HardwareListener &listener) {
    // Removes it in any case: the caller relies on no further call.
    const auto verdict = operations_.note(Operation::removeListener);
    std::erase(listeners_, std::pair(property, &listener));
    return verdict.status;
}

// AudioHardware: capture

Status SimulatedHardware::createProcessTap(const TapDescription &description, AudioObjectID &tap) {
    if (const auto verdict = note(Operation::createProcessTap); !verdict.carryOut)
        return verdict.status;
    const AudioObjectID id = newID();
    rearrange([&] { taps_[id] = description; });
    tap = id;
    return statusOK;
}

Status SimulatedHardware::destroyProcessTap(AudioObjectID tap) {
    if (const auto verdict = note(Operation::destroyProcessTap); !verdict.carryOut)
        return verdict.status;
    if (!taps_.contains(tap))
        return -EINVAL;
    rearrange([&] { taps_.erase(tap); });
    return statusOK;
}

Status SimulatedHardware::tapFormat(AudioObjectID tap, StreamFormat &format) {
    if (const auto verdict = note(Operation::tapFormat); !verdict.carryOut)
        return verdict.status;
    if (!taps_.contains(tap))
        return -EINVAL;
    const auto *device = find(defaultOutput());
    if (device == nullptr)
        return -ENODEV;
    format = {.sampleRate = declaredTapRate_.value_or(device->script.sampleRate),
              .channelCount = 2};
    return statusOK;
}

Status SimulatedHardware::createAggregateDevice(const AggregateDescription &description,
                                                AudioObjectID &device) {
    if (const auto verdict = note(Operation::createAggregateDevice); !verdict.carryOut)
        return verdict.status;
    if (find(idOf(description.mainDeviceUID)) == nullptr)
        return -ENODEV;
    for (const auto &tap : description.taps)
        if (std::ranges::none_of(taps_,
                                 [&](const auto &entry) { return entry.second.uuid == tap.uuid; }))
            return -ENOENT;
    device = newID();
    aggregates_[device] = description;
    return statusOK;
}

Status SimulatedHardware::destroyAggregateDevice(AudioObjectID device) {
    if (const auto verdict = note(Operation::destroyAggregateDevice); !verdict.carryOut)
        return verdict.status;
    if (!aggregates_.contains(device))
        return -EINVAL;
    rearrange([&] {
        aggregates_.erase(device);
        std::erase_if(procs_, [&](const auto &entry) { return entry.second.device == device; });
    });
    return statusOK;
}

Status SimulatedHardware::nominalSampleRate(AudioObjectID device, double &rate) {
    if (const auto verdict = note(Operation::nominalSampleRate); !verdict.carryOut)
        return verdict.status;
    const auto *clock = clockOf(device);
    if (clock == nullptr)
        return -ENODEV;
    rate = clock->script.sampleRate;
    return statusOK;
}

Status SimulatedHardware::createIOProc(AudioObjectID device, IOClient &client, IOProcID &proc) {
    if (const auto verdict = note(Operation::createIOProc); !verdict.carryOut)
        return verdict.status;
    if (!aggregates_.contains(device))
        return -EINVAL;
    proc = newID();
    procs_[proc] = {.device = device, .client = &client};
    return statusOK;
}

Status SimulatedHardware::destroyIOProc(AudioObjectID device, IOProcID proc) {
    if (const auto verdict = note(Operation::destroyIOProc); !verdict.carryOut)
        return verdict.status;
    const auto found = procs_.find(proc);
    if (found == procs_.end() || found->second.device != device)
        return -EINVAL;
    rearrange([&] { procs_.erase(found); });
    return statusOK;
}

Status SimulatedHardware::startDevice(AudioObjectID device, IOProcID proc) {
    if (const auto verdict = note(Operation::startDevice); !verdict.carryOut)
        return verdict.status;
    const auto found = procs_.find(proc);
    const auto *clock = clockOf(device);
    if (found == procs_.end() || found->second.device != device || clock == nullptr)
        return -EINVAL;
    found->second.client->ioFormatChanged(
        {.sampleRate = clock->script.sampleRate, .channelCount = 2});
    rearrange([&] { found->second.isRunning = true; });
    return statusOK;
}

Status SimulatedHardware::stopDevice(AudioObjectID device, IOProcID proc) {
    if (const auto verdict = note(Operation::stopDevice); !verdict.carryOut)
        return verdict.status;
    const auto found = procs_.find(proc);
    if (found == procs_.end() || found->second.device != device)
        return -EINVAL;
    rearrange([&] { found->second.isRunning = false; });
    return statusOK;
}

// The machine

void SimulatedHardware::rearrange(const std::function<void()> &change) {
    for (const auto &[id, device] : devices_)
        device->cycles.pause();
    change();
    for (const auto &[id, device] : devices_)
        device->cycles.resume(planFor(id, *device));
}

void SimulatedHardware::playOn(const std::function<bool()> &condition, double seconds) {
    if (pace_ == Pace::threads) {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (!condition() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        return;
    }
    std::map<AudioObjectID, double> played;
    for (const auto &[id, device] : devices_)
        played[id] = 0.0;
    while (!condition() && !played.empty()) {
        const auto next =
            std::ranges::min_element(played, {}, [](auto &entry) { return entry.second; });
        const double more = devices_.at(next->first)->cycles.extraCycle();
        next->second += more;
        if (more == 0.0 || next->second > seconds)
            played.erase(next);
    }
}

CyclePlan SimulatedHardware::planFor(AudioObjectID id, const Device &device) const {
    CyclePlan plan;
    plan.sampleRate = device.script.sampleRate;
    plan.blockFrames = device.script.blockFrames;
    plan.willPlay = isPlaying();
    plan.watch = watch_;
    if (connection_ != statusOK || isAsleep_ || isSuspended_)
        return plan;

    std::vector<const TapDescription *> readTaps;
    for (const auto &[procID, proc] : procs_) {
        if (!proc.isRunning || clockOf(proc.device) != &device)
            continue;
        plan.captures.push_back(proc.client);
        for (const auto &[tapID, tap] : taps_)
            for (const auto &part : aggregates_.at(proc.device).taps)
                if (part.uuid == tap.uuid)
                    readTaps.push_back(&tap);
    }
    for (const auto &[output, started] : outputs_)
        if (started.device == id)
            plan.renders.push_back(started.client);

    for (const auto &[application, entry] : applications_) {
        const bool muted = isMuted(application);
        const AudioObjectID own = entry.deviceUID.empty() ? defaultOutput() : idOf(entry.deviceUID);
        if (own == id && !muted)
            plan.heard.push_back(entry.playing);
        for (const TapDescription *tap : readTaps)
            if (std::ranges::count(tap->excludedProcesses, application) == 0)
                // An application that is both heard and captured plays for each separately.
                plan.captured.push_back(muted ? entry.playing
                                              : std::make_shared<Playing>(*entry.playing));
    }
    return plan;
}

bool SimulatedHardware::isRead(const std::string &tapUUID) const {
    return std::ranges::any_of(procs_, [&](const auto &entry) {
        const IOProc &proc = entry.second;
        return proc.isRunning && clockOf(proc.device) != nullptr &&
               std::ranges::any_of(aggregates_.at(proc.device).taps,
                                   [&](const auto &tap) { return tap.uuid == tapUUID; });
    });
}

bool SimulatedHardware::isMuted(AudioObjectID application) const {
    using enum TapDescription::MuteBehavior;
    return std::ranges::any_of(taps_, [&](const auto &entry) {
        const TapDescription &tap = entry.second;
        return std::ranges::count(tap.excludedProcesses, application) == 0 &&
               (tap.muteBehavior == muted ||
                (tap.muteBehavior == mutedWhenTapped && isRead(tap.uuid)));
    });
}

OperationLog::Verdict SimulatedHardware::note(Operation operation) {
    const auto verdict = operations_.note(operation);
    if (connection_ != statusOK)
        return {.carryOut = false, .status = connection_};
    return verdict;
}

SimulatedHardware::Device *SimulatedHardware::find(AudioObjectID id) const {
    const auto found = devices_.find(id);
    return found == devices_.end() ? nullptr : found->second.get();
}

SimulatedHardware::Device &SimulatedHardware::deviceNamed(const std::string &uid) const {
    Device *device = find(idOf(uid));
    assert(device != nullptr && "the script names a device that is not there");
    return *device;
}

AudioObjectID SimulatedHardware::idOf(const std::string &uid) const {
    for (const auto &[id, device] : devices_)
        if (device->script.uid == uid)
            return id;
    return 0;
}

SimulatedHardware::Device *SimulatedHardware::clockOf(AudioObjectID device) const {
    const auto aggregate = aggregates_.find(device);
    return find(aggregate == aggregates_.end() ? device : idOf(aggregate->second.mainDeviceUID));
}

AudioObjectID SimulatedHardware::defaultOutput() const { return idOf(defaultUID_); }

} // namespace quorbel
