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

/// Fills `buffers` with a unit's input; an empty function if nothing is connected.
using PullInputBlock =
    std::function<Status(RenderActionFlags &flags, const RenderTime &time, std::uint32_t frames,
                         std::int32_t inputBus, AudioBufferList &buffers)>;

/// Renders one block of a unit: pulls the input into `output` and processes it in place. Allocates
/// and throws nothing. [render]
using RenderBlock = std::function<Status(
    RenderActionFlags &flags, const RenderTime &time, std::uint32_t frames, std::int32_t outputBus,
    AudioBufferList &output, const RenderEvent *events, const PullInputBlock &pullInput)>;

/// One connection point of a unit. [main]
class AudioUnitBus {
  public:
    /// Throws AudioUnitError (`statusFormatNotSupported`) for an invalid format or more channels
    /// than a buffer list holds.
    explicit AudioUnitBus(const StreamFormat &format);

    [[nodiscard]] const StreamFormat &format() const { return format_; }

    /// Sets the format for the next allocation of render resources. Returns an error and changes
    /// nothing where the constructor would throw.
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
/// Life cycle: constructed, allocated for the formats of its busses, rendered any number of times,
/// deallocated; possibly allocated again. All calls [main] except where tagged.
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

    /// Longest block to render, in frames; set before allocation.
    [[nodiscard]] std::uint32_t maximumFramesToRender() const { return maximumFrames_; }
    void setMaximumFramesToRender(std::uint32_t frames) { maximumFrames_ = frames; }

    /// Allocates all memory for rendering; changes nothing on failure. The base class requires one
    /// format on all busses.
    virtual Status allocateRenderResources();
    virtual void deallocateRenderResources() { allocated_ = false; }
    [[nodiscard]] bool renderResourcesAllocated() const { return allocated_; }

    /// Clears the sound (delay lines, filter states) but not parameters and measurements. Only
    /// while nothing renders. [control]
    virtual void reset() {}

    /// Applies the parameters' values to the following blocks. [render]
    virtual void takeSettings() noexcept {}

    /// Returns a new block at every call. The block keeps its state alive beyond the unit's
    /// lifetime. Callable once render resources are allocated.
    [[nodiscard]] virtual RenderBlock internalRenderBlock() = 0;

    /// Returns how many units at the head of `following` can join `renderJoined`. [main]
    [[nodiscard]] virtual std::size_t joinable(std::span<AudioUnit *const> /*following*/) const {
        return 0;
    }

    /// Renders this unit and `joined`, the units counted by `joinable`, in place in one pass,
    /// equivalent to their render blocks in series. Returns false without rendering if it cannot.
    /// All units are allocated for the same format. [render]
    virtual bool renderJoined(std::span<AudioUnit *const> /*joined*/, AudioBufferList & /*buffers*/,
                              std::uint32_t /*frames*/) noexcept {
        return false;
    }

    /// Delay of the unit's output, in seconds.
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
