// Reads and writes the settings file.

#include "settings/files/FileReplacement.h"
#include "settings/files/SettingsFileLock.h"
#include "settings/presets/FactoryPresets.h"
#include "settings/records/json/SettingsCoding.h"
#include "settings/state/AppState.h"
#include "settings/state/SharedSettingsFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorbel {

namespace {

/// Debounce time: a moving control is written once, after its last change.
constexpr double saveDelaySeconds = 0.5;

/// Delay before a second look: another program may write a file in pieces.
constexpr double secondLookSeconds = 1.0;

std::string movedAsideWarning(const MovedFile &moved) {
    return "Saved settings were unreadable and were set aside as " + moved.name +
           ". Starting fresh.";
}

} // namespace

// Loading

void AppState::loadPersisted() {
    try {
        if (const auto record = file_.readChange())
            apply(*record);
    } catch (const SettingsFileError &) {
        return; // the next save reports it
    } catch (const DecodingError &) {
        setPersistWarning(movedAsideWarning(moveAside(file_.path())));
    }
}

void AppState::apply(const Persisted &record) {
    {
        const auto change = engine_->changeSettings();
        engine_->eq().setBands(record.bands);
        engine_->setSpatial(record.spatial);
        if (record.mixer)
            engine_->setMixer(*record.mixer);
        if (record.eqGlobalGainDB)
            engine_->eq().setGlobalGainDB(*record.eqGlobalGainDB);
    }
    applyOutput(record);
    applyPresets(record);
    readPresetGains();
}

/// Reads the gains of presets and the current gain from their file.
void AppState::readPresetGains() {
    try {
        if (auto warning = gainsFile_.read())
            setPersistWarning(std::move(warning));
    } catch (const SettingsFileError &) {
        return; // the next save reports it
    }
    if (const float gainDB = gainsFile_.gains.inUse(activePresetID_);
        gainDB != engine_->eq().presetGainDB())
        engine_->eq().setPresetGainDB(gainDB);
}

/// Returns a warning if the write failed or a damaged file was set aside.
std::optional<std::string> AppState::writePresetGains() {
    const float inUseDB = engine_->eq().presetGainDB();
    gainsFile_.gains.applied.reset();
    if (activePresetID_ && inUseDB != gainsFile_.gains.of(*activePresetID_))
        gainsFile_.gains.applied = {activePresetID_->text(), inUseDB};
    try {
        return gainsFile_.write();
    } catch (const std::exception &error) {
        return std::string("The gains of presets could not be saved: ") + error.what();
    }
}

void AppState::readProfiles() {
    try {
        if (auto warning = profiles_.read())
            setPersistWarning(std::move(warning));
    } catch (const SettingsFileError &error) {
        // Without their profiles, outputs have unwanted settings.
        setPersistWarning(std::string("The profiles of the outputs could not be read: ") +
                          error.what());
    }
    const auto noteChange = [this] { profiles_.noteChange(); };
    connect(&engine_->eq(), &EQProcessor::bandsChanged, this, noteChange);
    connect(&engine_->eq(), &EQProcessor::presetGainDBChanged, this, noteChange);
    connect(engine_.get(), &AudioEngine::spatialChanged, this, noteChange);
    engine_->setOutputRule(&profiles_);
}

/// Returns a warning if the write failed or a damaged file was set aside.
std::optional<std::string> AppState::writeProfiles() {
    try {
        return profiles_.save();
    } catch (const std::exception &error) {
        return std::string("The profiles of the outputs could not be saved: ") + error.what();
    }
}

void AppState::readProgramRules() {
    try {
        if (auto warning = rulesFile_.read())
            setPersistWarning(std::move(warning));
    } catch (const SettingsFileError &error) {
        setPersistWarning(std::string("The rules of programs could not be read: ") + error.what());
    }
    programRules_ = rulesFile_.rules();
    hardware_.setProgramRules(programRules_);
}

void AppState::setProgramRules(const ProgramRules &rules) {
    if (rules == programRules())
        return;
    programRules_ = rules;
    try {
        if (auto warning = rulesFile_.write(rules))
            setPersistWarning(std::move(warning));
        programRules_ = rulesFile_.rules(); // with another program's changes
    } catch (const std::exception &error) {
        setPersistWarning(std::string("The rules of programs could not be saved: ") + error.what());
    }
    hardware_.setProgramRules(programRules_);
    Q_EMIT programRulesChanged();
}

