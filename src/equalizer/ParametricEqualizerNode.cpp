#include "equalizer/ParametricEqualizerNode.h"

#include <cerrno>
#include <typeinfo>

namespace quorbel {

Status ParametricEqualizerNode::allocateRenderResources(const StreamFormat &format,
                                                        std::uint32_t /*maximumFrames*/) {
    if (format.channelCount != 2 || !(format.sampleRate >= 8000.0 && format.sampleRate <= 384000.0))
        return -EINVAL;
    equalizer_.prepare(format.sampleRate);
    return statusOK;
}

Status ParametricEqualizerNode::render(const RenderTime & /*time*/, AudioBufferList &buffers,
                                       std::uint32_t frames) noexcept {
    if (!buffers.isStereo())
        return -EINVAL;
    equalizer_.render(buffers.data[0], buffers.data[1], frames);
    return statusOK;
}

std::size_t ParametricEqualizerNode::joinable(std::span<GraphNode *const> following) const {
    return !following.empty() && typeid(*following[0]) == typeid(ParametricEqualizerNode) ? 1 : 0;
}

bool ParametricEqualizerNode::renderJoined(std::span<GraphNode *const> joined,
                                           AudioBufferList &buffers,
                                           std::uint32_t frames) noexcept {
    if (!buffers.isStereo())
        return false;
    ParametricEqualizer::renderInSeries(
        equalizer_, static_cast<ParametricEqualizerNode &>(*joined[0]).equalizer_, buffers.data[0],
        buffers.data[1], frames);
    return true;
}

} // namespace quorbel
