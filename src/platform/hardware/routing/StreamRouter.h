#pragma once

#include "platform/hardware/routing/OwnWrites.h"
#include "platform/hardware/routing/RouteLog.h"
#include "platform/hardware/routing/ServerCommands.h"
#include "platform/hardware/routing/TargetMemory.h"

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

    bool operator==(const RoutingEnds &) const = default;
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
    /// The owner passes the events on.
    StreamRouter(const ServerObjects &objects, ServerCommands &commands, RouteLog &log);

    /// Starts routing, or continues with another tap, output or device.
    void begin(const RoutingEnds &ends);
    [[nodiscard]] bool isOn() const { return ends_.tapSerial != 0; }
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
    void metadataRead() override;
    void metadataArrived() override;
    void metadataGone() override;

  private:
    static constexpr double never = std::numeric_limits<double>::infinity();

    enum class Phase {
        unread,   ///< new, while a target that it is given might not be told
        routing,  ///< sent to the tap, not linked to it yet
        captured, ///< linked to the tap
        waiting,  ///< put back until the PulseAudio server has answered its client
        hearing,  ///< hears the processed sound, may yet do so, or is half of a virtual sink: put
                  ///< back
        refused,  ///< did not follow: put back, tried again later
        released, ///< moved elsewhere by the user
    };
    struct Stream {
        RoutedStream route;
        double appearedAt = 0.0;   ///< to the session manager, which may restore its target then
        double readAt = never;     ///< see whether the session manager has restored a target
        bool isReading = false;    ///< since then
        double rememberAt = never; ///< write again what the session manager is to remember
        double rememberedAt = -never;
        bool rememberedTwice = false;
        Phase phase = Phase::routing;
        double linkAt = never;   ///< make the missing links ourselves
        double giveUpAt = never; ///< put it back
        double retryAt = never;
        double leaveAt = never; ///< end the sound that a device gets beside the tap
        int failures = 0;
        bool wasCaptured = false;   ///< since it was last sent to the tap
        std::vector<OwnLink> links; ///< to the tap, where the session manager made none
        /// Ids of links to devices from before it was sent to the tap: the session manager takes
        /// them away, but loses track of one now and then.
        std::set<std::uint32_t> formerLinks;
        OwnLink handshake = 0;
        double handshakeEnd = never;
    };
    /// A stream that has ended while it was routed.
    struct Ended {
        RoutedStream route;
        double cleanAt = never;
    };
    using Streams = std::map<std::uint32_t, Stream>;

    [[nodiscard]] static bool isHeld(const Stream &stream) {
        return stream.phase == Phase::routing || stream.phase == Phase::captured;
    }

    /// Its node is there; without it, streams wait for another one.
    [[nodiscard]] bool hasTap() const { return ends_.tapID != 0; }
    void routeAll();
    void dropInheritedIDs();
    [[nodiscard]] bool isOwnID(const MetadataValue &value) const;
    void learnTarget(const NodeRecord &node);
    void learn(const NodeRecord &node, const std::optional<MetadataValue> &object,
               const std::optional<MetadataValue> &target);
    void shareTarget(const NodeRecord &of);
    void consider(const NodeRecord &node, double appearedAt);
    void route(const NodeRecord &node, Stream &stream);
    [[nodiscard]] bool isRestoring(const NodeRecord &node, const Stream &stream) const;
    void sendToTap(const NodeRecord &node, Stream &stream);
    void targetIsKnown(const NodeRecord &node, Stream &stream);
    void awaitLinks(Stream &stream);
    void letGo(Stream &stream, Phase phase);
    void putBack(Stream &stream, Phase phase);
    [[nodiscard]] bool isOwnTap(const MetadataValue &value) const;
    [[nodiscard]] bool hasOwnTarget(std::uint32_t id) const;
    void cleanUp(const RoutedStream &route);
    void dropLinks(Stream &stream);
    void lookAtLinks(std::uint32_t id, Stream &stream);
    void linkToTap(std::uint32_t id, Stream &stream);
    void leaveAt(const NodeRecord &place, Stream &stream);
    void endDoubleSound(const NodeRecord &node, Stream &stream);
    [[nodiscard]] bool isFullyLinked(std::uint32_t id) const;
    [[nodiscard]] const NodeRecord *deviceLinkedTo(std::uint32_t id) const;
    void startHandshake(const NodeRecord &node, Stream &stream);
    void endHandshake(Stream &stream);
    [[nodiscard]] std::uint32_t handshakeSink() const;
    [[nodiscard]] bool mustNotBeCaptured(const NodeRecord &node) const;
    [[nodiscard]] bool mayChangeHearers(const LinkRecord &link) const;
    void lookForFeedback();
    void release(Stream &stream);
    void remember(Stream &stream);

    const ServerObjects &objects_;
    OwnWrites commands_;
    RouteLog &log_;
    RoutingEnds ends_;                ///< ids become 0 when their nodes go: others are given them
    std::set<std::uint64_t> ownTaps_; ///< serials of every tap so far
    TargetMemory memory_;
    /// Targets that we gave to streams moved by their links, by serial: not the user's for the
    /// program.
    std::map<std::uint64_t, MetadataValue> places_;
    double metadataAt_ = -never; ///< when the table came
    Streams streams_;            ///< by node id
    std::vector<Ended> ended_;
    std::set<std::uint32_t> hearers_; ///< of the processed sound
};

} // namespace quorbel
