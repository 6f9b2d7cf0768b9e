#pragma once

#include "engine/OutputRule.h"
#include "settings/records/OutputProfile.h"
#include "settings/records/Preset.h"
#include "settings/state/OutputProfilesFile.h"

#include <QObject>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// The live settings and the presets, as the profiles of outputs see them.
class ProfileSettings {
  public:
    virtual ~ProfileSettings() = default;

    [[nodiscard]] virtual OutputSound liveSound() const = 0;
    [[nodiscard]] virtual std::optional<Uuid> livePreset() const = 0;
    /// All of it in one change; `preset` becomes the active one.
    virtual void play(const OutputSound &sound, const std::optional<Uuid> &preset) = 0;
    [[nodiscard]] virtual const std::vector<Preset> &knownPresets() const = 0;
    [[nodiscard]] virtual float presetGainDB(const Uuid &preset) const = 0;
};

/// The profiles of the outputs at work: decides what each output is used for, plays its profile's
/// settings, and keeps the user's changes of them in the profile. Without profiles it does nothing.
///
/// 1. The live settings belong to one profile, or to none.
/// 2. A change of them is a change of that profile.
/// 3. Settings that belong to none become the profile of any other output before a profile's
///    settings take their place, so that nothing is lost.
/// 4. On an output without a profile, or left alone, the settings stay, and belong to the same
///    profile as before.
///
/// All calls [main].
class OutputProfiles final : public QObject, public OutputRule {
    Q_OBJECT

  public:
    /// Without profiles until `read`. `settings` must outlive it.
    OutputProfiles(ProfileSettings &settings, const std::string &settingsPath);

    /// As `OutputProfilesFile::read`.
    std::optional<std::string> read();
    /// As `OutputProfilesFile::peek`.
    void peek();
    /// Takes another program's changes of the file; of what both have changed, ours stay. Returns
    /// whether the engine has to follow. As `OutputProfilesFile::takeChanges`.
    bool takeFileChanges();
    [[nodiscard]] const std::string &path() const { return file_.path(); }
    /// Writes what has changed since. As `OutputProfilesFile::write`.
    std::optional<std::string> save();

    [[nodiscard]] const std::vector<OutputProfile> &profiles() const { return profiles_; }
    [[nodiscard]] const OutputProfile *withKey(const OutputKey &key) const;
    /// The profile of the output that was adopted last; null where it has none.
    [[nodiscard]] const OutputProfile *inUse() const { return inUse_ ? withKey(*inUse_) : nullptr; }
    /// "Bass Boost", "Flat", "Custom", or "Leave this output alone"; with " (modified)" behind it
    /// if the settings are no longer those of that name.
    [[nodiscard]] std::string titleOf(const OutputProfile &profile) const;

    /// Gives the outputs of this key a profile; `preset` as in OutputProfile, nothing for the
    /// settings of now. The settings of the outputs without a profile are kept as that of any
    /// other output. The caller then lets the engine follow, and saves.
    void assign(const OutputKey &key, const std::string &label, OutputProfile::Use use,
                const std::optional<Uuid> &preset = {});
    /// The outputs of this key have no profile of their own from now on. As `assign`.
    void forget(const OutputKey &key);

    /// The live settings or the active preset have changed.
    void noteChange();
    /// Presets are about to become these: a profile of one that goes keeps its settings.
    void keepSoundsOfGone(const std::vector<Preset> &next);

    // OutputRule
    [[nodiscard]] bool isInForce() const override { return !profiles_.empty(); }
    [[nodiscard]] OutputUse useOf(const AudioDevice &device) const override;
    void adopt(const AudioDevice &device) override;

  Q_SIGNALS:
    void changed();  ///< profiles, or the one in use
    void switched(); ///< other settings than the user's last ones are live

  private:
    [[nodiscard]] std::string nameOf(const OutputProfile &profile) const;
    [[nodiscard]] bool isModified(const OutputProfile &profile) const;
    [[nodiscard]] OutputProfile *find(const OutputKey &key);
    [[nodiscard]] const Preset *presetOf(const OutputProfile &profile) const;
    /// The settings without changes; nothing where the preset is gone.
    [[nodiscard]] std::optional<OutputSound> baseOf(const OutputProfile &profile) const;
    [[nodiscard]] OutputSound soundOf(const Preset &preset) const;
    void keepUnowned();
    void play(const OutputProfile &profile);

    ProfileSettings &settings_;
    OutputProfilesFile file_;
    std::vector<OutputProfile> profiles_; ///< with what is not saved yet
    std::optional<OutputKey> inUse_;
    std::optional<OutputKey> owner_; ///< of the live settings
    bool isPlaying_ = false;         ///< changes of the settings are ours at present
};

} // namespace quorbel
