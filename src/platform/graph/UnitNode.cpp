#include "platform/graph/UnitNode.h"

#include "platform/units/UnitStatus.h"

#include <algorithm>
#include <array>
#include <string>
#include <typeinfo>
#include <utility>

namespace quorbel {

UnitNode::UnitNode(std::unique_ptr<AudioUnit> unit)
    : unit_(std::move(unit)),
      readyInput_([](RenderActionFlags &, const RenderTime &, std::uint32_t, std::int32_t,
                     AudioBufferList &) { return statusOK; }) {}

UnitNode::~UnitNode() { UnitNode::deallocateRenderResources(); }

Status UnitNode::allocateRenderResources(const StreamFormat &format, std::uint32_t maximumFrames) {
    if (unit_->renderResourcesAllocated())
        unit_->deallocateRenderResources();
    for (AudioUnitBus *bus : {&unit_->inputBusses()[0], &unit_->outputBusses()[0]})
        if (const Status status = bus->setFormat(format); status != statusOK)
            return status;
    unit_->setMaximumFramesToRender(maximumFrames);
    if (const Status status = unit_->allocateRenderResources(); status != statusOK)
        return status;
    block_ = unit_->internalRenderBlock();
    return statusOK;
}

void UnitNode::deallocateRenderResources() {
    block_ = nullptr;
    if (unit_->renderResourcesAllocated())
        unit_->deallocateRenderResources();
}

Status UnitNode::render(const RenderTime &time, AudioBufferList &buffers,
                        std::uint32_t frames) noexcept {
    if (!block_)
        return statusUninitialized;
    RenderActionFlags flags = 0;
    return block_(flags, time, frames, 0, buffers, nullptr, readyInput_);
}

std::size_t UnitNode::joinable(std::span<GraphNode *const> following) const {
    std::array<AudioUnit *, mostJoined> units{};
    std::size_t count = 0;
    while (count < std::min(units.size(), following.size()) &&
           typeid(*following[count]) == typeid(UnitNode)) {
        units[count] = &static_cast<UnitNode &>(*following[count]).unit();
        ++count;
    }
    return unit_->joinable(std::span(units.data(), count));
}

bool UnitNode::renderJoined(std::span<GraphNode *const> joined, AudioBufferList &buffers,
                            std::uint32_t frames) noexcept {
    std::array<AudioUnit *, mostJoined> units{};
    for (std::size_t i = 0; i < joined.size(); ++i)
        units[i] = &static_cast<UnitNode &>(*joined[i]).unit();
    return unit_->renderJoined(std::span(units.data(), joined.size()), buffers, frames);
}

} // namespace quorbel
