#pragma once

#include "platform/hardware/routing/RouteLog.h"
#include "platform/hardware/routing/ServerCommands.h"

#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <vector>

namespace quorbel {

/// The nodes that routing is about.
struct RoutingEnds {
    std::uint32_t tapID = 0;
    std::uint64_t tapSerial = 0;
    std::uint32_t outID = 0;    ///< plays the processed sound
    std::uint32_t deviceID = 0; ///< what it plays on
};

/// Sends every application's playback stream to the tap while it is on, present ones and new ones,
/// and puts each back afterwards.
///
/// Invariants, for every stream it knows while it is on:
/// 1. `routing` and `captured` streams are in the log and have the tap as their target.
/// 2. Every phase but `captured` and `released` has a deadline or ends with an event of the
///    server; a stream that does not reach the tap in time is linked to it by ourselves, and put
///    back if that fails too.
/// 3. A stream that hears the processed sound is never captured.
/// 4. A stream that the user has moved is left to the user.
/// 5. What the session manager remembers of a stream is what the user chose for it.
class StreamRouter final : public ServerObserver {
  public:
    /// Registers with nobody: the owner passes the events on.
    StreamRouter(const ServerObjects &objects, ServerCommands &commands, RouteLog &log);

    /// Starts routing, or goes on with another tap, output or device.
    void begin(const RoutingEnds &ends);
    [[nodiscard]] bool isOn() const { return ends_.tapID != 0; }
    /// Puts every stream back. The session manager moves the links a moment later.
    void end();
    /// Routes everything again as if it had just been seen: somebody else has put the streams back.
    void startOver();

    /// True while a stream of an application is linked to the tap `tapID`.
    [[nodiscard]] bool isAnyLinkedTo(std::uint32_t tapID) const;
    /// The session manager gives the tap the channels that a stream had before, unless the tap
    /// counts as a device. True if a stream that is to be captured, or a device that one may come
    /// from, is not plain stereo.
    [[nodiscard]] bool needsDeviceTap() const;

    /// Does what is due. Call it at `nextDeadline`; earlier or later does no harm.
    void checkDeadlines();
    /// On the clock of the commands; infinity if nothing is due.
    [[nodiscard]] double nextDeadline() const;

    void nodeChanged(const NodeRecord &node) override;
    void nodeRemoved(const NodeRecord &node) override;
    void portAdded(const PortRecord &port) override;
    void linkAdded(const LinkRecord &link) override;
    void linkRemoved(const LinkRecord &link) override;
    void metadataChanged(std::uint32_t subject, std::string_view key,
                         const std::optional<MetadataValue> &value) override;
    void metadataArrived() override;
    void metadataGone() override;

  private:
    static constexpr double never = std::numeric_limits<double>::infinity();

    enum class Phase {
        routing,  ///< sent to the tap, not linked to it yet
        captured, ///< linked to the tap
        waiting,  ///< put back until the PulseAudio server has answered its client
        hearing,  ///< hears the processed sound, or is half of a virtual sink: put back
        refused,  ///< did not follow: put back, tried again later
        released, ///< moved elsewhere by the user
    };
    struct Stream {
        RoutedStream route;
        MetadataValue writtenNode; ///< what we last set as "target.node"
        Phase phase = Phase::routing;
        double linkAt = never;   ///< make the missing links ourselves
        double giveUpAt = never; ///< put it back
        double retryAt = never;
        int failures = 0;
        bool wasCaptured = false;
        std::vector<OwnLink> links; ///< to the tap, where the session manager made none
        OwnLink handshake = 0;
        double handshakeEnd = never;
    };
    using Streams = std::map<std::uint32_t, Stream>;

    [[nodiscard]] static bool isHeld(const Stream &stream) {
        return stream.phase == Phase::routing || stream.phase == Phase::captured;
    }

    void routeAll();
    void consider(const NodeRecord &node);
    void route(const NodeRecord &node, Stream &stream);
    void sendToTap(const NodeRecord &node, Stream &stream);
    void putBack(Stream &stream, Phase phase);
    void dropLinks(Stream &stream);
    void lookAtLinks(std::uint32_t id, Stream &stream);
    void linkToTap(std::uint32_t id, Stream &stream);
    void leaveAt(const NodeRecord &place, Stream &stream);
    [[nodiscard]] bool isFullyLinked(std::uint32_t id) const;
    [[nodiscard]] const NodeRecord *deviceLinkedTo(std::uint32_t id) const;
    void startHandshake(const NodeRecord &node, Stream &stream);
    [[nodiscard]] std::uint32_t handshakeSink() const;
    [[nodiscard]] bool mustNotBeCaptured(const NodeRecord &node) const;
    void lookForFeedback();
    void targetObjectChanged(std::uint32_t id, Stream &stream,
                             const std::optional<MetadataValue> &value);
    void targetNodeChanged(std::uint32_t id, Stream &stream,
                           const std::optional<MetadataValue> &value);

    const ServerObjects &objects_;
    ServerCommands &commands_;
    RouteLog &log_;
    RoutingEnds ends_;
    std::set<std::uint64_t> ownTaps_; ///< serials of every tap so far
    Streams streams_;                 ///< by node id
    std::set<std::uint32_t> hearers_; ///< of the processed sound
    /// Ended streams whose values we have deleted, with the "target.node" that was ours. A stream
    /// that is given such an id at once may have had its own value deleted by that.
    std::map<std::uint32_t, MetadataValue> cleaned_;
};

} // namespace quorbel
