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

/// A device of a simulated machine, as its script describes it.
struct SimulatedDevice {
    std::string uid{};
    std::optional<std::string> name{}; ///< nothing: it cannot be read
    std::optional<std::string> manufacturer{};
    std::vector<std::uint32_t> inputChannels{}; ///< per buffer
    std::vector<std::uint32_t> outputChannels{2};
    double sampleRate = 48000.0;                 ///< Hz
    std::vector<std::uint32_t> blockFrames{512}; ///< of its cycles, taken in turn
    OutputIdentity identity{};                   ///< but for the node, which is the uid
};

/// A machine with sound hardware that exists only here: devices that come, go and change as the
/// script says, applications that play into them, calls that fail on demand, and a recording of all
/// that is heard. A tap that mutes does so only while it is read, as on a real machine.
///
/// Every device is a clock of its own. Where one device both feeds the capture and plays, each of
/// its cycles captures first and plays then. All calls [main]; clients are called as `Pace` says.
class SimulatedHardware final : public AudioHardware {
  public:
    using Pace = simulated::Pace;
    using Operation = simulated::Operation;

    /// The clock must outlive the hardware, the hardware everything made of it.
    explicit SimulatedHardware(Clock &clock, Pace pace = Pace::clock);
    ~SimulatedHardware() override;

    // The script: devices. The first one added is the default until another is chosen.
    AudioObjectID addDevice(SimulatedDevice device);
    /// The default moves to the first device that is left, unless `setDefaultLagging`.
    void removeDevice(const std::string &uid);
    /// While lagging, the default keeps naming a device that was removed until
    /// `setDefaultOutput`: on a desktop the session manager moves it some milliseconds later.
    void setDefaultLagging(bool lagging) { isDefaultLagging_ = lagging; }
    /// New devices take the ids of removed ones, as a sound server gives them out.
    void setReusingIDs(bool reusing) { isReusingIDs_ = reusing; }
    void setDefaultOutput(const std::string &uid);
    /// The headphones are plugged into the same card, for example.
    void setIdentity(const std::string &uid, OutputIdentity identity);
    void setSampleRate(const std::string &uid, double sampleRate);
    void setBlockFrames(const std::string &uid, std::vector<std::uint32_t> blockFrames);
    /// What taps claim as their rate, whatever their cycles then have; 0 is an invalid format.
    /// Without this they tell the truth.
    void setDeclaredTapRate(double sampleRate) { declaredTapRate_ = sampleRate; }

    // The script: applications.
    /// Starts an application that plays on a device, or on the default output wherever that is.
    AudioObjectID play(simulated::Sound sound, std::string deviceUID = {});
    void stopPlaying(AudioObjectID application);

    /// While suspended, no application plays: devices have no cycles, and outputs are told so.
    void setSuspended(bool suspended);

    // The script: trouble.
    /// The machine sleeps and wakes: no device has cycles, while the clock goes on.
    void setAsleep(bool asleep);
    /// The sound server dies: every object is gone, every call fails with `status`.
    void loseConnection(Status status);
    /// It is there again, with the same devices, for whoever connects anew.
    void restoreConnection() { isReachable_ = true; }
    [[nodiscard]] simulated::OperationLog &operations() { return operations_; }

    // What came of it.
    /// The watch must outlive the hardware.
    void watchCallbacks(simulated::CallbackWatch &watch);
    [[nodiscard]] simulated::Recording takeRecording(const std::string &uid);
    [[nodiscard]] std::vector<TapDescription> taps() const;
    [[nodiscard]] std::vector<AggregateDescription> aggregates() const;
    [[nodiscard]] bool isCapturing() const; ///< some IO procedure is started
    [[nodiscard]] bool isPlaying() const;   ///< some output is started
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
    /// An output that has been started.
    struct Output {
        AudioObjectID device = 0; ///< 0 once it is gone
        RenderClient *client = nullptr;
    };

    /// Stops every cycle, lets `change` change the machine, plans every device anew and goes on.
    void rearrange(const std::function<void()> &change);
    /// The devices play on, all in step, until `condition` holds or `seconds` have passed for them;
    /// on the clock the program's own time stands still meanwhile.
    void playOn(const std::function<bool()> &condition, double seconds);
    [[nodiscard]] simulated::CyclePlan planFor(AudioObjectID id, const Device &device) const;
    /// Some started IO procedure delivers what the tap with this uuid hears.
    [[nodiscard]] bool isRead(const std::string &tapUUID) const;
    [[nodiscard]] bool isMuted(AudioObjectID application) const;

    [[nodiscard]] simulated::OperationLog::Verdict note(Operation operation);
    void notify(HardwareProperty property, const std::function<void(HardwareListener &)> &tell);
    [[nodiscard]] Device *find(AudioObjectID id) const;
    [[nodiscard]] Device &deviceNamed(const std::string &uid) const; ///< of a script: must exist
    [[nodiscard]] AudioObjectID idOf(const std::string &uid) const;
    /// The device whose clock `device` runs on: itself, or an aggregate's main device.
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
