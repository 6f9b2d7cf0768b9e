#include "cli/ControlledLive.h"

#include "settings/records/SettingsFile.h"
#include "settings/state/FavouritePresetsFile.h"

#include <algorithm>
#include <utility>

namespace quorbel {

ControlledLive::ControlledLive(AudioEngine &engine, DeviceManager &devices,
                               std::optional<InstanceLock> &lock, const Persisted &settings,
                               PresetGains gains)
    : engine_(engine), devices_(devices), lock_(lock), presets_(settings.presets),
      gains_(std::move(gains)) {
    auto active = std::ranges::find_if(
        presets_, [&](const Preset &preset) { return settings.activePresetID == preset.id; });
    if (active == presets_.end())
        active = std::ranges::find_if(presets_, [&](const Preset &preset) {
            return settings.activePresetName == preset.name;
        });
    if (active == presets_.end())
        active = presets_.begin();
    activePresetID_ = active->id;
    engine_.eq().setBands(withIDsOf(active->bands, engine_.eq().bands()));
    connect(&engine_, &AudioEngine::stateChanged, this, [this] {
        const bool isRunning = engine_.state().kind == EngineLifecycle::State::Kind::running;
        if (isRunning)
            wasStartAsked_ = false;
        else if (!engine_.isComingBack() && !engine_.isLeavingAlone())
            lock_.reset();
    });
}

std::vector<Uuid> ControlledLive::favourites() const {
    return FavouritePresetsFile::idsIn(userSettingsPath());
}

void ControlledLive::applyPreset(const Preset &preset) {
    const auto change = engine_.changeSettings();
    engine_.eq().setBands(preset.bands);
    engine_.setSpatial(preset.spatial);
    engine_.eq().setPresetGainDB(gains_.of(preset.id));
    activePresetID_ = preset.id;
    Q_EMIT changed();
}

std::string ControlledLive::start() {
    if (!lock_)
        lock_.emplace();
    if (!lock_->isHeld()) {
        lock_.reset();
        return "another Ostrafine is running and processes the sound; stop that one first";
    }
    wasStartAsked_ = true;
    engine_.start();
    return {};
}

} // namespace quorbel
