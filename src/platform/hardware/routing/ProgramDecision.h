#pragma once

#include "platform/core/Programs.h"
#include "platform/hardware/routing/ServerObjects.h"

#include <cstdint>
#include <string_view>

namespace quorbel {

/// Names of the program that plays a stream. Programs that use the PulseAudio server have them on
/// the stream, others on their client.
ProgramNames programNames(const ServerObjects &objects, const NodeRecord &stream);

/// True if `text` matches a pattern of `*` (any text) and `?` (any character). ASCII letters match
/// in both cases.
bool matchesPattern(std::string_view pattern, std::string_view text);

/// The first rule that matches a stream; null if there is none.
const ProgramRule *ruleFor(const ProgramRules &rules, const ProgramNames &program,
                           const std::string &title);

/// True if a device has more than two channels.
bool isSurroundDevice(const ServerObjects &objects, std::uint32_t deviceID);

/// The treatment that the rules give a stream: `processed`, or the reason to leave it alone.
/// `isSurroundOutput`: without us, and with us, it is played on more than two channels.
StreamTreatment decideTreatment(const ServerObjects &objects, const ProgramRules &rules,
                                const NodeRecord &stream, bool isSurroundOutput);

} // namespace quorbel
