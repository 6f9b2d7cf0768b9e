#include "effects/ReverbProcessor.h"

#include <array>

namespace quorbel {

namespace {

/// In the order of the settings' cases, which differs from the factory numbers' order.
constexpr std::array roomModels{RoomModel::smallRoom,  RoomModel::mediumRoom, RoomModel::largeRoom,
                                RoomModel::mediumHall, RoomModel::largeHall,  RoomModel::cathedral,
                                RoomModel::plate};
static_assert(roomModels.size() == SpatialConfig::allReverbPresets.size());

} // namespace

ReverbProcessor::ReverbProcessor() {
    reloadPreset();
    reverb_.setWetDryMix(0.0F);
}

void ReverbProcessor::setMix(float mix) {
    mix_ = mix;
    reverb_.setWetDryMix(mix);
    Q_EMIT mixChanged();
}

void ReverbProcessor::setPreset(ReverbPreset preset) {
    const bool differs = preset != preset_;
    preset_ = preset;
    if (differs)
        reloadPreset();
    Q_EMIT presetChanged();
}

void ReverbProcessor::reloadPreset() {
    reverb_.loadFactoryPreset(roomModels.at(static_cast<std::size_t>(preset_)));
    ++presetReloadCount_;
}

} // namespace quorbel
