#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/RenderTime.h"
#include "platform/core/Status.h"

#include <cstdint>
#include <functional>

namespace quorbel {

using RenderActionFlags = std::uint32_t;

/// A list of events scheduled inside a block. Units of this program ignore them: parameters reach
/// the render side through cells.
struct RenderEvent;

/// Fills `buffers` with a unit's input. An empty one means that nothing is connected.
using PullInputBlock =
    std::function<Status(RenderActionFlags &flags, const RenderTime &time, std::uint32_t frames,
                         std::int32_t inputBus, AudioBufferList &buffers)>;

/// Renders one block of a unit: pulls the input into `output` and processes it in place. Calling it
/// allocates nothing and throws nothing. [render]
using RenderBlock = std::function<Status(
    RenderActionFlags &flags, const RenderTime &time, std::uint32_t frames, std::int32_t outputBus,
    AudioBufferList &output, const RenderEvent *events, const PullInputBlock &pullInput)>;

} // namespace quorbel
