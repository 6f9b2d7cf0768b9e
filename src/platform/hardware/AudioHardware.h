#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/OutputIdentity.h"
#include "platform/core/Programs.h"
#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// Id of an object of the hardware layer (a process, a device, a tap); 0 is none.
using AudioObjectID = std::uint32_t;

/// Id of an IO procedure registered on a device; 0 is none.
using IOProcID = std::uint64_t;

/// Properties of a process tap.
struct TapDescription {
    enum class MuteBehavior : std::int32_t {
        unmuted = 0,
        muted = 1,
        mutedWhenTapped = 2, ///< the unprocessed sound is muted only while the tap is read
    };

    std::vector<AudioObjectID> excludedProcesses; ///< all others are captured, in stereo
    std::string name;
    std::string uuid;
    MuteBehavior muteBehavior = MuteBehavior::unmuted;
    bool isPrivate = false;
};

/// A device that combines a tap and a main device: delivers the tap's sound at that one's clock.
struct AggregateDescription {
    struct Tap {
        std::string uuid;
        bool driftCompensation = false;
    };

    std::string name;
    std::string uid;
    std::string mainDeviceUID; ///< the clock
    bool isPrivate = false;
    bool isStacked = false;
    bool tapAutoStart = false;
    std::vector<std::string> subdeviceUIDs;
    std::vector<Tap> taps;
};

/// One cycle of captured sound. Valid only during the call.
struct IOCycle {
    StreamFormat format; ///< of this cycle; its rate may change while the device runs
    AudioBufferList input;
    std::uint32_t frames = 0;
    /// Cycles of the device since the last one that were not handed over: the machine was too slow.
    std::uint32_t missedCycles = 0;
    /// Start time of the cycle in seconds, on a clock that includes the machine's sleep.
    double hostSeconds = 0.0;
    /// False if the playback side will not run in this cycle. The block must then be counted as
    /// lost: keeping it would add its length to the latency.
    bool willPlay = true;
    /// True if capture and playback share their cycles and all earlier blocks have been played.
    /// Frames that the client still holds are then stale and would increase the latency for good.
    bool isAllPlayed = false;
};

/// Called by the hardware for an IO procedure.
class IOClient {
  public:
    virtual ~IOClient() = default;

    /// Receives the format of the following cycles, before the first one and before each change.
    /// Never concurrent with `ioCycle`. May allocate. [control]
    virtual void ioFormatChanged(const StreamFormat &format) = 0;

    /// Receives one block, on the real-time thread. [capture]
    virtual void ioCycle(const IOCycle &cycle) noexcept = 0;
};

/// Called by the hardware for an output.
class RenderClient {
  public:
    virtual ~RenderClient() = default;

    /// As `IOClient::ioFormatChanged`, for the requested blocks. [control]
    virtual void renderFormatChanged(const StreamFormat &format) = 0;

    /// Announces that no cycles come until `renderResumed`: no application plays. The client drops
    /// the sound that it holds. Never concurrent with `renderCycle`. [control]
    virtual void renderPaused() {}

    /// Announces cycles. After a start, no cycle comes before this call. [control]
    virtual void renderResumed() {}

    /// Fills `frames` frames (1 or more) of every buffer of `output`. [render]
    virtual void renderCycle(const AudioBufferList &output, std::uint32_t frames) noexcept = 0;
};

/// The playback side: one stream to one device. Made by `AudioHardware::makeOutput`; the destructor
/// stops it. All calls [main].
class HardwareOutput {
  public:
    virtual ~HardwareOutput() = default;

    /// Binds the output to a device for the next start.
    virtual Status setDevice(AudioObjectID device) = 0;

    /// Native rate and channel count of the bound device (the output carries two of them); invalid
    /// without a device.
    [[nodiscard]] virtual StreamFormat nativeFormat() const = 0;

    /// If true, keeps the device running after the last application has stopped, until the rendered
    /// tail has decayed.
    virtual void setHoldsTail(bool) {}

    /// If true, plays nothing on another device after the bound one has gone, until the next start.
    /// If false, the system may play on another device meanwhile.
    virtual void setStaysOnDevice(bool) {}

    /// Sets the latency from captured to rendered sound, in seconds, 0 or more. It is reported to
    /// applications together with the device's latency. While stopped.
    virtual void setProcessingDelay(double) {}

    /// Starts requesting sound from `client`, which must live until `stop` has returned. After a
    /// failure nothing runs.
    virtual Status start(RenderClient &client) = 0;

    /// Waits until rendering makes `condition` true, `seconds` at most. Returns as soon as no
    /// cycles come.
    virtual void renderUntil(const std::function<bool()> &condition, double seconds) = 0;

    /// Stops. When this returns, no call to the client is under way and none will come. Does
    /// nothing if stopped.
    virtual void stop() = 0;
};

