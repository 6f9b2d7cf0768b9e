#include "engine/OutputPeak.h"

namespace quorbel {

Status OutputPeak::allocateRenderResources(const StreamFormat & /*format*/,
                                           std::uint32_t /*maximumFrames*/) {
    truePeak_ = TruePeak();
    return statusOK;
}

Status OutputPeak::render(const RenderTime & /*time*/, AudioBufferList &buffers,
                          std::uint32_t frames) noexcept {
    if (!buffers.isStereo())
        return statusOK;
    const bool isCleared = clearing_.load(order);
    Peaks held;
    if (!isCleared)
        held = {.sample = sample_.load(order), .between = between_.load(order)};
    truePeak_.measure({buffers.data[0], buffers.data[1]}, frames, held);
    sample_.store(held.sample, order);
    between_.store(held.between, order);
    if (isCleared)
        clearing_.store(false, order);
    return statusOK;
}

} // namespace quorbel