/// Does not select a missing device, but keeps the choice.
void AppState::applyOutput(const Persisted &record) {
    if (record.outputDeviceUID)
        if (auto device = deviceManager_.outputDevice(*record.outputDeviceUID))
            engine_->setOutputDevice(std::move(device));
    if (auto chosen = choiceFile_.chosenUID(record.outputDeviceUID);
        chosen != engine_->outputChoice())
        engine_->restoreOutputChoice(std::move(chosen));
    seen_.outputDeviceUID = record.outputDeviceUID;
}

void AppState::applyPresets(const Persisted &record) {
    // The running version's factory presets replace those in the file.
    std::vector<Preset> presets = factoryPresets();
    std::ranges::copy_if(record.presets, std::back_inserter(presets), [](const Preset &preset) {
        return preset.category == Preset::Category::user;
    });
    setPresets(std::move(presets));

    setActivePreset(record.activePresetID, record.activePresetName);
}

void AppState::setActivePreset(std::optional<Uuid> id, const std::optional<std::string> &name) {
    const auto isIn = [this](const auto &found) { return found != presets_.end(); };
    if (!id || !isIn(std::ranges::find(presets_, *id, &Preset::id))) {
        const auto named = std::ranges::find_if(
            presets_, [&](const Preset &preset) { return name == preset.name; });
        id = isIn(named) ? named->id : firstPresetID();
    }
    setActivePresetID(id);
}

// Saving

/// Debounces each setting separately, so a change of two is written twice.
void AppState::observeSettings() {
    auto pending = pendingSaves_.begin();
    const auto observe = [&](const auto *owner, auto changed) {
        Timer &save = *pending++;
        connect(owner, changed, this, [this, &save] {
            if (isTaking_)
                return; // the file already has the change
            save = Timer::once(clock_, saveDelaySeconds, [this] { persist(); });
        });
    };
    observe(&engine_->eq(), &EQProcessor::bandsChanged);
    observe(&engine_->eq(), &EQProcessor::globalGainDBChanged);
    observe(&engine_->eq(), &EQProcessor::presetGainDBChanged);
    observe(engine_.get(), &AudioEngine::spatialChanged);
    observe(engine_.get(), &AudioEngine::mixerChanged);
    observe(engine_.get(), &AudioEngine::outputDeviceChanged);
}

