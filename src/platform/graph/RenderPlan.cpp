#include "platform/graph/RenderPlan.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace quorbel {

RenderPlan::RenderPlan(std::vector<Stage> stages, const StreamFormat &format)
    : stages_(std::move(stages)), format_(format) {
    assert(!stages_.empty() && stages_.front().node->isSource());
}

RenderPlan::~RenderPlan() {
    while (allocated_ > 0)
        stages_[--allocated_].node->deallocateRenderResources();
}

Status RenderPlan::allocate() {
    for (; allocated_ < stages_.size(); ++allocated_) {
        const Status status =
            stages_[allocated_].node->allocateRenderResources(format_, maximumBlockFrames);
        if (status != statusOK) {
            while (allocated_ > 0)
                stages_[--allocated_].node->deallocateRenderResources();
            return status;
        }
    }
    return statusOK;
}

void RenderPlan::reset() {
    for (const Stage &stage : stages_)
        stage.node->reset();
}

Status RenderPlan::render(AudioBufferList &buffers, std::uint32_t frames) noexcept {
    assert(frames >= 1 && frames <= maximumBlockFrames);
    Status result = statusOK;
    for (const Stage &stage : stages_) {
        const Status status = stage.node->render(time_, buffers, frames);
        if (status != statusOK) {
            result = result == statusOK ? status : result;
            if (stage.node->isSource())
                for (std::uint32_t channel = 0; channel < buffers.bufferCount; ++channel)
                    std::fill_n(buffers.data[channel], frames, 0.0F);
        }
        stage.tap->write(buffers, frames);
    }
    time_.sampleTime += frames;
    return result;
}

} // namespace quorbel
