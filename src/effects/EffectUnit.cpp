#include "effects/EffectUnit.h"

#include "platform/units/UnitStatus.h"

#include <new>
#include <utility>

namespace quorbel {

namespace {

constexpr StreamFormat standardFormat{chainSampleRate, 2};

} // namespace

EffectUnit::EffectUnit(const ComponentDescription &description, InstantiationOptions options,
                       std::span<const EffectParameter> table)
    : AudioUnit(description, options), inputBus_(standardFormat), outputBus_(standardFormat),
      inputBusses_(AudioUnitBusArray::Type::input, {&inputBus_}),
      outputBusses_(AudioUnitBusArray::Type::output, {&outputBus_}),
      touches_(std::make_shared<std::atomic<std::uint32_t>>(0)) {
    std::vector<std::shared_ptr<Parameter>> parameters;
    for (const EffectParameter &row : table) {
        cells_.push_back(std::make_shared<AudioParameter>(row.defaultValue));
        parameters.push_back(
            std::make_shared<Parameter>(ParameterDescription{.identifier = row.identifier,
                                                             .name = row.name,
                                                             .address = parameters.size(),
                                                             .minimum = row.minimum,
                                                             .maximum = row.maximum,
                                                             .unit = row.unit}));
        parameters.back()->setValue(row.defaultValue);
    }

    auto tree = std::make_shared<ParameterTree>(std::move(parameters));
    tree->implementorValueObserver = [cells = cells_,
                                      touches = touches_](const Parameter &parameter, float value) {
        if (parameter.address() >= cells.size())
            return;
        cells[parameter.address()]->setValue(value);
        touches->fetch_add(1, std::memory_order_release); // last: publishes the value
    };
    tree->implementorValueProvider = [cells = cells_](const Parameter &parameter) {
        return parameter.address() < cells.size() ? cells[parameter.address()]->value() : 0.0F;
    };
    setParameterTree(std::move(tree));
}

Status EffectUnit::allocateRenderResources() {
    if (const Status status = AudioUnit::allocateRenderResources(); status != statusOK)
        return status;
    Status status = statusOK;
    try {
        status = prepare(static_cast<float>(outputBus_.format().sampleRate));
    } catch (const std::bad_alloc &) {
        status = statusOutOfMemory;
    }
    if (status != statusOK)
        AudioUnit::deallocateRenderResources();
    return status;
}

void EffectUnit::takeSettings() noexcept {
    // Locking untouched cells would dominate a short block.
    const std::uint32_t touches = touches_->load(std::memory_order_acquire);
    if (std::exchange(takenTouches_, touches) == touches)
        return;
    for (const Cell &cell : cells_)
        cell->take();
}

Status EffectUnit::prepare(float) { return statusOK; }

} // namespace quorbel
