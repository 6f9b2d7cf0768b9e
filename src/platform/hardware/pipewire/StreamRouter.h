#pragma once

#include "platform/hardware/pipewire/ObjectRegistry.h"
#include "platform/hardware/pipewire/RouteJournal.h"
#include "platform/hardware/pipewire/RoutedStream.h"

#include <cstdint>
#include <map>

namespace quorbel {

/// True for a stream that may be sent to the tap: an application's playback that lets the session
/// manager decide where it goes.
bool isRoutable(const NodeRecord &node);

/// Sends every application's playback stream to the tap while it is on, present ones and new ones,
/// and puts each back afterwards. A stream that the user moves elsewhere meanwhile is left to the
/// user.
///
/// Everything here needs the loop's lock; callbacks come on the loop's thread.
class StreamRouter final : public RegistryObserver {
  public:
    StreamRouter(ServerConnection &connection, ObjectRegistry &registry, RouteJournal &journal);
    ~StreamRouter() override;

    /// Starts routing to the tap. `outputDeviceID` is the node that the processed sound plays on.
    void begin(std::uint32_t tapID, std::uint32_t outputDeviceID);
    [[nodiscard]] bool isOn() const { return tapID_ != 0; }
    void setOutputDevice(std::uint32_t outputDeviceID) { outputDeviceID_ = outputDeviceID; }
    /// Puts every stream back. The session manager moves the links a moment later.
    void end();
    /// True while a stream of an application is still linked to `tapID`.
    [[nodiscard]] bool isAnyLinkedTo(std::uint32_t tapID) const;

    void nodeChanged(const NodeRecord &node) override;
    void nodeRemoved(const NodeRecord &node) override;
    void portAdded(const PortRecord &port) override;
    void linkAdded(const LinkRecord &link) override;
    void metadataChanged(std::uint32_t subject, std::string_view key,
                         const std::optional<MetadataValue> &value) override;
    void metadataArrived() override;
    void metadataGone() override;

  private:
    enum class Phase {
        routing,  ///< sent to the tap, not linked to it yet
        captured, ///< linked to the tap
        waiting,  ///< put back until the PulseAudio server has answered its client
        released, ///< moved elsewhere by the user
        refused,  ///< would not follow; put back for good
    };
    struct Stream {
        RoutedStream route;
        Phase phase = Phase::routing;
        double linkDeadline = 0.0; ///< counted once it has a port; 0 before
        Proxy<pw_proxy> handshake;
        double handshakeDeadline = 0.0;
    };

    void routeAll();
    void consider(const NodeRecord &node);
    void route(const NodeRecord &node);
    void putBack(Stream &stream, Phase phase);
    void startHandshake(Stream &stream, const NodeRecord &node);
    void portsArrived(Stream &stream, const NodeRecord &node);
    [[nodiscard]] bool isVirtualSinkOutput(const NodeRecord &node) const;
    [[nodiscard]] bool hasLeftTap(std::uint32_t streamID) const;
    void checkDeadlines();
    void armTimer();

    ServerConnection &connection_;
    ObjectRegistry &registry_;
    RouteJournal &journal_;
    spa_source *timer_ = nullptr;
    bool timerArmed_ = false;
    std::uint32_t tapID_ = 0;
    std::uint64_t tapSerial_ = 0;
    std::uint32_t outputDeviceID_ = 0;
    std::map<std::uint32_t, Stream> streams_; ///< by stream id
};

} // namespace quorbel
