#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/RenderTime.h"
#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"
#include "platform/units/ComponentDescription.h"
#include "platform/units/ParameterTree.h"

#include <span>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quorbel {

using RenderActionFlags = std::uint32_t;

/// A list of events scheduled inside a block. Units of this program ignore them: parameters reach
/// the render side through cells.
struct RenderEvent;

/// Fills `buffers` with a unit's input. An empty one means that nothing is connected.
using PullInputBlock =
    std::function<Status(RenderActionFlags &flags, const RenderTime &time, std::uint32_t frames,
                         std::int32_t inputBus, AudioBufferList &buffers)>;

/// Renders one block of a unit: pulls the input into `output` and processes it in place. Calling it
/// allocates nothing and throws nothing. [render]
using RenderBlock = std::function<Status(
    RenderActionFlags &flags, const RenderTime &time, std::uint32_t frames, std::int32_t outputBus,
    AudioBufferList &output, const RenderEvent *events, const PullInputBlock &pullInput)>;

/// One connection point of a unit. [main]
class AudioUnitBus {
  public:
    /// Throws AudioUnitError (`statusFormatNotSupported`) for a format that describes no sound or
    /// has more channels than a buffer list holds.
    explicit AudioUnitBus(const StreamFormat &format);

    [[nodiscard]] const StreamFormat &format() const { return format_; }

    /// For the next allocation of render resources; fails as the constructor does, and then changes
    /// nothing.
    Status setFormat(const StreamFormat &format);

  private:
    StreamFormat format_;
};

/// The busses of one side of a unit, borrowed from it.
class AudioUnitBusArray {
  public:
    enum class Type { input, output };

    AudioUnitBusArray(Type type, std::vector<AudioUnitBus *> busses);

    [[nodiscard]] Type type() const { return type_; }
    [[nodiscard]] std::size_t count() const { return busses_.size(); }
    [[nodiscard]] AudioUnitBus &operator[](std::size_t index) const { return *busses_[index]; }

  private:
    Type type_;
    std::vector<AudioUnitBus *> busses_;
};

/// Options for making a unit; none are defined.
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

    /// Takes all the memory that rendering needs. On failure the unit is as before. The base class
    /// requires that all busses have one format.
    virtual Status allocateRenderResources();
    virtual void deallocateRenderResources() { allocated_ = false; }
    [[nodiscard]] bool renderResourcesAllocated() const { return allocated_; }

    /// Clears the held sound (delay lines, filter memories), not parameters and measurements. Only
    /// while nothing renders. [control]
    virtual void reset() {}

    /// Takes the parameters' values for the blocks that are rendered from now on. [render]
    virtual void takeSettings() noexcept {}

    /// Returns a new block at every call. The block keeps its state alive, also beyond the unit,
    /// and may be called once render resources are allocated.
    [[nodiscard]] virtual RenderBlock internalRenderBlock() = 0;

    /// Returns how many of the units behind this one, `following`, `renderJoined` takes. [main]
    [[nodiscard]] virtual std::size_t joinable(std::span<AudioUnit *const> /*following*/) const {
        return 0;
    }

    /// Renders this unit and `joined`, the units that `joinable` has counted, in place and in one
    /// pass, as their render blocks would one after the other; or does nothing and returns false.
    /// All are allocated for the same format. [render]
    virtual bool renderJoined(std::span<AudioUnit *const> /*joined*/, AudioBufferList & /*buffers*/,
                              std::uint32_t /*frames*/) noexcept {
        return false;
    }

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
