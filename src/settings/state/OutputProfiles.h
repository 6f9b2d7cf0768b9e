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

/// The output profiles' access to the live settings and the presets.
class ProfileSettings {
  public:
    virtual ~ProfileSettings() = default;

    [[nodiscard]] virtual OutputSound liveSound() const = 0;
    [[nodiscard]] virtual std::optional<Uuid> livePreset() const = 0;
    /// Applies everything in one change and activates `preset`.
    virtual void play(const OutputSound &sound, const std::optional<Uuid> &preset) = 0;
    [[nodiscard]] virtual const std::vector<Preset> &knownPresets() const = 0;
    [[nodiscard]] virtual float presetGainDB(const Uuid &preset) const = 0;
};

/// Applies the output profiles: decides each output's use, plays its profile's settings and stores
/// the user's changes of them in the profile. Does nothing without profiles.
///
/// 1. The live settings belong to one profile, or to none.
/// 2. A change of the live settings changes their profile.
/// 3. Live settings without a profile become the profile of any other output before another
///    profile replaces them, so that nothing is lost.
/// 4. An output that has no profile or is left alone keeps the live settings and their profile.
///
/// All calls [main].
class OutputProfiles final : public QObject, public OutputRule {
    Q_OBJECT

  public:
    /// Has no profiles until `read`. `settings` must outlive it.
    OutputProfiles(ProfileSettings &settings, const std::string &settingsPath);

    /// Like `OutputProfilesFile::read`.
    std::optional<std::string> read();
    /// Like `OutputProfilesFile::peek`.
    void peek();
    /// Merges another program's changes of the file; ours win conflicts. Returns true if the engine
    /// has to follow. Throws like `OutputProfilesFile::takeChanges`.
    bool takeFileChanges();
    [[nodiscard]] const std::string &path() const { return file_.path(); }
    /// Writes the unsaved changes. Like `OutputProfilesFile::write`.
    std::optional<std::string> save();

    [[nodiscard]] const std::vector<OutputProfile> &profiles() const { return profiles_; }
    [[nodiscard]] const OutputProfile *withKey(const OutputKey &key) const;
    /// The profile of the last adopted output; null if it has none.
    [[nodiscard]] const OutputProfile *inUse() const { return inUse_ ? withKey(*inUse_) : nullptr; }
    /// The display title: "Bass Boost", "Flat", "Custom" or "Leave this output alone", followed by
    /// " (modified)" if the settings differ from the named ones.
    [[nodiscard]] std::string titleOf(const OutputProfile &profile) const;

    /// Assigns a profile to the outputs of this key; `Use::preset` without `preset` takes the
    /// current settings. Saves live settings without a profile first, see 3. The caller then lets
    /// the engine follow, and saves.
    void assign(const OutputKey &key, const std::string &label, OutputProfile::Use use,
                const std::optional<Uuid> &preset = {});
    /// Removes the profile of this key. The caller then lets the engine follow, and saves.
    void forget(const OutputKey &key);

    /// Notes a change of the live settings or the active preset.
    void noteChange();
    /// Copies the settings of presets missing in `next` to their profiles, before the change.
    void keepSoundsOfGone(const std::vector<Preset> &next);

    // OutputRule
    [[nodiscard]] bool isActive() const override { return !profiles_.empty(); }
    [[nodiscard]] OutputUse useOf(const AudioDevice &device) const override;
    void adopt(const AudioDevice &device) override;

  Q_SIGNALS:
    void changed();  ///< profiles, or the one in use
    void switched(); ///< a profile has replaced the live settings

  private:
    [[nodiscard]] std::string nameOf(const OutputProfile &profile) const;
    [[nodiscard]] bool isModified(const OutputProfile &profile) const;
    [[nodiscard]] OutputProfile *find(const OutputKey &key);
    [[nodiscard]] const Preset *presetOf(const OutputProfile &profile) const;
    /// The profile's unmodified settings; none if its preset is gone.
    [[nodiscard]] std::optional<OutputSound> baseOf(const OutputProfile &profile) const;
    [[nodiscard]] OutputSound soundOf(const Preset &preset) const;
    void keepUnowned();
    void play(const OutputProfile &profile);

    ProfileSettings &settings_;
    OutputProfilesFile file_;
    std::vector<OutputProfile> profiles_; ///< including unsaved changes
    std::optional<OutputKey> inUse_;
    std::optional<OutputKey> owner_; ///< profile of the live settings
    bool isPlaying_ = false;         ///< the current changes of the settings are ours
};

} // namespace quorbel
