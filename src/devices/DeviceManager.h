#pragma once

#include "platform/core/Status.h"
#include "platform/hardware/AudioHardware.h"
#include "platform/threads/Clock.h"

#include <QObject>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

/// An audio device as it stood when the devices were listed.
struct AudioDevice {
    AudioObjectID id = 0; ///< valid while the device is there; reused afterwards
    std::string uid;      ///< stable when the device goes and returns
    std::string name;
    std::string manufacturer;
    int inputChannels = 0;
    int outputChannels = 0;
    std::uint64_t serial = 0; ///< changes when the device returns, even under the same id
    OutputIdentity identity;  ///< changes with the socket in use

    friend bool operator==(const AudioDevice &, const AudioDevice &) = default;
};

/// Lists the machine's audio devices, knows the default output, binds the engine's output to a
/// device and announces hardware changes. All calls [main]; the hardware's own threads only post.
class DeviceManager final : public QObject {
    Q_OBJECT

  public:
    /// An error whose text is shown to the user unchanged.
    class DeviceError : public std::runtime_error {
      public:
        static DeviceError noAudioUnit(std::string_view what);
        static DeviceError setPropertyFailed(std::string_view what, Status status);
        static DeviceError deviceNotFound();

      private:
        using std::runtime_error::runtime_error;
    };

    /// Both must outlive the manager. The devices are listed at once.
    DeviceManager(AudioHardware &hardware, Clock &clock);
    ~DeviceManager() override;

    /// Every device with at least one output channel, in the platform's order.
    [[nodiscard]] const std::vector<AudioDevice> &outputDevices() const { return outputDevices_; }

    /// Lists the output devices again; tries to connect first if the connection to the hardware was
    /// lost.
    void refresh();
    /// The same, but only where devices have come or gone since, the default output is another, or
    /// the connection is lost.
    void refreshIfChanged();

    /// True if the hardware answered when it was last asked.
    [[nodiscard]] bool isHardwareThere() const { return census_.has_value(); }

    [[nodiscard]] std::vector<AudioDevice> allDevices() const;

    /// The listed device that is the system's default output, otherwise the first one listed.
    [[nodiscard]] std::optional<AudioDevice> defaultOutput() const;

    /// The listed device with this uid.
    [[nodiscard]] std::optional<AudioDevice> outputDevice(std::string_view uid) const;

    [[nodiscard]] std::optional<std::string> currentDefaultOutputUID() const;

    /// Binds `output` to the device, by its uid: a device that went and came back is found under
    /// its new id. Throws DeviceError; a null `output` is a missing audio unit.
    void setEngineOutput(HardwareOutput *output, const AudioDevice &device) const;

    /// From now on a change of the device list or of the default output refreshes the list and
    /// calls `onHardwareChange`. A lost connection calls `onHardwareLost`. A property that cannot
    /// be listened to is logged and left out. Once observing, a second call does nothing.
    void startObservingHardware();
    /// After this neither callback is called, not even for pending changes.
    void stopObservingHardware();
    [[nodiscard]] bool isObservingHardware() const { return observation_ != nullptr; }

    std::function<void()> onHardwareChange;
    std::function<void(Status)> onHardwareLost;

  Q_SIGNALS:
    /// The list or the default in it has changed, or the hardware has gone or returned.
    void outputDevicesChanged();

  private:
    class Observation;

    [[nodiscard]] int channelCount(AudioObjectID id, Scope scope) const;
    [[nodiscard]] AudioDevice describe(AudioObjectID id) const;

    /// Enough about the devices to detect a change.
    struct Census {
        struct Device {
            AudioObjectID id = 0;
            std::uint64_t serial = 0;
            OutputIdentity identity;
            friend bool operator==(const Device &, const Device &) = default;
        };
        std::vector<Device> devices; ///< all
        AudioObjectID defaultOutput = 0;
        friend bool operator==(const Census &, const Census &) = default;
    };
    [[nodiscard]] std::optional<Census> takeCensus() const; ///< none where the hardware fails

    AudioHardware &hardware_;
    Clock &clock_;
    std::vector<AudioDevice> outputDevices_;
    std::optional<Census> census_;             ///< of the last listing
    std::shared_ptr<Observation> observation_; ///< shared with its posted tasks
};

} // namespace quorbel

template <> struct std::hash<quorbel::AudioDevice> {
    std::size_t operator()(const quorbel::AudioDevice &device) const noexcept {
        return std::hash<std::string>()(device.uid) ^
               std::hash<quorbel::AudioObjectID>()(device.id);
    }
};
