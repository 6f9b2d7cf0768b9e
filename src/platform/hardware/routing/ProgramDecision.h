#pragma once

#include "platform/core/Programs.h"
#include "platform/hardware/routing/ServerObjects.h"

#include <cstdint>

namespace quorbel {

/// Names of the program that plays a stream. Programs that use the PulseAudio server have them on
/// the stream, others on their client.
ProgramNames programNames(const ServerObjects &objects, const NodeRecord &stream);

/// True if the marks identify the stream as a call.
bool isCall(const CallMarks &marks, const NodeRecord &stream, const ProgramNames &program);

/// True for a stream of more than two channels on an output of more than two.
bool isSurround(const NodeRecord &stream, bool isSurroundOutput);

/// True if a device has more than two channels.
bool isSurroundDevice(const ServerObjects &objects, std::uint32_t deviceID);

/// The treatment that the rules give a stream: `processed`, or the reason to leave it alone.
/// `isSurroundOutput`: the output has more than two channels, with us and without us.
StreamTreatment decideTreatment(const ServerObjects &objects, const ProgramRules &rules,
                                const NodeRecord &stream, bool isSurroundOutput);

} // namespace quorbel
