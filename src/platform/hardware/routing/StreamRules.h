#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <set>
#include <string>

namespace quorbel {

/// True for a stream that may be sent to the tap: an application's playback that lets the session
/// manager decide where it goes.
bool isRoutable(const NodeRecord &node);

/// True for every stream that plays, our own output too.
bool isPlayback(const NodeRecord &node);

/// What the session manager knows a stream's program by, across its starts: it remembers one target
/// for all streams of one such name.
std::string programOf(const NodeRecord &node);

/// True for the stream of a client of the PulseAudio server.
bool isPulseClient(const NodeRecord &node);
/// The PulseAudio server sets this on a stream in the moment in which it answers the client.
bool isAnsweredPulseClient(const NodeRecord &node);

/// True for the output half of a virtual sink: captured, it would silence what plays on that sink.
bool isVirtualSinkOutput(const ServerObjects &objects, const NodeRecord &node);

/// True for the playing half of a loopback or filter whose recording half is not linked yet: it may
/// come to hear the processed sound.
bool isUndecidedCopy(const ServerObjects &objects, const NodeRecord &node);

/// True if the node's ports in one direction are exactly front left and front right.
bool isPlainStereo(const ServerObjects &objects, std::uint32_t nodeID, bool input);

/// The nodes that hear what `nodeID` plays: what it is linked to, what is linked to those, and
/// every playback of a program that records one of them. A stream among them that were sent to the
/// tap would close a feedback loop. Programs are told apart by link group, client and process.
std::set<std::uint32_t> hearersOf(const ServerObjects &objects, std::uint32_t nodeID);

} // namespace quorbel