/// Status of `hardwareLost`: the server runs, but sound cannot pass through our streams.
inline constexpr Status soundCutOffStatus = -5; // EIO

enum class HardwareProperty { deviceList, defaultOutput, connection, playbackStreams };

/// Receives changes on the hardware's own thread; must only hand them over. [control]
class HardwareListener {
  public:
    virtual ~HardwareListener() = default;
    virtual void deviceListChanged() {} ///< also if the identity of a device has changed
    virtual void defaultOutputChanged() {}
    /// Reports the loss of the hardware layer with all its objects (the sound server died).
    virtual void hardwareLost(Status) {}
    /// Reports a possible change of a playback stream or its treatment. May come often.
    virtual void playbackStreamsChanged() {}

    /// Calls the function for this property; `status` is for `hardwareLost`.
    void propertyChanged(HardwareProperty property, Status status) {
        switch (property) {
        case HardwareProperty::deviceList:
            return deviceListChanged();
        case HardwareProperty::defaultOutput:
            return defaultOutputChanged();
        case HardwareProperty::connection:
            return hardwareLost(status);
        case HardwareProperty::playbackStreams:
            return playbackStreamsChanged();
        }
    }
};

enum class Scope { input, output };

/// The operations of an operating system's audio layer that the engine and the device manager need.
/// Calls return a Status and set their out parameter on success only. They may wait for the sound
/// server, always with a deadline. [main]
class AudioHardware {
  public:
    virtual ~AudioHardware() = default;

    /// Tries to reach the hardware layer again after `hardwareLost`, once everything is stopped and
    /// destroyed. On success every object has a new id; listeners and outputs stay valid, and
    /// outputs are unbound. Does nothing while connected. Answers within half a second.
    virtual Status reconnect() = 0;

    // Devices
    virtual Status processObject(std::int32_t pid, AudioObjectID &process) = 0;
    virtual Status defaultOutputDevice(AudioObjectID &device) = 0;
    virtual Status deviceList(std::vector<AudioObjectID> &devices) = 0;
    /// Serial of the device, never reused, unlike ids; 0 if the id names no device.
    [[nodiscard]] virtual std::uint64_t deviceSerial(AudioObjectID device) = 0;
    [[nodiscard]] virtual std::optional<std::string> deviceUID(AudioObjectID device) = 0;
    [[nodiscard]] virtual std::optional<std::string> deviceName(AudioObjectID device) = 0;
    [[nodiscard]] virtual std::optional<std::string> deviceManufacturer(AudioObjectID device) = 0;
    /// Returns an identity without names if the id names no device.
    [[nodiscard]] virtual OutputIdentity outputIdentity(AudioObjectID device) = 0;
    virtual Status streamChannelCounts(AudioObjectID device, Scope scope,
                                       std::vector<std::uint32_t> &channelsPerBuffer) = 0;

    /// One listener may be installed for several properties, but only once for each. After
    /// `removeListener` has returned, no call is under way and none will come.
    virtual Status addListener(HardwareProperty property, HardwareListener &listener) = 0;
    virtual Status removeListener(HardwareProperty property, HardwareListener &listener) = 0;

    // Capture
    /// Returns true if the running capture must be rebuilt. `isAnotherDefaultOutput`: the default
    /// output has changed since the capture was made.
    [[nodiscard]] virtual bool isCaptureOutdated(bool isAnotherDefaultOutput) {
        return isAnotherDefaultOutput;
    }
    virtual Status createProcessTap(const TapDescription &description, AudioObjectID &tap) = 0;
    virtual Status destroyProcessTap(AudioObjectID tap) = 0;
    virtual Status tapFormat(AudioObjectID tap, StreamFormat &format) = 0;
    virtual Status createAggregateDevice(const AggregateDescription &description,
                                         AudioObjectID &device) = 0;
    virtual Status destroyAggregateDevice(AudioObjectID device) = 0;
    virtual Status nominalSampleRate(AudioObjectID device, double &rate) = 0;

    /// Registers `client`, which must stay alive until `destroyIOProc` has returned.
    virtual Status createIOProc(AudioObjectID device, IOClient &client, IOProcID &proc) = 0;
    virtual Status destroyIOProc(AudioObjectID device, IOProcID proc) = 0;
    virtual Status startDevice(AudioObjectID device, IOProcID proc) = 0;
    /// When this returns, no call to the client is under way and none will come.
    virtual Status stopDevice(AudioObjectID device, IOProcID proc) = 0;

    // Programs
    /// Sets the programs that present and later process taps capture; reroutes streams at once.
    virtual void setProgramRules(const ProgramRules &rules) = 0;
    /// Returns the programs' current playback streams; none while the connection is lost.
    [[nodiscard]] virtual std::vector<PlaybackStream> playbackStreams() = 0;

    // Playback
    [[nodiscard]] virtual std::unique_ptr<HardwareOutput> makeOutput() = 0;
};

} // namespace quorbel
