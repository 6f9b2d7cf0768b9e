#pragma once

#include <cstdint>

namespace quorbel {

/// Where a block stands in the stream.
struct RenderTime {
    std::int64_t sampleTime = 0; ///< frames rendered since the graph was started
};

} // namespace quorbel
