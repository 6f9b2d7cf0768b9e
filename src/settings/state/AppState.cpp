#include "settings/state/AppState.h"

#include "settings/presets/FactoryPresets.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorbel {

AppState::AppState(AudioHardware &hardware, Clock &clock, std::string settingsPath)
    : hardware_(hardware), clock_(clock), file_(std::move(settingsPath)), choiceFile_(file_.path()),
      gainsFile_(file_.path()), rulesFile_(file_.path()), presets_(factoryPresets()),
      deviceManager_(hardware, clock), profiles_(*this, file_.path()),
      engine_(
          std::make_unique<AudioEngine>(hardware, deviceManager_, clock, EQBand::defaultBands())) {
    activePresetID_ = firstPresetID();
    loadPersisted();
    takeOverBandIDs();
    const auto uidInFile = std::move(seen_.outputDeviceUID);
    seen_ = currentSettings();
    seen_.outputDeviceUID = uidInFile;
    observeSettings();
    readProfiles();
    readProgramRules();
}

AppState::~AppState() = default;

bool AppState::isActivePresetUnchanged() const {
    const Preset *active = activePreset();
    return active != nullptr && engine_->eq().bands() == active->bands &&
           engine_->spatial() == active->spatial;
}

std::string AppState::activePresetDisplayName() const {
    return isActivePresetUnchanged() ? activePreset()->name : "Custom";
}

void AppState::applyPreset(const Preset &preset) {
    const Preset applied = preset; // may be an element of our list, which observers may change
    const auto change = engine_->changeSettings();
    engine_->eq().setBands(applied.bands);
    engine_->setSpatial(applied.spatial);
    if (const float gainDB = gainsFile_.gains.of(applied.id);
        gainDB != engine_->eq().presetGainDB())
        engine_->eq().setPresetGainDB(gainDB);
    setActivePresetID(applied.id);
}

OutputSound AppState::liveSound() const {
    return {.bands = engine_->eq().bands(),
            .spatial = engine_->spatial(),
            .presetGainDB = engine_->eq().presetGainDB()};
}

void AppState::play(const OutputSound &sound, const std::optional<Uuid> &preset) {
    const auto change = engine_->changeSettings();
    engine_->eq().setBands(sound.bands);
    if (sound.presetGainDB != engine_->eq().presetGainDB())
        engine_->eq().setPresetGainDB(sound.presetGainDB);
    engine_->setSpatial(sound.spatial);
    setActivePresetID(preset);
}

void AppState::assignProfile(const OutputKey &key, const std::string &label, OutputProfile::Use use,
                             const std::optional<Uuid> &preset) {
    profiles_.assign(key, label, use, preset);
    engine_->followOutputRule();
    persist();
}

void AppState::forgetProfile(const OutputKey &key) {
    profiles_.forget(key);
    engine_->followOutputRule();
    persist();
}

void AppState::savePreset(const std::string &name) {
    Preset saved{.id = Uuid::random(),
                 .name = name,
                 .category = Preset::Category::user,
                 .createdAt = Date::now(),
                 .bands = engine_->eq().bands(),
                 .spatial = engine_->spatial()};
    const Uuid id = saved.id;
    std::vector<Preset> presets = presets_;
    presets.push_back(std::move(saved));
    setPresetGainDB(id, engine_->eq().presetGainDB());
    setPresets(std::move(presets));
    setActivePresetID(id);
    persist();
}

void AppState::deletePreset(const Preset &preset) {
    if (preset.category != Preset::Category::user)
        return;
    std::vector<Preset> remaining = presets_;
    std::erase_if(remaining, [&](const Preset &candidate) { return candidate.id == preset.id; });
    setUserPresets(std::move(remaining));
}

void AppState::setUserPresets(std::vector<Preset> presets) {
    const auto isUsers = [](const Preset &preset) {
        return preset.category == Preset::Category::user;
    };
    std::vector<Preset> all = presets_;
    std::erase_if(all, isUsers);
    std::ranges::copy_if(presets, std::back_inserter(all), isUsers);
    setPresets(std::move(all));
    if (activePreset() == nullptr)
        setActivePresetID(firstPresetID());
    persist();
}

const Preset *AppState::activePreset() const {
    if (!activePresetID_)
        return nullptr;
    const auto found = std::ranges::find(presets_, *activePresetID_, &Preset::id);
    return found == presets_.end() ? nullptr : &*found;
}

std::optional<Uuid> AppState::firstPresetID() const {
    return presets_.empty() ? std::nullopt : std::optional(presets_.front().id);
}

void AppState::setPresets(std::vector<Preset> presets) {
    profiles_.keepSoundsOfGone(presets);
    presets_ = std::move(presets);
    Q_EMIT presetsChanged();
}

void AppState::setActivePresetID(std::optional<Uuid> id) {
    activePresetID_ = id;
    profiles_.noteChange();
    Q_EMIT activePresetIDChanged();
}

void AppState::takeOverBandIDs() {
    const std::vector<EQBand> &bands = engine_->eq().bands();
    const Preset *active = activePreset();
    if (active == nullptr)
        return;
    if (std::vector<EQBand> renamed = withIDsOf(active->bands, bands); renamed != bands)
        engine_->eq().setBands(std::move(renamed));
}

} // namespace quorbel
