#include "platform/graph/ParametricEqualizerNode.h"

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

std::size_t ParametricEqualizerNode::renderWithFollowing(std::span<GraphNode *const> following,
                                                         AudioBufferList &buffers,
                                                         std::uint32_t frames) noexcept {
    // The class is final, so this is as safe as a dynamic cast and far quicker.
    if (following.empty() || typeid(*following[0]) != typeid(ParametricEqualizerNode) ||
        !buffers.isStereo())
        return 0;
    ParametricEqualizer::renderInSeries(
        equalizer_, static_cast<ParametricEqualizerNode &>(*following[0]).equalizer_,
        buffers.data[0], buffers.data[1], frames);
    return 1;
}

} // namespace quorbel
