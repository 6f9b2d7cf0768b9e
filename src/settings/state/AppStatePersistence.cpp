// The settings on their way into the file and back.

#include "settings/presets/FactoryPresets.h"
#include "settings/records/json/SettingsCoding.h"
#include "settings/state/AppState.h"
#include "settings/state/FileReplacement.h"
#include "settings/state/SetAside.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

namespace quorbel {

namespace {

/// A control that moves is written once, after it has come to rest.
constexpr double saveDelaySeconds = 0.5;

} // namespace

// Loading

void AppState::loadPersisted() {
    std::string text;
    try {
        text = readSettingsText(persistURL);
    } catch (const SettingsFileError &) {
        return; // most often a first start
    }
    Persisted record;
    try {
        record = decodeRecord<Persisted>(text);
    } catch (const DecodingError &) {
        const SetAside result = setAside(persistURL);
        fileIsKnown_ = !result.error;
        setPersistWarning("Saved settings were unreadable and were set aside as " + result.name +
                          ". Starting fresh.");
        return;
    }
    fileIsKnown_ = true;
    apply(record);
}

void AppState::apply(const Persisted &record) {
    engine_->eq().setBands(record.bands);
    engine_->setSpatial(record.spatial);
    if (record.mixer)
        engine_->setMixer(*record.mixer);
    if (record.eqGlobalGainDB)
        engine_->eq().setGlobalGainDB(*record.eqGlobalGainDB);
    if (record.outputDeviceUID)
        if (auto device = deviceManager_.outputDevice(*record.outputDeviceUID))
            engine_->setOutputDevice(std::move(device));
    applyPresets(record);
}

void AppState::applyPresets(const Persisted &record) {
    // The running version's library wins over the one that the file was written with.
    std::vector<Preset> presets = factoryPresets();
    std::ranges::copy_if(record.presets, std::back_inserter(presets), [](const Preset &preset) {
        return preset.category == Preset::Category::user;
    });
    setPresets(std::move(presets));

    setActivePresetID(record.activePresetID);
    if (activePreset() != nullptr)
        return;
    const auto named = std::ranges::find_if(
        presets_, [&](const Preset &preset) { return record.activePresetName == preset.name; });
    setActivePresetID(named != presets_.end() ? named->id : firstPresetID());
}

// Saving

/// Each setting waits for its own rest, so a change of two is written twice.
void AppState::observeSettings() {
    auto pending = pendingSaves_.begin();
    const auto observe = [&](const auto *owner, auto changed) {
        Timer &save = *pending++;
        connect(owner, changed, this, [this, &save] {
            save = Timer::once(clock_, saveDelaySeconds, [this] { persist(); });
        });
    };
    observe(&engine_->eq(), &EQProcessor::bandsChanged);
    observe(&engine_->eq(), &EQProcessor::globalGainDBChanged);
    observe(engine_.get(), &AudioEngine::spatialChanged);
    observe(engine_.get(), &AudioEngine::mixerChanged);
    observe(engine_.get(), &AudioEngine::outputDeviceChanged);
}

void AppState::persist() {
    try {
        const std::string text = encodeRecord(currentSettings());
        keepUnknownFile();
        replaceFile(persistURL, text);
        setPersistWarning(std::nullopt);
    } catch (const std::exception &error) {
        setPersistWarning(std::string("Settings could not be saved: ") + error.what());
    }
}

Persisted AppState::currentSettings() const {
    const Preset *active = activePreset();
    const auto &output = engine_->outputDevice();
    return {.bands = engine_->eq().bands(),
            .spatial = engine_->spatial(),
            .presets = presets_,
            .activePresetID = activePresetID_,
            .mixer = engine_->mixer(),
            .activePresetName = active != nullptr ? std::optional(active->name) : std::nullopt,
            .eqGlobalGainDB = engine_->eq().globalGainDB(),
            .outputDeviceUID = output ? std::optional(output->uid) : std::nullopt};
}

/// A file that could not be read at the start was passed over in silence, but it may be all that
/// the user ever set: it is moved, not replaced.
void AppState::keepUnknownFile() {
    std::error_code ignored;
    if (!fileIsKnown_ && std::filesystem::is_regular_file(persistURL, ignored))
        if (const SetAside result = setAside(persistURL); result.error)
            throw FileReplacementError(result.error.message());
    fileIsKnown_ = true;
}

void AppState::setPersistWarning(std::optional<std::string> warning) {
    if (warning == persistWarning_)
        return;
    persistWarning_ = std::move(warning);
    Q_EMIT persistWarningChanged();
}

} // namespace quorbel
