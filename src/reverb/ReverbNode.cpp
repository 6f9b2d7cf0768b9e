#include "reverb/ReverbNode.h"

#include <cerrno>

namespace quorbel {

Status ReverbNode::allocateRenderResources(const StreamFormat &format,
                                           std::uint32_t /*maximumFrames*/) {
    if (format.channelCount != 2 || !(format.sampleRate >= 8000.0 && format.sampleRate <= 384000.0))
        return -EINVAL;
    reverb_.prepare(format.sampleRate);
    return statusOK;
}

Status ReverbNode::render(const RenderTime & /*time*/, AudioBufferList &buffers,
                          std::uint32_t frames) noexcept {
    if (buffers.bufferCount < 2 || buffers.data[0] == nullptr || buffers.data[1] == nullptr)
        return -EINVAL;
    reverb_.render(buffers.data[0], buffers.data[1], frames);
    return statusOK;
}

} // namespace quorbel
