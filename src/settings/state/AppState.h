#pragma once

#include "devices/DeviceManager.h"
#include "engine/AudioEngine.h"
#include "platform/threads/Timer.h"
#include "settings/records/Persisted.h"
#include "settings/records/SettingsFile.h"
#include "settings/state/OutputChoiceFile.h"
#include "settings/state/OutputProfiles.h"
#include "settings/state/PresetGainsFile.h"
#include "settings/state/ProgramRulesFile.h"
#include "settings/state/SharedSettingsFile.h"

#include <QObject>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// The program's single long-lived model object: owns the devices, the engine and the presets, and
/// keeps the settings file up to date. Watches the engine's live settings and writes them half a
/// second after a change. Merges other programs' changes of the file before each save; our changes
/// win field by field. All calls [main].
class AppState final : public QObject, private ProfileSettings {
    Q_OBJECT

  public:
    /// Loads the settings file if there is one. Never starts processing. Hardware and clock must
    /// outlive it.
    AppState(AudioHardware &hardware, Clock &clock, std::string settingsPath = userSettingsPath());
    ~AppState() override;

    [[nodiscard]] DeviceManager &deviceManager() { return deviceManager_; }
    [[nodiscard]] AudioEngine &engine() { return *engine_; }

    /// The output profiles; the engine follows an assigned or forgotten one at once.
    [[nodiscard]] const OutputProfiles &profiles() const { return profiles_; }
    void assignProfile(const OutputKey &key, const std::string &label, OutputProfile::Use use,
                       const std::optional<Uuid> &preset = {});
    void forgetProfile(const OutputKey &key);

    /// The rules about the programs to process.
    [[nodiscard]] const ProgramRules &programRules() const { return programRules_; }
    /// Applies the rules to the hardware and writes them at once; a failure is a warning.
    void setProgramRules(const ProgramRules &rules);
    [[nodiscard]] const std::string &programRulesPath() const { return rulesFile_.path(); }
    [[nodiscard]] AudioHardware &hardware() { return hardware_; }

    /// The factory library, then the user's own.
    [[nodiscard]] const std::vector<Preset> &presets() const { return presets_; }
    /// The preset last applied or saved.
    [[nodiscard]] const std::optional<Uuid> &activePresetID() const { return activePresetID_; }
    /// True if bands and spatial settings are the active preset's own.
    [[nodiscard]] bool isActivePresetUnchanged() const;
    /// The active preset's name, or "Custom" if bands or spatial settings differ from it. Changes
    /// with these settings and with this object's signals.
    [[nodiscard]] std::string activePresetDisplayName() const;

    /// Sets bands, spatial settings and the preset's gain; mixer, global gain and output stay.
    void applyPreset(const Preset &preset);
    /// The presets' own gains. The current gain is the equaliser's `presetGainDB`; changing it does
    /// not change the preset.
    [[nodiscard]] const PresetGains &presetGains() const { return gainsFile_.gains; }
    /// Sets the preset's own gain, not the current one. Written with the next save.
    void setPresetGainDB(const Uuid &preset, float gainDB) { gainsFile_.gains.set(preset, gainDB); }
    /// Saves the current bands, spatial settings and preset gain as a user preset and activates it.
    /// Takes the name (UTF-8) as given. Written at once.
    void savePreset(const std::string &name);
    /// Ignores factory presets. Written at once.
    void deletePreset(const Preset &preset);
    /// Replaces all user presets with `presets` in this order; ignores other categories. Activates
    /// the first preset if the active one is gone. Written at once.
    void setUserPresets(std::vector<Preset> presets);

    /// Writes the settings file now. A failure is a warning, and the next change retries. Fails
    /// without changing an existing file that cannot be read.
    void persist();
    /// Takes another program's changes of the settings file, the profiles and the rules of
    /// programs. Sets a settings file aside with a warning if it is still invalid a second later:
    /// its writer may need that time. Ignores damaged profiles and rules with a warning.
    void takeFileChanges();
    [[nodiscard]] const std::string &settingsPath() const { return file_.path(); }
    /// The last load or save problem. A successful save clears it unless it set a file aside.
    [[nodiscard]] const std::optional<std::string> &persistWarning() const {
        return persistWarning_;
    }

  Q_SIGNALS:
    void presetsChanged();
    void programRulesChanged();
    void activePresetIDChanged();
    void persistWarningChanged(); ///< also for a repeated warning
    /// Another program's changes have turned the presets `before` into `after`.
    void presetsTaken(const std::vector<quorbel::Preset> &before,
                      const std::vector<quorbel::Preset> &after);

  private:
    [[nodiscard]] const Preset *activePreset() const;
    [[nodiscard]] std::optional<Uuid> firstPresetID() const;
    void setPresets(std::vector<Preset> presets);
    void setActivePresetID(std::optional<Uuid> id);
    void takeOverBandIDs();

    // ProfileSettings
    [[nodiscard]] OutputSound liveSound() const override;
    [[nodiscard]] std::optional<Uuid> livePreset() const override { return activePresetID_; }
    void play(const OutputSound &sound, const std::optional<Uuid> &preset) override;
    [[nodiscard]] const std::vector<Preset> &knownPresets() const override { return presets_; }
    [[nodiscard]] float presetGainDB(const Uuid &preset) const override {
        return gainsFile_.gains.of(preset);
    }

    // AppStatePersistence.cpp
    void loadPersisted();
    void apply(const Persisted &record);
    void applyPresets(const Persisted &record);
    void setActivePreset(std::optional<Uuid> id, const std::optional<std::string> &name);
    void applyOutput(const Persisted &record);
    void take(const Persisted &theirs);
    void takeSound(const Persisted &ours, const Persisted &merged, bool isGainTheirs);
    void takeOutput(const std::optional<std::string> &uid);
    void moveAsideIfUnreadable();
    [[nodiscard]] std::optional<std::string> takeUnseenOrMoveAside();
    [[nodiscard]] Persisted currentSettings() const;
    void observeSettings();
    void readPresetGains();
    std::optional<std::string> writePresetGains();
    void readProfiles();
    struct SideLook {
        std::string content;
        std::string path;
        Timer again{};
    };
    void takeSideChanges(SideLook &look, void (AppState::*takeOne)());
    void takeProfileChanges();
    void takeRuleChanges();
    std::optional<std::string> writeProfiles();
    void readProgramRules();
    void setPersistWarning(std::optional<std::string> warning);

    AudioHardware &hardware_;
    Clock &clock_;
    SharedSettingsFile file_;
    OutputChoiceFile choiceFile_;
    PresetGainsFile gainsFile_;
    ProgramRulesFile rulesFile_;
    ProgramRules programRules_; ///< including unsaved changes
    std::vector<Preset> presets_;
    std::optional<Uuid> activePresetID_;
    std::optional<std::string> persistWarning_;
    /// The settings in the file at its last read or write; differences from them are our changes.
    Persisted seen_;
    bool isTaking_ = false; ///< the current changes come from the file
    Timer unreadableLook_;

    std::array<Timer, 6> pendingSaves_; ///< one per watched setting
    DeviceManager deviceManager_;
    OutputProfiles profiles_;
    SideLook profilesLook_{"The profiles of the outputs", profiles_.path()};
    SideLook rulesLook_{"The rules of programs", rulesFile_.path()};
    std::unique_ptr<AudioEngine> engine_; ///< after the profiles, which it queries
};

} // namespace quorbel
