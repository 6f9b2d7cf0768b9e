#include "cli/ControlledLive.h"

#include "cli/CommandSettings.h"
#include "engine/AudioEngine.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"
#include "settings/state/FavouritePresetsFile.h"

#include <algorithm>
#include <utility>

namespace quorbel {

namespace {

/// Finds the active preset by its id, else by its name, else takes the first.
const Preset &activePresetOf(const Persisted &settings) {
    auto active = std::ranges::find_if(settings.presets, [&](const Preset &preset) {
        return settings.activePresetID == preset.id;
    });
    if (active == settings.presets.end())
        active = std::ranges::find_if(settings.presets, [&](const Preset &preset) {
            return settings.activePresetName == preset.name;
        });
    return active == settings.presets.end() ? settings.presets.front() : *active;
}

} // namespace

LiveProfiles::LiveProfiles(AudioEngine &engine, const Persisted &settings, PresetGains gains)
    : engine_(engine), presets_(settings.presets), gains_(std::move(gains)),
      profiles_(*this, userSettingsPath()) {
    const Preset &active = activePresetOf(settings);
    activePresetID_ = active.id;
    engine_.eq().setBands(withIDsOf(active.bands, engine_.eq().bands()));
    const auto noteChange = [this] { profiles_.noteChange(); };
    QObject::connect(&engine_.eq(), &EQProcessor::bandsChanged, &profiles_, noteChange);
    QObject::connect(&engine_.eq(), &EQProcessor::presetGainDBChanged, &profiles_, noteChange);
    QObject::connect(&engine_, &AudioEngine::spatialChanged, &profiles_, noteChange);
}

LiveProfiles::~LiveProfiles() { engine_.setOutputRule(nullptr); }

void LiveProfiles::follow() {
    peekOrError(profiles_);
    engine_.setOutputRule(&profiles_);
}

void LiveProfiles::applyPreset(const Preset &preset) {
    {
        const auto change = engine_.changeSettings();
        engine_.eq().setBands(preset.bands);
        engine_.setSpatial(preset.spatial);
        engine_.eq().setPresetGainDB(gains_.of(preset.id));
    }
    activePresetID_ = preset.id;
    profiles_.noteChange();
}

OutputSound LiveProfiles::liveSound() const {
    return {.bands = engine_.eq().bands(),
            .spatial = engine_.spatial(),
            .presetGainDB = engine_.eq().presetGainDB()};
}

void LiveProfiles::play(const OutputSound &sound, const std::optional<Uuid> &preset) {
    const auto change = engine_.changeSettings();
    engine_.eq().setBands(sound.bands);
    engine_.eq().setPresetGainDB(sound.presetGainDB);
    engine_.setSpatial(sound.spatial);
    activePresetID_ = preset;
}

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
