#pragma once

#include "platform/hardware/AudioHardware.h"
#include "platform/hardware/simulated/DeviceCycles.h"
#include "platform/hardware/simulated/OperationLog.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

class SimulatedOutput;

/// A scripted device of a simulated machine.
struct SimulatedDevice {
    std::string uid{};
    std::optional<std::string> name{}; ///< empty: it cannot be read
    std::optional<std::string> manufacturer{};
    std::vector<std::uint32_t> inputChannels{}; ///< per buffer
    std::vector<std::uint32_t> outputChannels{2};
    double sampleRate = 48000.0;                 ///< Hz
    std::vector<std::uint32_t> blockFrames{512}; ///< of its cycles, used in turn
    OutputIdentity identity{};                   ///< except the node, which is the uid
};

/// A machine with sound hardware in memory: scripted devices that come, go and change, applications
/// that play on them, calls that fail on demand, and a recording of the output. A muting tap mutes
/// only while it is read, as on a real machine.
///
/// Every device has its own clock. Each cycle captures before it plays. All calls [main]; `Pace`
/// decides on which thread clients are called.
class SimulatedHardware final : public AudioHardware {
  public:
    using Pace = simulated::Pace;
    using Operation = simulated::Operation;

    /// The clock must outlive the hardware, and the hardware every object made from it.
    explicit SimulatedHardware(Clock &clock, Pace pace = Pace::clock);
    ~SimulatedHardware() override;

    // Script: devices. The first one added is the default until another is chosen.
    AudioObjectID addDevice(SimulatedDevice device);
    /// Removes a device. The default moves to the first one left, unless `setDefaultLagging`.
    void removeDevice(const std::string &uid);
    /// While lagging, the default names a removed device until `setDefaultOutput`: on a desktop the
    /// session manager moves it milliseconds later.
    void setDefaultLagging(bool lagging) { isDefaultLagging_ = lagging; }
    /// Gives the ids of removed devices to new ones, as a sound server does.
    void setReusingIDs(bool reusing) { isReusingIDs_ = reusing; }
    void setDefaultOutput(const std::string &uid);
    /// Changes a device's identity, as if headphones were plugged into the same card.
    void setIdentity(const std::string &uid, OutputIdentity identity);
    void setSampleRate(const std::string &uid, double sampleRate);
    void setBlockFrames(const std::string &uid, std::vector<std::uint32_t> blockFrames);
    /// Sets the rate in Hz that taps report instead of their cycles' rate; 0 makes the format
    /// invalid.
    void setDeclaredTapRate(double sampleRate) { declaredTapRate_ = sampleRate; }

    // Script: applications.
    /// Starts an application that plays on a device, or on the default output as it changes.
    AudioObjectID play(simulated::Sound sound, std::string deviceUID = {});
    void stopPlaying(AudioObjectID application);

    /// While suspended no application plays: devices have no cycles, and outputs are paused.
    void setSuspended(bool suspended);

    /// Sets the streams that `playbackStreams` lists, regardless of the applications.
    void setPlaybackStreams(std::vector<PlaybackStream> streams);

    // Script: failures.
    /// Puts the machine to sleep or wakes it: asleep, no device has cycles, while the clock runs.
    void setAsleep(bool asleep);
    /// Ends the sound server: every object is gone, every call fails with `status`.
    void loseConnection(Status status);
    /// Restarts the sound server with the same devices, for a `reconnect`.
    void restoreConnection() { isReachable_ = true; }
    [[nodiscard]] simulated::OperationLog &operations() { return operations_; }

    // Results.
    [[nodiscard]] const ProgramRules &programRules() const { return programRules_; }
    /// The watch must outlive the hardware.
    void watchCallbacks(simulated::CallbackWatch &watch);
    [[nodiscard]] simulated::Recording takeRecording(const std::string &uid);
    [[nodiscard]] std::vector<TapDescription> taps() const;
    [[nodiscard]] std::vector<AggregateDescription> aggregates() const;
    [[nodiscard]] bool isCapturing() const; ///< an IO procedure is started
    [[nodiscard]] bool isPlaying() const;   ///< an output is started
    [[nodiscard]] bool isListenedTo() const;

