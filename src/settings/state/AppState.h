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

/// The program's one long-lived model object: owns the devices and the engine, keeps the presets,
/// and the settings file up to date. The live settings themselves are the engine's; this watches
/// them and writes them half a second after a change. Other programs may write the file too: their
/// changes are taken before each save, and changes made here win field by field. All calls [main].
class AppState final : public QObject, private ProfileSettings {
    Q_OBJECT

  public:
    /// Takes the settings from the file, if there is one. Never starts processing. Hardware and
    /// clock must outlive it.
    AppState(AudioHardware &hardware, Clock &clock, std::string settingsPath = userSettingsPath());
    ~AppState() override;

    [[nodiscard]] DeviceManager &deviceManager() { return deviceManager_; }
    [[nodiscard]] AudioEngine &engine() { return *engine_; }

    /// The profiles of the outputs. With the engine following them, after a change of them.
    [[nodiscard]] const OutputProfiles &profiles() const { return profiles_; }
    void assignProfile(const OutputKey &key, const std::string &label, OutputProfile::Use use,
                       const std::optional<Uuid> &preset = {});
    void forgetProfile(const OutputKey &key);

    /// Which programs are processed.
    [[nodiscard]] const ProgramRules &programRules() const { return programRules_; }
    /// The hardware follows at once. Written at once; a failure is a warning.
    void setProgramRules(const ProgramRules &rules);
    [[nodiscard]] const std::string &programRulesPath() const { return rulesFile_.path(); }
    [[nodiscard]] AudioHardware &hardware() { return hardware_; }

    /// The factory library, then the user's own.
    [[nodiscard]] const std::vector<Preset> &presets() const { return presets_; }
    /// The preset last applied or saved.
    [[nodiscard]] const std::optional<Uuid> &activePresetID() const { return activePresetID_; }
    /// True if bands and spatial settings are the active preset's own.
    [[nodiscard]] bool isActivePresetUnchanged() const;
    /// The active preset's name, or "Custom" where bands or spatial settings are no longer its own.
    /// Changes with those two and with this object's signals.
    [[nodiscard]] std::string activePresetDisplayName() const;

    /// Sets bands, spatial settings and the preset's gain; mixer, global gain and output stay.
    void applyPreset(const Preset &preset);
    /// The gains that presets bring when they are applied. The gain in use is the equaliser's
    /// `presetGainDB`, which may be changed without changing the preset.
    [[nodiscard]] const PresetGains &presetGains() const { return gainsFile_.gains; }
    /// Sets what the preset brings from now on; the gain in use stays. Written with the next save.
    void setPresetGainDB(const Uuid &preset, float gainDB) { gainsFile_.gains.set(preset, gainDB); }
    /// Makes the current bands, spatial settings and preset gain a preset of the user's, and that
    /// the active one. The name (UTF-8) is taken as given. Written at once.
    void savePreset(const std::string &name);
    /// Factory presets stay. Written at once.
    void deletePreset(const Preset &preset);
    /// Replaces all of the user's own presets with `presets`, in this order; entries of another
    /// category are left out. Where the active preset is gone, the first one is active. Written at
    /// once.
    void setUserPresets(std::vector<Preset> presets);

    /// Writes the settings file now. A failure is a warning, and the next change tries again. A
    /// file that is there but cannot be read is left as it is, and the save fails.
    void persist();
    /// Takes another program's changes of the settings file, the profiles and the rules of
    /// programs. Text that is no settings record is set aside a second later, with a warning, if it
    /// is still there: its writer may not have come to the end. Unreadable profiles and rules stay
    /// as they are, with a warning.
    void takeFileChanges();
    [[nodiscard]] const std::string &settingsPath() const { return file_.path(); }
    /// The last load or save problem; none when the last save succeeded, unless that save had to
    /// set a file aside.
    [[nodiscard]] const std::optional<std::string> &persistWarning() const {
        return persistWarning_;
    }

  Q_SIGNALS:
    void presetsChanged();
    void programRulesChanged();
    void activePresetIDChanged();
    void persistWarningChanged(); ///< also where a save fails like the one before
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
    ProgramRules programRules_; ///< with what could not be written
    std::vector<Preset> presets_;
    std::optional<Uuid> activePresetID_;
    std::optional<std::string> persistWarning_;
    /// The settings in the file when it was last read or written; differences from them were made
    /// here.
    Persisted seen_;
    bool isTaking_ = false; ///< changes come from the file at present
    Timer unreadableLook_;

    std::array<Timer, 6> pendingSaves_; ///< one for each watched setting
    DeviceManager deviceManager_;
    OutputProfiles profiles_;
    SideLook profilesLook_{"The profiles of the outputs", profiles_.path()};
    SideLook rulesLook_{"The rules of programs", rulesFile_.path()};
    std::unique_ptr<AudioEngine> engine_; ///< after the profiles, which it asks
};

} // namespace quorbel
