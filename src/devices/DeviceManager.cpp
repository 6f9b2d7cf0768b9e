#include "devices/DeviceManager.h"

#include "platform/core/Log.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quorbel {

using DeviceError = DeviceManager::DeviceError;

DeviceError DeviceError::noAudioUnit(std::string_view what) {
    return DeviceError(fmt::format("Couldn't access the audio unit for {}.", what));
}

DeviceError DeviceError::setPropertyFailed(std::string_view what, Status status) {
    return DeviceError(fmt::format("Failed to set {} (OSStatus {}).", what, status));
}

DeviceError DeviceError::deviceNotFound() { return DeviceError("Audio device not found."); }

/// One period of observation, from start to stop. Gives the hardware's threads their only access to
/// the manager: they post to the main thread, which drops tasks that outlive their observation.
class DeviceManager::Observation final : public HardwareListener,
                                         public std::enable_shared_from_this<Observation> {
  public:
    explicit Observation(DeviceManager &manager)
        : manager_(manager), hardware_(manager.hardware_), clock_(manager.clock_) {}

    void begin() {
        for (const Listened &listened : allListened) {
            const Status status = hardware_.addListener(listened.property, *this);
            if (status != statusOK)
                logLine("DeviceManager", fmt::format("nu am putut asculta {}: OSStatus {}",
                                                     listened.selector, status));
            else
                installed_.push_back(listened.property);
        }
    }

    void end() {
        for (const HardwareProperty property : std::exchange(installed_, {}))
            hardware_.removeListener(property, *this);
    }

    void deviceListChanged() override { listenerProc(); }
    void defaultOutputChanged() override { listenerProc(); }
    void hardwareLost(Status status) override {
        handOver([status](DeviceManager &manager) {
            // A copy, because the callback may clear itself.
            if (const auto callback = manager.onHardwareLost)
                callback(status);
            // Last: nothing of the lost hardware may remain when new hardware is found.
            manager.refresh();
        });
    }

  private:
    struct Listened {
        HardwareProperty property;
        std::string_view selector;
    };
    static constexpr Listened allListened[]{{HardwareProperty::deviceList, "dev#"},
                                            {HardwareProperty::defaultOutput, "dOut"},
                                            {HardwareProperty::connection, "connection"}};

    void listenerProc() {
        handOver([](DeviceManager &manager) {
            manager.refresh();
            if (const auto callback = manager.onHardwareChange)
                callback();
        });
    }

    void handOver(std::function<void(DeviceManager &)> task) {
        clock_.post([weak = weak_from_this(), task = std::move(task)] {
            // Locking is safe only on the main thread, where the manager also releases it.
            if (const auto self = weak.lock())
                task(self->manager_);
        });
    }

    DeviceManager &manager_;
    AudioHardware &hardware_;
    Clock &clock_;
    std::vector<HardwareProperty> installed_;
};

DeviceManager::DeviceManager(AudioHardware &hardware, Clock &clock)
    : hardware_(hardware), clock_(clock) {
    refresh();
}

DeviceManager::~DeviceManager() { stopObservingHardware(); }

void DeviceManager::refreshIfChanged() {
    const auto census = takeCensus();
    if (!census || census != census_)
        refresh();
}

std::optional<DeviceManager::Census> DeviceManager::takeCensus() const {
    std::vector<AudioObjectID> ids;
    if (hardware_.deviceList(ids) != statusOK)
        return std::nullopt;
    Census census;
    for (const AudioObjectID id : ids)
        census.devices.push_back({id, hardware_.deviceSerial(id), hardware_.outputIdentity(id)});
    if (hardware_.defaultOutputDevice(census.defaultOutput) != statusOK)
        census.defaultOutput = 0;
    return census;
}

void DeviceManager::refresh() {
    hardware_.reconnect();
    std::vector<AudioDevice> devices = allDevices();
    std::erase_if(devices, [](const AudioDevice &device) { return device.outputChannels <= 0; });
    const auto defaultIn = [](const std::optional<Census> &census) {
        return census ? census->defaultOutput : 0;
    };
    const auto before = std::exchange(census_, takeCensus());
    if (devices == outputDevices_ && defaultIn(before) == defaultIn(census_) &&
        before.has_value() == census_.has_value())
        return;
    outputDevices_ = std::move(devices);
    Q_EMIT outputDevicesChanged();
}

std::vector<AudioDevice> DeviceManager::allDevices() const {
    std::vector<AudioObjectID> ids;
    if (hardware_.deviceList(ids) != statusOK)
        return {};
    std::vector<AudioDevice> devices;
    devices.reserve(ids.size());
    std::ranges::transform(ids, std::back_inserter(devices),
                           [this](AudioObjectID id) { return describe(id); });
    return devices;
}

AudioDevice DeviceManager::describe(AudioObjectID id) const {
    return {.id = id,
            .uid = hardware_.deviceUID(id).value_or(""),
            .name = hardware_.deviceName(id).value_or("Unknown"),
            .manufacturer = hardware_.deviceManufacturer(id).value_or(""),
            .inputChannels = channelCount(id, Scope::input),
            .outputChannels = channelCount(id, Scope::output),
            .serial = hardware_.deviceSerial(id),
            .identity = hardware_.outputIdentity(id)};
}

int DeviceManager::channelCount(AudioObjectID id, Scope scope) const {
    std::vector<std::uint32_t> channelsPerBuffer;
    if (hardware_.streamChannelCounts(id, scope, channelsPerBuffer) != statusOK)
        return 0;
    std::uint32_t sum = 0;
    for (const std::uint32_t channels : channelsPerBuffer)
        sum += channels;
    return static_cast<int>(sum);
}

std::optional<AudioDevice> DeviceManager::defaultOutput() const {
    AudioObjectID id = 0;
    if (hardware_.defaultOutputDevice(id) == statusOK && id != 0) {
        const auto found = std::ranges::find(outputDevices_, id, &AudioDevice::id);
        if (found != outputDevices_.end())
            return *found;
    }
    if (outputDevices_.empty())
        return std::nullopt;
    return outputDevices_.front();
}

std::optional<AudioDevice> DeviceManager::outputDevice(std::string_view uid) const {
    const auto found = std::ranges::find(outputDevices_, uid, &AudioDevice::uid);
    if (found == outputDevices_.end())
        return std::nullopt;
    return *found;
}

std::optional<std::string> DeviceManager::currentDefaultOutputUID() const {
    AudioObjectID id = 0;
    if (hardware_.defaultOutputDevice(id) != statusOK || id == 0)
        return std::nullopt;
    return hardware_.deviceUID(id);
}

void DeviceManager::setEngineOutput(HardwareOutput *output, const AudioDevice &device) const {
    if (output == nullptr)
        throw DeviceError::noAudioUnit("output node");
    const auto listed = outputDevice(device.uid);
    if (!listed)
        throw DeviceError::deviceNotFound();
    if (const Status status = output->setDevice(listed->id); status != statusOK)
        throw DeviceError::setPropertyFailed("output device", status);
}

void DeviceManager::startObservingHardware() {
    if (isObservingHardware())
        return;
    observation_ = std::make_shared<Observation>(*this);
    observation_->begin();
}

void DeviceManager::stopObservingHardware() {
    if (!isObservingHardware())
        return;
    observation_->end();
    observation_.reset();
}

} // namespace quorbel
