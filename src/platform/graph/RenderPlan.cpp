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
        const std::span following(nodes_.data() + i + 1, untappedAfter(i));
        const std::size_t joined = nodes_[i]->renderWithFollowing(following, buffers, frames);
        if (joined == 0)
            if (const Status status = renderAlone(stages_[i], buffers, frames); result == statusOK)
                result = status;
        i += joined;
        stages_[i].tap->write(buffers, frames);
    }
    time_.sampleTime += frames;
    return result;
}

std::size_t RenderPlan::untappedAfter(std::size_t first) const noexcept {
    // A pass may end at a tapped stage, but not go beyond it.
    std::size_t last = first;
    while (last + 1 < stages_.size() && last < first + longestPass - 1 &&
           !stages_[last].tap->isInstalled())
        ++last;
    return last - first;
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
