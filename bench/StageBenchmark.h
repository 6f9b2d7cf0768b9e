#pragma once

#include "platform/graph/GraphNode.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace quorbel::bench {

/// Processes a stereo block in place.
using Stage = std::function<void(float *left, float *right, std::uint32_t frames)>;

/// Measures one stage at 48 kHz on noise, in blocks of 64, 512 and 4096 frames. A constant at
/// namespace scope registers itself.
class StageBenchmark {
  public:
    /// `make` returns a new stage for every run, ready to render.
    StageBenchmark(const std::string &name, std::function<Stage()> make);
};

/// Wraps a graph node, allocated for 48 kHz. Throws std::runtime_error if the allocation fails.
[[nodiscard]] Stage stageOf(std::shared_ptr<GraphNode> node);

} // namespace quorbel::bench
