#include "cli/SettingsSource.h"

#include "cli/CommandError.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"

namespace quorbel {

namespace {

Persisted defaultSettings() {
    Persisted settings;
    settings.bands = EQBand::defaultBands();
    return settings;
}

} // namespace

Persisted loadSettings(const std::string &path) {
    const std::string file = path.empty() ? userSettingsPath() : path;
    try {
        return readSettingsFile(file);
    } catch (const SettingsFileError &error) {
        if (path.empty())
            return defaultSettings();
        throw CommandError(error.what());
    } catch (const DecodingError &error) {
        throw CommandError(file + ": " + error.what());
    }
}

ChainSettings chainSettings(const Persisted &settings) {
    return {.bands = settings.bands,
            .eqGlobalGainDB = settings.eqGlobalGainDB.value_or(0.0F),
            .spatial = settings.spatial,
            .mixer = settings.mixer.value_or(MixerConfig{})};
}

} // namespace quorbel
