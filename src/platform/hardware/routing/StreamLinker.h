#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <cstdint>
#include <limits>
#include <set>
#include <vector>

namespace quorbel {

/// The nodes of a routing. An id becomes 0 when its node goes, because ids are reused.
struct RoutingEnds {
    std::uint32_t tapID = 0;
    std::uint64_t tapSerial = 0;
    std::uint32_t outID = 0;    ///< plays the processed sound
    std::uint32_t deviceID = 0; ///< receives it
    std::uint32_t homeID = 0;   ///< the default device, on which most streams play without us

    bool operator==(const RoutingEnds &) const = default;
};

/// The links of one stream that concern its routing.
struct StreamLinks {
    std::vector<OwnLink> own; ///< to the tap, made by us because the session manager made none
    /// Ids of links to devices from before the stream was sent to the tap: the session manager
    /// removes them, but sometimes loses track of one.
    std::set<std::uint32_t> former;
    OwnLink handshake = 0;
    double handshakeEnd = std::numeric_limits<double>::infinity();
};

/// Makes and removes the links of streams, and the handshake that a PulseAudio client needs.
///
/// Invariants:
/// 1. A stream has at most one handshake, and one of our links per port of the tap.
/// 2. Links of the session manager and of other clients are left alone, except `former` ones.
class StreamLinker {
  public:
    /// All arguments must outlive this object; `ends` may change.
    StreamLinker(const ServerObjects &objects, ServerCommands &commands, const RoutingEnds &ends)
        : objects_(objects), commands_(commands), ends_(ends) {}

    /// True if both channels of the tap receive the stream's sound.
    [[nodiscard]] bool isFullyLinked(std::uint32_t streamID) const;
    /// The device that the stream is linked to besides the tap; null if none or during a handshake.
    [[nodiscard]] const NodeRecord *deviceBeside(std::uint32_t streamID,
                                                 const StreamLinks &links) const;

    /// Makes the missing links to the tap.
    void linkToTap(std::uint32_t streamID, StreamLinks &links);
    /// Collects the links from before the stream is sent to the tap.
    void noteFormer(std::uint32_t streamID, StreamLinks &links) const;
    /// Removes the former links. Returns the device of another link, made by a client, or null.
    const NodeRecord *removeFormer(std::uint32_t streamID, const StreamLinks &links);
    /// Removes all our links.
    void drop(StreamLinks &links);

    /// True if a device exists that a handshake can use.
    [[nodiscard]] bool hasHandshakeSink() const { return handshakeSink() != 0; }
    /// Links an unanswered PulseAudio client to a device for a short time.
    void startHandshake(const NodeRecord &stream, StreamLinks &links);
    void endHandshake(StreamLinks &links);

  private:
    [[nodiscard]] std::uint32_t handshakeSink() const;

    const ServerObjects &objects_;
    ServerCommands &commands_;
    const RoutingEnds &ends_;
};

} // namespace quorbel
