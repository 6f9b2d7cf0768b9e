#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/OutputIdentity.h"
#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// Names an object of the hardware layer (a process, a device, a tap); 0 names none.
using AudioObjectID = std::uint32_t;

/// Names an IO procedure registered on a device; 0 names none.
using IOProcID = std::uint64_t;

/// What a process tap is asked to be.
struct TapDescription {
    enum class MuteBehavior : std::int32_t {
        unmuted = 0,
        muted = 1,
        mutedWhenTapped = 2, ///< the unprocessed sound is silent only while the tap is being read
    };

    std::vector<AudioObjectID> excludedProcesses; ///< a stereo tap of everything but these
    std::string name;
    std::string uuid;
    MuteBehavior muteBehavior = MuteBehavior::unmuted;
    bool isPrivate = false;
};

/// A device made of another one and a tap: the tap's sound delivered at that device's clock.
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

/// One cycle of captured sound. Valid only inside the call.
struct IOCycle {
    StreamFormat format; ///< of this cycle; its rate may change while the device runs
    AudioBufferList input;
    std::uint32_t frames = 0;
    /// When the cycle began: seconds on a clock that goes on while the machine sleeps.
    double hostSeconds = 0.0;
    /// False if the playback side will not run in this cycle: the block must not be kept, or the
    /// delay would grow by its length; it counts as lost.
    bool willPlay = true;
    /// True if capture and playback share their cycles and everything handed over in earlier ones
    /// has been played: what the client still holds is stale and would delay the sound for good.
    bool isAllPlayed = false;
};

/// Called by the hardware for an IO procedure.
class IOClient {
  public:
    virtual ~IOClient() = default;

    /// The format of the cycles that follow. Called before the first cycle and again before the
    /// first one in another format, never at the same time as `ioCycle`. May allocate. [control]
    virtual void ioFormatChanged(const StreamFormat &format) = 0;

    /// One block, on the real-time thread. [capture]
    virtual void ioCycle(const IOCycle &cycle) noexcept = 0;
};

/// Called by the hardware for an output.
class RenderClient {
  public:
    virtual ~RenderClient() = default;

    /// As `IOClient::ioFormatChanged`, for the blocks that will be asked for. [control]
    virtual void renderFormatChanged(const StreamFormat &format) = 0;

    /// No more cycles until further notice: nobody plays. What the client still holds of the sound
    /// must not be heard when they go on. Never at the same time as `renderCycle`. [control]
    virtual void renderPaused() {}

    /// Cycles come from now on. After a start they do not before this was called. [control]
    virtual void renderResumed() {}

    /// Fills `frames` frames (1 or more) of every buffer of `output`. [render]
    virtual void renderCycle(const AudioBufferList &output, std::uint32_t frames) noexcept = 0;
};

/// The playback side: one stream to one device. Made by `AudioHardware::makeOutput`; destroying it
/// stops it. All calls [main].
class HardwareOutput {
  public:
    virtual ~HardwareOutput() = default;

    /// Binds the output to a device, for the next start.
    virtual Status setDevice(AudioObjectID device) = 0;

    /// The bound device's native rate and channel count (of which the output carries two); an
    /// invalid format when there is none.
    [[nodiscard]] virtual StreamFormat nativeFormat() const = 0;

    /// Whether what is rendered goes on for a while after the last application has stopped, and the
    /// device is to be kept running until it has died away.
    virtual void setHoldsTail(bool) {}

    /// Whether nothing is to be heard on another device when the bound one goes, until the next
    /// start; otherwise the system may bridge that time.
    virtual void setStaysOnDevice(bool) {}

    /// How much later the rendered sound is than the captured one, in seconds; 0 or more.
    /// Applications are told of it, with the device's own latency. While stopped.
    virtual void setProcessingDelay(double) {}

    /// Starts asking `client` for sound. The client must stay alive until `stop` has returned. On
    /// failure nothing is left running.
    virtual Status start(RenderClient &client) = 0;

    /// Waits while the client is asked for sound: until `condition` holds, which rendering brings
    /// about, or for `seconds` at most. Returns at once if nobody asks.
    virtual void renderUntil(const std::function<bool()> &condition, double seconds) = 0;

    /// When this returns, no call to the client is under way and none will come. Stopping what does
    /// not run does nothing.
    virtual void stop() = 0;
};

/// Of `hardwareLost`: the server is there, but sound cannot pass through our streams.
inline constexpr Status soundCutOffStatus = -5; // EIO

/// Hears of changes. Called on a thread of the hardware's own: do nothing but hand over. [control]
class HardwareListener {
  public:
    virtual ~HardwareListener() = default;
    virtual void deviceListChanged() {} ///< also where the identity of one has changed
    virtual void defaultOutputChanged() {}
    /// The hardware layer as a whole went away (the sound server died); every object in it is gone.
    virtual void hardwareLost(Status) {}
};

enum class HardwareProperty { deviceList, defaultOutput, connection };
enum class Scope { input, output };

/// What the engine and the device manager need of an operating system's audio layer, and nothing
/// more. Calls return a Status and, on success only, set their out parameter. They may wait for the
/// sound server, but never without a deadline. [main]
class AudioHardware {
  public:
    virtual ~AudioHardware() = default;

    /// After `hardwareLost`, once everything is stopped and destroyed: tries to reach the hardware
    /// layer again. On success every object has a new id; listeners and outputs go on, outputs are
    /// bound to nothing. Does nothing where the connection stands. Answers within half a second.
    virtual Status reconnect() = 0;

    // Devices
    virtual Status processObject(std::int32_t pid, AudioObjectID &process) = 0;
    virtual Status defaultOutputDevice(AudioObjectID &device) = 0;
    virtual Status deviceList(std::vector<AudioObjectID> &devices) = 0;
    /// Tells a device from one that had the same id before: a serial is never used again. 0 where
    /// the id names no device.
    [[nodiscard]] virtual std::uint64_t deviceSerial(AudioObjectID device) = 0;
    [[nodiscard]] virtual std::optional<std::string> deviceUID(AudioObjectID device) = 0;
    [[nodiscard]] virtual std::optional<std::string> deviceName(AudioObjectID device) = 0;
    [[nodiscard]] virtual std::optional<std::string> deviceManufacturer(AudioObjectID device) = 0;
    /// Without names where the id names no device.
    [[nodiscard]] virtual OutputIdentity outputIdentity(AudioObjectID device) = 0;
    virtual Status streamChannelCounts(AudioObjectID device, Scope scope,
                                       std::vector<std::uint32_t> &channelsPerBuffer) = 0;

    /// One listener may be installed for several properties; installing the same one twice is an
    /// error of the caller. After `removeListener` has returned, no call is under way and none will
    /// come.
    virtual Status addListener(HardwareProperty property, HardwareListener &listener) = 0;
    virtual Status removeListener(HardwareProperty property, HardwareListener &listener) = 0;

    // Capture
    /// Whether the capture that runs has to be made anew, now that the default output is another
    /// one than it was made around, or the same.
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

    // Playback
    [[nodiscard]] virtual std::unique_ptr<HardwareOutput> makeOutput() = 0;
};

} // namespace quorbel
