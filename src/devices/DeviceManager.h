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

/// Audio device at the time of the listing.
struct AudioDevice {
    AudioObjectID id = 0; ///< valid while the device is present; reused afterwards
    std::string uid;      ///< stable across reconnections
    std::string name;
    std::string manufacturer;
    int inputChannels = 0;
    int outputChannels = 0;
    std::uint64_t serial = 0; ///< changes at a reconnection, even with the same id
    OutputIdentity identity;  ///< changes with the socket in use

    friend bool operator==(const AudioDevice &, const AudioDevice &) = default;
};

/// Lists the machine's audio devices, knows the default output, binds the engine's output to a
/// device and announces hardware changes. All calls [main]; the hardware's own threads only post.
class DeviceManager final : public QObject {
    Q_OBJECT

  public:
    /// An error with a text that is shown to the user verbatim.
    class DeviceError : public std::runtime_error {
      public:
        static DeviceError noAudioUnit(std::string_view what);
        static DeviceError setPropertyFailed(std::string_view what, Status status);
        static DeviceError deviceNotFound();

      private:
        using std::runtime_error::runtime_error;
    };

    /// Lists the devices at once. Both must outlive the manager.
    DeviceManager(AudioHardware &hardware, Clock &clock);
    ~DeviceManager() override;

    /// Devices with at least one output channel, in the platform's order.
    [[nodiscard]] const std::vector<AudioDevice> &outputDevices() const { return outputDevices_; }

    /// Lists the output devices again; first tries to restore a lost connection to the hardware.
    void refresh();
    /// Refreshes only if the devices or the default output have changed, or the connection is lost.
    void refreshIfChanged();

    /// True if the hardware answered its last query.
    [[nodiscard]] bool isHardwareThere() const { return census_.has_value(); }

    [[nodiscard]] std::vector<AudioDevice> allDevices() const;

    /// The system's default output if listed, otherwise the first listed device.
    [[nodiscard]] std::optional<AudioDevice> defaultOutput() const;

    /// The listed device with this uid.
    [[nodiscard]] std::optional<AudioDevice> outputDevice(std::string_view uid) const;

    [[nodiscard]] std::optional<std::string> currentDefaultOutputUID() const;

    /// Binds `output` to the device by its uid, because a reconnected device has a new id. Throws
    /// DeviceError; a null `output` is a missing audio unit.
    void setEngineOutput(HardwareOutput *output, const AudioDevice &device) const;

    /// From now on refreshes the list and calls `onHardwareChange` after a change of the device
    /// list or the default output, and `onHardwareLost` after a lost connection. Logs and skips
    /// properties that cannot be observed. A second call does nothing.
    void startObservingHardware();
    /// Neither callback is called after this, not even for pending changes.
    void stopObservingHardware();
    [[nodiscard]] bool isObservingHardware() const { return observation_ != nullptr; }

    std::function<void()> onHardwareChange;
    std::function<void(Status)> onHardwareLost;

  Q_SIGNALS:
    /// The list or its default has changed, or the hardware was lost or found.
    void outputDevicesChanged();

  private:
    class Observation;

    [[nodiscard]] int channelCount(AudioObjectID id, Scope scope) const;
    [[nodiscard]] AudioDevice describe(AudioObjectID id) const;

    /// Facts about the devices, compared to detect a change.
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
    [[nodiscard]] std::optional<Census> takeCensus() const; ///< none if the hardware fails

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
