#include "platform/graph/ParametricEqualizerNode.h"

#include <cerrno>

namespace quorbel {
namespace {

bool isStereo(const AudioBufferList &buffers) noexcept {
    return buffers.bufferCount >= 2 && buffers.data[0] != nullptr && buffers.data[1] != nullptr;
}

} // namespace

Status ParametricEqualizerNode::allocateRenderResources(const StreamFormat &format,
                                                        std::uint32_t /*maximumFrames*/) {
    if (format.channelCount != 2 || !(format.sampleRate >= 8000.0 && format.sampleRate <= 384000.0))
        return -EINVAL;
    equalizer_.prepare(format.sampleRate);
    return statusOK;
}

Status ParametricEqualizerNode::render(const RenderTime & /*time*/, AudioBufferList &buffers,
                                       std::uint32_t frames) noexcept {
    if (!isStereo(buffers))
        return -EINVAL;
    equalizer_.process(buffers.data[0], buffers.data[1], frames);
    return statusOK;
}

bool ParametricEqualizerNode::renderWithNext(GraphNode &next, AudioBufferList &buffers,
                                             std::uint32_t frames) noexcept {
    auto *const other = dynamic_cast<ParametricEqualizerNode *>(&next);
    if (other == nullptr || !isStereo(buffers))
        return false;
    ParametricEqualizer::processInSeries(equalizer_, other->equalizer_, buffers.data[0],
                                         buffers.data[1], frames);
    return true;
}

} // namespace quorbel
