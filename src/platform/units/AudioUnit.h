#pragma once

#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"
#include "platform/units/AudioUnitBus.h"
#include "platform/units/ComponentDescription.h"
#include "platform/units/ParameterTree.h"
#include "platform/units/RenderBlock.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace quorbel {

/// How a unit is asked to be made; none are defined.
using InstantiationOptions = std::uint32_t;

/// A self-contained processing stage. Constructors throw AudioUnitError.
///
/// Life: constructed; render resources allocated for the formats of its busses; its render block
/// called any number of times; deallocated; allocated again. All calls [main] but
/// where tagged, and the render block.
class AudioUnit {
  public:
    AudioUnit(const ComponentDescription &description, InstantiationOptions options)
        : description_(description), options_(options) {}
    virtual ~AudioUnit() = default;
    AudioUnit(const AudioUnit &) = delete;
    AudioUnit &operator=(const AudioUnit &) = delete;

    [[nodiscard]] const ComponentDescription &componentDescription() const { return description_; }
    [[nodiscard]] InstantiationOptions options() const { return options_; }

    [[nodiscard]] virtual AudioUnitBusArray &inputBusses() = 0;
    [[nodiscard]] virtual AudioUnitBusArray &outputBusses() = 0;

    /// Null for a unit without parameters. May outlive the unit; it then still reads and stores
    /// values.
    [[nodiscard]] const std::shared_ptr<ParameterTree> &parameterTree() const { return tree_; }

    /// The longest block that will be rendered. To be set before allocation.
    [[nodiscard]] std::uint32_t maximumFramesToRender() const { return maximumFrames_; }
    void setMaximumFramesToRender(std::uint32_t frames) { maximumFrames_ = frames; }

    /// Takes all the memory that rendering needs. On failure, `error` says why in words and the
    /// unit is as before. The base class demands that all busses have one format.
    virtual Status allocateRenderResources(std::string &error);
    virtual void deallocateRenderResources() { allocated_ = false; }
    [[nodiscard]] bool renderResourcesAllocated() const { return allocated_; }

    /// Forgets the sound it holds (delay lines, filter memories), not parameters and measurements.
    /// Only while nothing renders. [control]
    virtual void reset() {}

    /// Takes the parameters' values for the blocks that are rendered from now on. [render]
    virtual void takeSettings() noexcept {}

    /// A new block at every call, which keeps what it needs alive, also beyond the unit. It may be
    /// called from the time render resources are allocated.
    [[nodiscard]] virtual RenderBlock internalRenderBlock() = 0;

    /// By how much the unit delays the sound, in seconds.
    [[nodiscard]] virtual double latency() const { return 0.0; }

  protected:
    void setParameterTree(std::shared_ptr<ParameterTree> tree) { tree_ = std::move(tree); }

  private:
    ComponentDescription description_;
    InstantiationOptions options_;
    std::shared_ptr<ParameterTree> tree_;
    std::uint32_t maximumFrames_ = maximumBlockFrames;
    bool allocated_ = false;
};

} // namespace quorbel
