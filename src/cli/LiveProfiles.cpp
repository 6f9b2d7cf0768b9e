#include "cli/LiveProfiles.h"

#include "cli/CommandError.h"
#include "cli/CommandSettings.h"
#include "engine/AudioEngine.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"

namespace quorbel {

LiveProfiles::LiveProfiles(AudioEngine &engine, const Persisted &settings, const PresetGains &gains)
    : engine_(engine), presets_(availablePresets(settings)), gains_(gains),
      preset_(settings.activePresetID), profiles_(*this, userSettingsPath()) {
    try {
        profiles_.peek();
    } catch (const SettingsFileError &error) {
        throw CommandError(error.what());
    } catch (const DecodingError &error) {
        throw CommandError(profiles_.path() + ": " + error.what());
    }
    engine_.setOutputRule(&profiles_);
}

LiveProfiles::~LiveProfiles() { engine_.setOutputRule(nullptr); }

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
    preset_ = preset;
}

} // namespace quorbel
