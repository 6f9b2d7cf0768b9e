#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <set>
#include <string>

namespace quorbel {

/// True for a stream that may be sent to the tap: an application's playback whose target the
/// session manager decides.
bool isRoutable(const NodeRecord &node);

/// True for every playback stream, our own output included.
bool isPlayback(const NodeRecord &node);

/// Name by which the session manager identifies a stream's program: it remembers one target for all
/// streams of that name, across the program's starts.
std::string programOf(const NodeRecord &node);

/// True for the stream of a client of the PulseAudio server.
bool isPulseClient(const NodeRecord &node);
/// True once the PulseAudio server has answered the stream's client, which it marks on the stream.
bool isAnsweredPulseClient(const NodeRecord &node);

/// True for the output half of a virtual sink: capturing it would silence the streams that play on
/// that sink.
bool isVirtualSinkOutput(const ServerObjects &objects, const NodeRecord &node);

/// True for the playback half of a loopback or filter while its recording half is not linked: that
/// half may yet be linked to the processed sound.
bool isUndecidedCopy(const ServerObjects &objects, const NodeRecord &node);

/// True if the node's ports in one direction are exactly front left and front right.
bool isPlainStereo(const ServerObjects &objects, std::uint32_t nodeID, bool input);

/// The nodes that hear `nodeID`: its direct and indirect link targets, and every playback of a
/// program that records one of them. Sending such a stream to the tap would close a feedback loop.
/// Link group, client and process identify a program.
std::set<std::uint32_t> hearersOf(const ServerObjects &objects, std::uint32_t nodeID);

} // namespace quorbel