    // AudioHardware
    Status reconnect() override;
    Status processObject(std::int32_t pid, AudioObjectID &process) override;
    Status defaultOutputDevice(AudioObjectID &device) override;
    Status deviceList(std::vector<AudioObjectID> &devices) override;
    std::uint64_t deviceSerial(AudioObjectID device) override;
    std::optional<std::string> deviceUID(AudioObjectID device) override;
    std::optional<std::string> deviceName(AudioObjectID device) override;
    std::optional<std::string> deviceManufacturer(AudioObjectID device) override;
    OutputIdentity outputIdentity(AudioObjectID device) override;
    Status streamChannelCounts(AudioObjectID device, Scope scope,
                               std::vector<std::uint32_t> &channelsPerBuffer) override;
    Status addListener(HardwareProperty property, HardwareListener &listener) override;
    Status removeListener(HardwareProperty property, HardwareListener &listener) override;
    Status createProcessTap(const TapDescription &description, AudioObjectID &tap) override;
    Status destroyProcessTap(AudioObjectID tap) override;
    Status tapFormat(AudioObjectID tap, StreamFormat &format) override;
    Status createAggregateDevice(const AggregateDescription &description,
                                 AudioObjectID &device) override;
    Status destroyAggregateDevice(AudioObjectID device) override;
    Status nominalSampleRate(AudioObjectID device, double &rate) override;
    Status createIOProc(AudioObjectID device, IOClient &client, IOProcID &proc) override;
    Status destroyIOProc(AudioObjectID device, IOProcID proc) override;
    Status startDevice(AudioObjectID device, IOProcID proc) override;
    Status stopDevice(AudioObjectID device, IOProcID proc) override;
    void setProgramRules(const ProgramRules &rules) override { programRules_ = rules; }
    std::vector<PlaybackStream> playbackStreams() override { return playbackStreams_; }
    std::unique_ptr<HardwareOutput> makeOutput() override;

  private:
    friend class SimulatedOutput;

    struct Device {
        Device(SimulatedDevice description, Clock &clock, Pace pace)
            : script(std::move(description)), cycles(clock, pace) {}
        SimulatedDevice script;
        std::uint64_t serial = 0;
        simulated::DeviceCycles cycles;
    };
    struct IOProc {
        AudioObjectID device = 0;
        IOClient *client = nullptr;
        bool isRunning = false;
    };
    struct Application {
        std::shared_ptr<simulated::Playing> playing;
        std::string deviceUID; ///< empty: the default output
    };
    /// A started output.
    struct Output {
        AudioObjectID device = 0; ///< 0 once the device is gone
        RenderClient *client = nullptr;
    };

    /// Stops all cycles, runs `change`, plans every device again and continues.
    void rearrange(const std::function<void()> &change);
    /// Runs all devices in step until `condition` holds or `seconds` of their time have passed.
    /// With `Pace::clock` the program's time is frozen meanwhile.
    void playOn(const std::function<bool()> &condition, double seconds);
    [[nodiscard]] simulated::CyclePlan planFor(AudioObjectID id, const Device &device) const;
    /// True if a started IO procedure delivers the sound of the tap with this uuid.
    [[nodiscard]] bool isRead(const std::string &tapUUID) const;
    [[nodiscard]] bool isMuted(AudioObjectID application) const;

    [[nodiscard]] simulated::OperationLog::Verdict note(Operation operation);
    void notify(HardwareProperty property);
    [[nodiscard]] Device *find(AudioObjectID id) const;
    [[nodiscard]] Device &deviceNamed(const std::string &uid) const; ///< for scripts: must exist
    [[nodiscard]] AudioObjectID idOf(const std::string &uid) const;
    /// The device that clocks `device`: itself, or an aggregate's main device.
    [[nodiscard]] Device *clockOf(AudioObjectID device) const;
    [[nodiscard]] AudioObjectID defaultOutput() const;
    AudioObjectID newID() { return ++lastID_; }

    Clock &clock_;
    const Pace pace_;
    simulated::OperationLog operations_;
    AudioObjectID lastID_ = 0;
    Status connection_ = statusOK;
    bool isReachable_ = true;
    bool isSuspended_ = false;
    bool isAsleep_ = false;
    bool isDefaultLagging_ = false;
    bool isReusingIDs_ = false;
    std::vector<AudioObjectID> freeIDs_; ///< of removed devices
    std::uint64_t lastSerial_ = 0;
    std::optional<double> declaredTapRate_;
    ProgramRules programRules_;
    std::vector<PlaybackStream> playbackStreams_;
    std::string defaultUID_;
    AudioObjectID ownProcess_ = 0;
    simulated::CallbackWatch *watch_ = nullptr;

    std::map<AudioObjectID, std::unique_ptr<Device>> devices_; // in order of arrival
    std::map<AudioObjectID, Application> applications_;
    std::map<AudioObjectID, TapDescription> taps_;
    std::map<AudioObjectID, AggregateDescription> aggregates_;
    std::map<IOProcID, IOProc> procs_;
    std::map<SimulatedOutput *, Output> outputs_;
    std::vector<std::pair<HardwareProperty, HardwareListener *>> listeners_;
};

} // namespace quorbel
