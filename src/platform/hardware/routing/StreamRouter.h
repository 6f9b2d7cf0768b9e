#pragma once

#include "platform/core/Programs.h"
#include "platform/hardware/routing/OwnWrites.h"
#include "platform/hardware/routing/RoutedStream.h"
#include "platform/hardware/routing/StreamLinker.h"
#include "platform/hardware/routing/TargetMemory.h"

#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <vector>

namespace quorbel {

/// Sends every application's playback stream, present or new, to the tap while it is on, and puts
/// each back afterwards. `StreamRouter.cpp` sends them and watches their deadlines;
/// `StreamRouterRules.cpp` decides which may be captured; `StreamRouterTargets.cpp` keeps their
/// targets in the metadata; `StreamLinker` makes links.
///
/// Invariants for every known stream, while it is on:
/// 1. `routing` and `captured` streams are in the log and have the tap as their target.
/// 2. Every phase but `captured` and `released` has a deadline, or ends with an event of the
///    server. The router links a stream that does not reach the tap in time, and puts it back if
///    that fails too.
/// 3. A stream that hears the processed sound is never captured.
/// 4. A stream that the user has moved is left to the user.
/// 5. A stream that the rules leave alone is never captured.
/// 6. The session manager remembers the user's choice as the target of each program. Our values, an
///    ended stream's values and links made by the user never count as such a choice.
class StreamRouter final : public ServerObserver {
  public:
    /// The owner forwards the server's events.
    StreamRouter(const ServerObjects &objects, ServerCommands &commands, RouteLog &log);
    StreamRouter(const StreamRouter &) = delete;
    StreamRouter &operator=(const StreamRouter &) = delete;

    /// Puts back the streams that an earlier process has left routed, unless another client has
    /// moved them. Call it before `begin`.
    void restore(std::vector<RoutedStream> leftovers);
    /// Starts routing, or continues with another tap, output or device.
    void begin(const RoutingEnds &ends);
    [[nodiscard]] bool isOn() const { return ends_.tapSerial != 0; }
    /// Puts every stream back. The session manager moves the links a moment later.
    void end();
    /// Sets the rules of programs, and applies them to all streams if routing is on.
    void setRules(const ProgramRules &rules);
    /// The treatment of a playback stream, while routing is on.
    [[nodiscard]] StreamTreatment treatmentOf(const NodeRecord &node) const;
    /// True if the output has more than two channels, with us and without us.
    [[nodiscard]] bool isSurroundOutput() const { return isSurroundOutput_; }

    /// Routes all streams again as new ones, after another process has put them back.
    void startOver();

    /// True while a stream of an application is linked to the tap `tapID`.
    [[nodiscard]] bool isAnyLinkedTo(std::uint32_t tapID) const;
    /// True if a stream to be captured, or a device that it may come from, is not plain stereo.
    /// The session manager gives the tap such a stream's channels, unless the tap counts as a
    /// device.
    [[nodiscard]] bool needsDeviceTap() const;

    /// Acts on the deadlines that have passed. Call it at `nextDeadline`; any other time is safe.
    void checkDeadlines();
    /// Next deadline on the clock of the commands; infinity without one.
    [[nodiscard]] double nextDeadline() const;

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

  private:
    static constexpr double never = std::numeric_limits<double>::infinity();
    /// Settling time: while the session manager moves our output, no stream seems to hear it. Our
    /// writes have echoed by then too, so no write is under way when a stream is sent to the tap.
    static constexpr double settleSeconds = 0.25;

    enum class Phase {
        unread,   ///< new: its target must be read first, as the server may not report it
        routing,  ///< sent to the tap, not linked to it yet
        captured, ///< linked to the tap
        waiting,  ///< put back until the PulseAudio server has answered its client
        hearing,  ///< put back: hears or may hear the processed sound, or is half of a virtual sink
        refused,  ///< put back because it did not reach the tap; tried again later
        released, ///< moved elsewhere by the user
        measured, ///< new: its channel count matters and is not known yet
        excused,  ///< put back: the rules leave it alone
    };
    struct Stream {
        RoutedStream route;
        double appearedAt = 0.0;   ///< earliest time of a restored target
        double readAt = never;     ///< when to look for a target that the session manager restored
        bool isReading = false;    ///< the table is being read for that
        double rememberAt = never; ///< when to rewrite the target to be remembered
        double rememberedAt = -never;
        bool rememberedTwice = false;
        Phase phase = Phase::routing;
        double linkAt = never;   ///< when to make the missing links ourselves
        double giveUpAt = never; ///< when to put it back
        double retryAt = never;
        double leaveAt = never; ///< when to end its sound on a device besides the tap
        int failures = 0;
        bool wasCaptured = false; ///< since it was last sent to the tap
        StreamLinks links;
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

    /// True if the tap's node exists; otherwise streams wait for the next tap.
    [[nodiscard]] bool hasTap() const { return ends_.tapID != 0; }
    // StreamRouter.cpp
    void routeAll();
    void consider(const NodeRecord &node, double appearedAt);
    void route(const NodeRecord &node, Stream &stream);
    void sendToTap(const NodeRecord &node, Stream &stream);
    void awaitLinks(Stream &stream);
    void letGo(Stream &stream, Phase phase);
    void putBack(Stream &stream, Phase phase);
    void lookAtLinks(std::uint32_t id, Stream &stream);
    void endDoubleSound(const NodeRecord &node, Stream &stream);
    [[nodiscard]] bool isOfOutput(const PortRecord &port) const {
        return port.nodeID == ends_.deviceID || port.nodeID == ends_.homeID;
    }

    // StreamRouterRules.cpp
    void applyRulesToAll();
    void applyRules(const NodeRecord &node, Stream &stream);
    [[nodiscard]] bool isLeftAlone(const NodeRecord &node) const;
    void seeOutput();
    [[nodiscard]] bool mustNotBeCaptured(const NodeRecord &node) const;
    [[nodiscard]] bool mayChangeHearers(const LinkRecord &link) const;
    void lookForFeedback();

    // StreamRouterTargets.cpp
    void dropInherited(std::uint32_t ownID);
    void dropInheritedIDs();
    [[nodiscard]] bool isOwnID(const MetadataValue &value) const;
    [[nodiscard]] bool isOwnTap(const MetadataValue &value) const;
    [[nodiscard]] bool hasOwnTarget(std::uint32_t id) const;
    void learnTarget(const NodeRecord &node);
    void shareTarget(const NodeRecord &of);
    [[nodiscard]] bool isRestoring(const NodeRecord &node, const Stream &stream) const;
    void targetIsKnown(const NodeRecord &node, Stream &stream);
    void release(Stream &stream);
    void leaveAt(const NodeRecord &place, Stream &stream);
    void remember(Stream &stream);
    void cleanUp(const RoutedStream &route);

    const ServerObjects &objects_;
    OwnWrites commands_;
    RouteLog &log_;
    RoutingEnds ends_;
    bool isSurroundOutput_ = false;
    ProgramRules rules_;
    std::set<std::uint64_t> ownTaps_; ///< serials of all taps so far
    TargetMemory memory_;
    StreamLinker linker_;
    double metadataAt_ = -never; ///< time of the table's arrival
    Streams streams_;            ///< by node id
    std::vector<Ended> ended_;
    std::set<std::uint32_t> hearers_; ///< of the processed sound
};

} // namespace quorbel
