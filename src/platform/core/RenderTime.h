#pragma once

#include <cstdint>

namespace quorbel {

/// Position of a block in the stream.
struct RenderTime {
    std::int64_t sampleTime = 0; ///< frames rendered since the graph was started
};

} // namespace quorbel
