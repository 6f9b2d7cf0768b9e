#include "platform/graph/SourceNode.h"

#include "platform/graph/NonFinite.h"
#include "platform/units/UnitStatus.h"

#include <utility>

namespace quorbel {

SourceNode::SourceNode(const StreamFormat &format, RenderCallback callback)
    : format_(format), callback_(std::move(callback)) {}

Status SourceNode::allocateRenderResources(const StreamFormat &format, std::uint32_t) {
    return format == format_ ? statusOK : statusFormatNotSupported;
}

Status SourceNode::render(const RenderTime &, AudioBufferList &buffers,
                          std::uint32_t frames) noexcept {
    const Status status = callback_(buffers, frames);
    if (status != statusOK)
        return status;
    if (const std::uint32_t replaced = replaceNonFinite(buffers, frames); replaced > 0)
        replacedFrames_.fetch_add(replaced, std::memory_order_relaxed);
    return statusOK;
}

} // namespace quorbel
