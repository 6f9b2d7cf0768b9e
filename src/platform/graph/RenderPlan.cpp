#include "platform/graph/RenderPlan.h"

#include <algorithm>
#include <cassert>
#include <mutex>
#include <utility>

namespace quorbel {

RenderPlan::RenderPlan(std::vector<Stage> stages, const StreamFormat &format,
                       ShortLock &settingsLock)
    : stages_(std::move(stages)), format_(format), settingsLock_(settingsLock) {
    assert(!stages_.empty() && stages_.front().node->isSource());
    for (const Stage &stage : stages_)
        nodes_.push_back(stage.node);
    for (std::size_t i = 0; i < nodes_.size(); ++i)
        joinable_.push_back(nodes_[i]->joinable(std::span(nodes_).subspan(i + 1)));
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
    takeSettings();
    return statusOK;
}

void RenderPlan::reset() {
    for (const Stage &stage : stages_)
        stage.node->reset();
}

void RenderPlan::takeSettings() noexcept {
    for (const Stage &stage : stages_)
        stage.node->takeSettings();
}

Status RenderPlan::render(AudioBufferList &buffers, std::uint32_t frames) noexcept {
    assert(frames >= 1 && frames <= maximumBlockFrames);
    if (const std::unique_lock lock(settingsLock_, std::try_to_lock); lock.owns_lock())
        takeSettings();
    Status result = statusOK;
    for (std::size_t i = 0; i < stages_.size(); ++i) {
        if (renderJoined(i, buffers, frames))
            i += joinable_[i];
        else if (const Status status = renderAlone(stages_[i], buffers, frames); result == statusOK)
            result = status;
        stages_[i].tap->write(buffers, frames);
    }
    time_.sampleTime += frames;
    return result;
}

bool RenderPlan::renderJoined(std::size_t first, AudioBufferList &buffers,
                              std::uint32_t frames) noexcept {
    const std::size_t count = joinable_[first];
    // A joint pass yields only its last stage's output, so earlier stages must have no tap.
    for (std::size_t i = 0; i < count; ++i)
        if (stages_[first + i].tap->isInstalled())
            return false;
    return count > 0 && nodes_[first]->renderJoined(std::span(nodes_).subspan(first + 1, count),
                                                    buffers, frames);
}

Status RenderPlan::renderAlone(const Stage &stage, AudioBufferList &buffers,
                               std::uint32_t frames) noexcept {
    const Status status = stage.node->render(time_, buffers, frames);
    if (status != statusOK && stage.node->isSource())
        for (std::uint32_t channel = 0; channel < buffers.bufferCount; ++channel)
            std::fill_n(buffers.data[channel], frames, 0.0F);
    return status;
}

} // namespace quorbel
