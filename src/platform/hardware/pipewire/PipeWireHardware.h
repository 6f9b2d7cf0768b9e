#pragma once

#include "platform/hardware/AudioHardware.h"
#include "platform/hardware/pipewire/DuplexStreams.h"
#include "platform/hardware/pipewire/ObjectRegistry.h"
#include "platform/hardware/pipewire/RouteJournal.h"
#include "platform/hardware/pipewire/ServerConnection.h"
#include "platform/hardware/pipewire/StreamRouter.h"

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace quorbel {

/// How long the server is waited for. It answers within milliseconds or not at all.
inline constexpr double answerSeconds = 2.0;

/// True for what can be played on.
inline bool isOutputDevice(const NodeRecord &node) {
    return node.mediaClass() == "Audio/Sink" || node.mediaClass() == "Audio/Duplex";
}

/// The hardware layer on a PipeWire server. A process tap is an input stream plus the router that
/// sends the applications' streams to it; the capture device around it is no object of its own,
/// because tap and output run in one group of the graph, at the output device's clock.
///
/// Applications are routed to the tap from the moment in which the IO procedure runs and the output
/// is linked to its device, so that nobody is silenced before the processed sound can be heard.
class PipeWireHardware final : public AudioHardware, private RegistryObserver {
  public:
    /// Connects to the user's server; null and a negative errno when there is none.
    static std::unique_ptr<PipeWireHardware> connect(Status &status);
    ~PipeWireHardware() override;

    Status reconnect() override;
    Status processObject(std::int32_t pid, AudioObjectID &process) override;
    Status defaultOutputDevice(AudioObjectID &device) override;
    Status deviceList(std::vector<AudioObjectID> &devices) override;
    std::optional<std::string> deviceUID(AudioObjectID device) override;
    std::optional<std::string> deviceName(AudioObjectID device) override;
    std::optional<std::string> deviceManufacturer(AudioObjectID device) override;
    Status streamChannelCounts(AudioObjectID device, Scope scope,
                               std::vector<std::uint32_t> &channelsPerBuffer) override;
    Status addListener(HardwareProperty property, HardwareListener &listener) override;
    Status removeListener(HardwareProperty property, HardwareListener &listener) override;

    /// The default output is nothing to the capture. But a new session manager does not link
    /// streams to a tap that was there before it was ready, and until it is, its defaults come and
    /// go.
    bool isCaptureOutdated(bool isAnotherDefaultOutput) override;
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
    class Output;

    PipeWireHardware() = default;
    Status open(double seconds);
    Status settle(double seconds);
    void close();
    [[nodiscard]] double graphRate() const;
    [[nodiscard]] const NodeRecord *defaultSink() const;
    void routeIfReady();
    void stopRouting();
    void restoreLeftovers();

    void nodeChanged(const NodeRecord &node) override;
    void nodeRemoved(const NodeRecord &node) override;
    void metadataChanged(std::uint32_t subject, std::string_view key,
                         const std::optional<MetadataValue> &value) override;
    void metadataArrived() override;
    void tell(HardwareProperty property, Status status = statusOK);

    std::unique_ptr<ServerConnection> connection_;
    std::unique_ptr<ObjectRegistry> registry_; // loop's lock, as everything down to the listeners
    std::unique_ptr<RouteJournal> journal_;
    std::unique_ptr<StreamRouter> router_;
    DuplexPair pair_;
    std::unique_ptr<TapStream> tap_;
    double managerArrival_ = -1e9; ///< monotonic seconds; long ago if it was there before us
    AudioObjectID captureDevice_ = 0;
    IOClient *ioClient_ = nullptr;
    bool isIORunning_ = false;
    AudioObjectID outputDevice_ = 0; ///< of the running output; 0 while none runs
    std::vector<AudioObjectID> knownDevices_;
    bool isSettled_ = false; ///< the server has told what it holds [main]

    std::mutex listenersMutex_;
    std::vector<std::pair<HardwareProperty, HardwareListener *>> listeners_;
};

} // namespace quorbel
