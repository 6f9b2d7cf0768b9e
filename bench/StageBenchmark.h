#pragma once

#include "platform/graph/GraphNode.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace quorbel::bench {

/// Processes a stereo block in place.
using Stage = std::function<void(float *left, float *right, std::uint32_t frames)>;

/// Measures one stage at 48 kHz on noise, in blocks of 64, 512 and 4096 frames: as a constant at
/// namespace scope it registers itself.
class StageBenchmark {
  public:
    /// `make` makes a new stage for every run, ready to render.
    StageBenchmark(const std::string &name, std::function<Stage()> make);
};

/// A graph node as a stage, allocated for 48 kHz. Throws std::runtime_error if that fails.
[[nodiscard]] Stage stageOf(std::shared_ptr<GraphNode> node);

} // namespace quorbel::bench
