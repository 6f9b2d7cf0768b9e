#include "engine/ProbeUnits.h"

#include "platform/units/UnitStatus.h"

#include <algorithm>
#include <memory>

namespace quorbel::testing {
namespace {

constexpr EffectParameter anything(const char *name) {
    return {.identifier = name,
            .name = name,
            .minimum = -1e6F,
            .maximum = 1e6F,
            .unit = ParameterUnit::generic,
            .defaultValue = ProbeUnits::untouched};
}

constexpr EffectParameter table[]{anything("0"), anything("1"), anything("2"), anything("3")};

class ProbeUnit final : public EffectUnit {
  public:
    ProbeUnit(ProbeUnits &probes, ChainUnit which, const ComponentDescription &description,
              InstantiationOptions options)
        : EffectUnit(description, options, table), probes_(probes), which_(which) {
        ++probes.made[which];
    }

    float readout() const noexcept override { return probes_.readouts[which_]; }

    RenderBlock internalRenderBlock() override {
        return effectRenderBlock([this](AudioBufferList &buffers, std::uint32_t) noexcept {
            if (std::ranges::count(probes_.rendered, which_) > 0)
                return;
            probes_.rendered.push_back(which_);
            probes_.firstSample[which_] = buffers.data[0][0];
        });
    }

  protected:
    Status prepare(float, std::string &) override {
        probes_.valuesAtAllocation[which_] = values(this);
        return statusOK;
    }

  private:
    ProbeUnits &probes_;
    ChainUnit which_;
};

} // namespace

void ProbeUnits::registerAll(AudioUnitRegistry &registry) {
    for (std::size_t index = 0; index < chainUnitCount; ++index) {
        const auto which = static_cast<ChainUnit>(index);
        registry.registerSubclass(
            [this, which](const ComponentDescription &description,
                          InstantiationOptions options) -> std::unique_ptr<AudioUnit> {
                if (absent.contains(which))
                    throw AudioUnitError(statusOutOfMemory, "absent");
                return std::make_unique<ProbeUnit>(*this, which, description, options);
            },
            chainUnitDescriptions[index], "Probe", 1);
    }
}

std::vector<float> values(const AudioUnit *unit) {
    std::vector<float> result;
    if (unit != nullptr)
        for (const auto &parameter : unit->parameterTree()->allParameters())
            result.push_back(parameter->value());
    return result;
}

} // namespace quorbel::testing
