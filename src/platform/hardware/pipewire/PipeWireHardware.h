#pragma once

#include "platform/hardware/AudioHardware.h"
#include "platform/hardware/pipewire/DuplexStreams.h"
#include "platform/hardware/pipewire/ObjectRegistry.h"
#include "platform/hardware/pipewire/RouteJournal.h"
#include "platform/hardware/pipewire/ServerConnection.h"
#include "platform/hardware/routing/OwnPair.h"
#include "platform/hardware/routing/PairSupervisor.h"
#include "platform/hardware/routing/StreamRouter.h"

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace quorbel {

/// Deadline of the server's answers in seconds; a server that answers does so within milliseconds.
inline constexpr double answerSeconds = 2.0;

/// The hardware layer on a PipeWire server. A process tap is an input stream plus the router that
/// sends the applications' streams to it. The capture device is unknown to the server: tap and
/// output run in one group of the graph, at the output device's clock.
///
/// Routes applications to the tap once the IO procedure runs and the output is linked to its
/// device: an earlier routing would silence them. Replaces both streams, with the same clients, if
/// one is removed or cannot be repaired. Reports the hardware as lost if that fails too, although
/// the server runs.
class PipeWireHardware final : public AudioHardware, private ServerObserver {
  public:
    /// Connects to the user's server; null and a negative errno without one.
    static std::unique_ptr<PipeWireHardware> connect(Status &status);
    ~PipeWireHardware() override;

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

    /// Always false: the capture does not depend on the default output, and the pair of streams is
    /// watched here.
    bool isCaptureOutdated(bool /*isAnotherDefaultOutput*/) override { return false; }
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

    void setProgramRules(const ProgramRules &rules) override;
    std::vector<PlaybackStream> playbackStreams() override;

    std::unique_ptr<HardwareOutput> makeOutput() override;

  private:
    class Output;

    PipeWireHardware() = default;
    Status open(double seconds);
    Status settle(double seconds);
    void close();
    [[nodiscard]] double graphRate() const;
    [[nodiscard]] const NodeRecord *defaultSink() const;
    void stopRouting();

    // Supervision of the two streams (PairWatch.cpp). [control], or under the loop's lock
    void lookAround();
    void armTimer();
    void seePair();
    [[nodiscard]] OwnPair ownPair() const;
    [[nodiscard]] const NodeRecord *ownNode(const ServerStream &stream) const;
    void beginRouting();
    [[nodiscard]] RoutingEnds routingEnds() const;
    void confirmReleases();
    void rebuildPair();
    void outputStopped();
    void dropOutputLinks();
    void linkOutput(const OutStream &stream, AudioObjectID device);

    void nodeChanged(const NodeRecord &node) override;
    void nodeRemoved(const NodeRecord &node) override;
    void clientChanged(std::uint32_t clientID) override;
    void portAdded(const PortRecord &port) override;
    void portRemoved(const PortRecord &port) override;
    void linkAdded(const LinkRecord &link) override;
    void linkRemoved(const LinkRecord &link) override;
    void metadataChanged(std::uint32_t subject, std::string_view key,
                         const std::optional<MetadataValue> &value) override;
    void metadataRead() override;
    void metadataArrived() override;
    void metadataGone() override;
    void deviceChanged(std::uint32_t deviceID) override;
    void devicePortsChanged(const PortRecord &port);
    /// Schedules a look at the pair outside of the server's callback.
    void lookSoon();
    void pairMayHaveChanged();
    void tell(HardwareProperty property, Status status = statusOK);

    std::unique_ptr<ServerConnection> connection_;
    std::unique_ptr<ObjectRegistry> registry_; // loop's lock, like all members before the listeners
    std::shared_ptr<RouteJournal> journal_;    ///< shared with round trips under way
    ProgramRules programRules_;
    std::unique_ptr<StreamRouter> router_;
    DuplexPair pair_;
    std::unique_ptr<TapStream> tap_;
    AudioObjectID tapHandle_ = 0; ///< id of the first node; a rebuilt tap has another one
    PairSupervisor supervisor_;
    // Computing the pair's state searches all ports and links, so it is cached until a node, port
    // or link changes; metadata changes far more often.
    bool isPairSeen_ = false;
    PairFacts facts_;
    RoutingEnds seenEnds_;
    RoutingEnds ends_;          ///< current arguments of the router
    bool mustBeDevice_ = false; ///< the tap must count as a device to keep its channels
    std::uint64_t awaitedReleases_ = 0;
    std::vector<OwnLink> outputLinks_; ///< made because the session manager made none
    bool isRestored_ = true;           ///< the server has confirmed that the streams are restored
    spa_source *lookEvent_ = nullptr;
    spa_source *timer_ = nullptr;
    double nextBeat_ = 0.0;
    bool wasResting_ = false; ///< as last reported to the watchdog
    AudioObjectID captureDevice_ = 0;
    IOClient *ioClient_ = nullptr;
    bool isIORunning_ = false;
    Output *output_ = nullptr; ///< the running one
    double outputStoppedAt_ = 0.0;
    std::map<AudioObjectID, OutputIdentity> knownDevices_; ///< as reported to the listeners
    bool isSettled_ = false; ///< the server has reported its objects [main]

    std::mutex listenersMutex_;
    std::vector<std::pair<HardwareProperty, HardwareListener *>> listeners_;
};

} // namespace quorbel
