#include "cli/ControlledLive.h"

#include "settings/records/SettingsFile.h"
#include "settings/state/FavouritePresetsFile.h"

namespace quorbel {

ControlledLive::ControlledLive(AudioEngine &engine, DeviceManager &devices,
                               std::optional<InstanceLock> &lock, LiveProfiles &profiles)
    : engine_(engine), devices_(devices), lock_(lock), profiles_(profiles) {
    for (const auto change : {&OutputProfiles::changed, &OutputProfiles::switched})
        connect(&profiles_.profiles(), change, this, &ControlledProgram::changed);
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
    profiles_.applyPreset(preset);
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
