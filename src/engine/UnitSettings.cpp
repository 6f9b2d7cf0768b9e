#include "engine/UnitSettings.h"

#include "platform/units/AudioUnit.h"

namespace quorbel {
namespace {

constexpr float asSwitch(bool on) { return on ? 1.0F : 0.0F; }

// clang-format off
constexpr UnitSetting<SpatialConfig> spatialTable[]{
    {ChainUnit::widener,       0, [](const SpatialConfig &s) { return s.widenerEnabled ? s.widthPercent : 100.0F; }},
    {ChainUnit::spatializer,   0, [](const SpatialConfig &s) { return s.xtcEnabled ? s.xtcAmount : 0.0F; }},
    {ChainUnit::spatializer,   1, [](const SpatialConfig &s) { return s.xtcNotchFrequency; }},
    {ChainUnit::bassEnhancer,  0, [](const SpatialConfig &s) { return s.bassEnabled ? s.bassAmount : 0.0F; }},
    {ChainUnit::bassEnhancer,  1, [](const SpatialConfig &s) { return s.bassDrive; }},
    {ChainUnit::bassEnhancer,  2, [](const SpatialConfig &s) { return s.bassCrossover; }},
    {ChainUnit::bassEnhancer,  3, [](const SpatialConfig &s) { return asSwitch(s.bassAdaptiveEnabled); }},
    {ChainUnit::voiceEnhancer, 0, [](const SpatialConfig &s) { return s.voiceEnabled ? s.voiceAmount : 0.0F; }},
    {ChainUnit::voiceEnhancer, 1, [](const SpatialConfig &s) { return s.voicePresenceGainDB; }},
    {ChainUnit::voiceEnhancer, 2, [](const SpatialConfig &s) { return s.voiceMudCutDB; }},
    {ChainUnit::voiceEnhancer, 3, [](const SpatialConfig &s) { return asSwitch(s.voiceAdaptiveEnabled); }},
};

constexpr UnitSetting<MixerConfig> mixerTable[]{
    {ChainUnit::saturation, 0, [](const MixerConfig &m) { return m.saturationEnabled ? m.saturationDrive : 0.0F; }},
    {ChainUnit::crossfeed,  0, [](const MixerConfig &m) { return m.crossfeedEnabled ? m.crossfeedAmount : 0.0F; }},
    {ChainUnit::limiter,    0, [](const MixerConfig &m) { return m.limiterThresholdDB; }},
    {ChainUnit::limiter,    1, [](const MixerConfig &m) { return asSwitch(m.limiterEnabled); }},
    {ChainUnit::autoGain,   0, [](const MixerConfig &m) { return m.autoGainTargetDB; }},
    {ChainUnit::autoGain,   2, [](const MixerConfig &m) { return m.manualLoudnessDB; }},
    {ChainUnit::autoGain,   1, [](const MixerConfig &m) { return asSwitch(m.autoGainEnabled); }},
    {ChainUnit::autoGain,   3, [](const MixerConfig &m) { return asSwitch(m.manualLoudnessEnabled); }},
};
// clang-format on

template <typename Record>
void push(std::span<const UnitSetting<Record>> table, const Record &record, ChainUnit which,
          const AudioUnit &unit) {
    if (unit.parameterTree() == nullptr)
        return;
    for (const auto &setting : table)
        if (setting.unit == which)
            if (Parameter *parameter = unit.parameterTree()->parameterWithAddress(setting.address))
                parameter->setValue(setting.value(record));
}

} // namespace

std::span<const UnitSetting<SpatialConfig>> spatialUnitSettings() { return spatialTable; }

std::span<const UnitSetting<MixerConfig>> mixerUnitSettings() { return mixerTable; }

void pushSettings(const SpatialConfig &record, ChainUnit which, const AudioUnit &unit) {
    push(spatialUnitSettings(), record, which, unit);
}

void pushSettings(const MixerConfig &record, ChainUnit which, const AudioUnit &unit) {
    push(mixerUnitSettings(), record, which, unit);
}

} // namespace quorbel