void AppState::persist() {
    try {
        requireFileOrNothing(file_.path());
        const SettingsFileLock lock(file_.path());
        auto warning = takeUnseenOrMoveAside();
        if (auto profilesWarning = writeProfiles())
            warning = std::move(profilesWarning);
        // Gains first: bands without their gain would be too loud.
        if (auto gainsWarning = writePresetGains())
            warning = std::move(gainsWarning);
        Persisted record = currentSettings();
        const auto &chosen = engine_->outputChoice();
        choiceFile_.prepare(chosen, seen_.outputDeviceUID, record.outputDeviceUID);
        file_.write(record);
        choiceFile_.finish(chosen, record.outputDeviceUID);
        seen_ = std::move(record);
        setPersistWarning(std::move(warning));
    } catch (const SettingsFileError &error) {
        setPersistWarning(fmt::format("Settings could not be saved: {}. The file is left as it is.",
                                      error.what()));
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

// Changes by other programs

void AppState::takeFileChanges() {
    takeSideChanges(profilesLook_, &AppState::takeProfileChanges);
    takeSideChanges(rulesLook_, &AppState::takeRuleChanges);
    try {
        if (const auto theirs = file_.readChange())
            take(*theirs);
        unreadableLook_.invalidate();
    } catch (const SettingsFileError &) {
        return; // the next save reports it
    } catch (const DecodingError &) {
        unreadableLook_ =
            Timer::once(clock_, secondLookSeconds, [this] { moveAsideIfUnreadable(); });
    }
}

void AppState::takeProfileChanges() {
    if (profiles_.takeFileChanges())
        engine_->followOutputRule();
}

void AppState::takeRuleChanges() {
    const ProgramRules before = rulesFile_.rules();
    rulesFile_.peek();
    if (rulesFile_.rules() == before)
        return;
    programRules_ = rulesFile_.rules();
    hardware_.setProgramRules(programRules_);
    Q_EMIT programRulesChanged();
}

/// Reads a file beside the settings with `takeOne`. Warns only after a second look, because a
/// damaged file may be half-written.
void AppState::takeSideChanges(SideLook &look, void (AppState::*takeOne)()) {
    look.again.invalidate();
    try {
        (this->*takeOne)();
    } catch (const SettingsFileError &) {
        return; // the next save reports it
    } catch (const DecodingError &) {
        look.again = Timer::once(clock_, secondLookSeconds, [this, &look, takeOne] {
            try {
                (this->*takeOne)();
            } catch (const SettingsFileError &) {
                return;
            } catch (const DecodingError &error) {
                setPersistWarning(fmt::format("{} stay as they were: {}: {}", look.content,
                                              look.path, error.what()));
            }
        });
    }
}

void AppState::moveAsideIfUnreadable() {
    try {
        const SettingsFileLock lock(file_.path());
        if (auto warning = takeUnseenOrMoveAside())
            setPersistWarning(std::move(warning));
    } catch (const std::exception &) {
        return; // the next save reports it
    }
}

/// Needs the lock. Returns a warning if a damaged file was moved. Throws FileReplacementError if it
/// cannot be moved, and SettingsFileError if it cannot be read.
std::optional<std::string> AppState::takeUnseenOrMoveAside() {
    try {
        if (const auto theirs = file_.readChange())
            take(*theirs);
        return std::nullopt;
    } catch (const DecodingError &) {
        const MovedFile moved = moveAside(file_.path());
        if (moved.error)
            throw FileReplacementError(moved.error.message());
        return movedAsideWarning(moved);
    }
}

void AppState::take(const Persisted &theirs) {
    const Persisted ours = currentSettings();
    const Persisted merged = mergedSettings(seen_, ours, theirs);
    const bool isOutputTheirs = ours.outputDeviceUID == seen_.outputDeviceUID &&
                                theirs.outputDeviceUID != seen_.outputDeviceUID;
    const bool isActiveTheirs = ours.activePresetID == seen_.activePresetID;
    Persisted before = std::exchange(seen_, theirs);
    if (!seen_.mixer)
        seen_.mixer = before.mixer;
    if (!seen_.eqGlobalGainDB)
        seen_.eqGlobalGainDB = before.eqGlobalGainDB;

    isTaking_ = true;
    if (merged.presets != ours.presets) {
        setPresets(merged.presets);
        Q_EMIT presetsTaken(ours.presets, merged.presets);
    }
    if (merged.activePresetID != activePresetID_ || activePreset() == nullptr)
        setActivePreset(merged.activePresetID, merged.activePresetName);
    if (isActiveTheirs)
        seen_.activePresetID = activePresetID_;
    const bool isGainTheirs = isActiveTheirs && activePresetID_ != ours.activePresetID;
    takeSound(ours, merged, isGainTheirs);
    if (isOutputTheirs)
        takeOutput(theirs.outputDeviceUID);
    isTaking_ = false;
}

void AppState::takeSound(const Persisted &ours, const Persisted &merged, bool isGainTheirs) {
    const auto change = engine_->changeSettings();
    if (isGainTheirs)
        readPresetGains();
    if (merged.eqGlobalGainDB != ours.eqGlobalGainDB)
        engine_->eq().setGlobalGainDB(*merged.eqGlobalGainDB);
    if (merged.bands != ours.bands) {
        engine_->eq().setBands(merged.bands);
        takeOverBandIDs();
        seen_.bands = engine_->eq().bands();
    }
    if (merged.spatial != ours.spatial)
        engine_->setSpatial(merged.spatial);
    if (merged.mixer != ours.mixer)
        engine_->setMixer(*merged.mixer);
}

/// Follows another program's choice of output; ignores a device of another machine.
void AppState::takeOutput(const std::optional<std::string> &uid) {
    choiceFile_ = OutputChoiceFile(file_.path());
    const auto chosen = choiceFile_.chosenUID(uid);
    if (chosen && chosen != engine_->outputChoice())
        if (auto device = deviceManager_.outputDevice(*chosen))
            engine_->setOutputDevice(std::move(device));
}

void AppState::setPersistWarning(std::optional<std::string> warning) {
    if (!warning && !persistWarning_)
        return;
    persistWarning_ = std::move(warning);
    Q_EMIT persistWarningChanged();
}

} // namespace quorbel
