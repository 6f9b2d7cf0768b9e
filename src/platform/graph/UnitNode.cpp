#include "platform/graph/UnitNode.h"

#include "platform/units/UnitStatus.h"

#include <array>
#include <string>
#include <typeinfo>
#include <utility>

namespace quorbel {

UnitNode::UnitNode(std::unique_ptr<AudioUnit> unit)
    : unit_(std::move(unit)),
      inputStandsReady_([](RenderActionFlags &, const RenderTime &, std::uint32_t, std::int32_t,
                           AudioBufferList &) { return statusOK; }) {}

UnitNode::~UnitNode() { UnitNode::deallocateRenderResources(); }

Status UnitNode::allocateRenderResources(const StreamFormat &format, std::uint32_t maximumFrames) {
    if (unit_->renderResourcesAllocated())
        unit_->deallocateRenderResources();
    for (AudioUnitBus *bus : {&unit_->inputBusses()[0], &unit_->outputBusses()[0]})
        if (const Status status = bus->setFormat(format); status != statusOK)
            return status;
    unit_->setMaximumFramesToRender(maximumFrames);
    std::string ignored; // the status says enough
    if (const Status status = unit_->allocateRenderResources(ignored); status != statusOK)
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
    return block_(flags, time, frames, 0, buffers, nullptr, inputStandsReady_);
}

std::size_t UnitNode::renderWithFollowing(std::span<GraphNode *const> following,
                                          AudioBufferList &buffers, std::uint32_t frames) noexcept {
    if (!block_)
        return 0;
    std::array<AudioUnit *, 3> units{};
    std::size_t count = 0;
    for (GraphNode *const node : following) {
        // The class is final, so this is as safe as a dynamic cast and far quicker.
        if (count == units.size() || typeid(*node) != typeid(UnitNode))
            break;
        const auto &next = static_cast<UnitNode &>(*node);
        if (!next.block_)
            break;
        units[count++] = next.unit_.get();
    }
    return unit_->renderWithFollowing(std::span(units.data(), count), buffers, frames);
}

} // namespace quorbel
