#pragma once

#include "platform/hardware/RuntimeFolder.h"
#include "remote/ControlledProgram.h"
#include "settings/records/Persisted.h"
#include "settings/state/OutputProfiles.h"
#include "settings/state/PresetGainsFile.h"

#include <optional>
#include <vector>

namespace quorbel {

class AudioEngine;

/// The presets of `ostrafine-cli live` and the profiles of the outputs, which apply them. Changes
/// last until it ends; the files are left as they are. [main]
class LiveProfiles final : private ProfileSettings {
  public:
    /// Without profiles until `follow`. `settings` are those that the engine has, with all presets,
    /// and `gains` what the presets bring. The engine must outlive it.
    LiveProfiles(AudioEngine &engine, const Persisted &settings, PresetGains gains);
    ~LiveProfiles() override;

    /// Lets the engine follow the user's own profiles. Throws CommandError for a file that cannot
    /// be read or decoded: an output could be too loud without its profile.
    void follow();

    [[nodiscard]] const std::vector<Preset> &presets() const { return presets_; }
    /// The preset that the user or a profile has applied last; nothing for settings of a profile
    /// whose preset is gone.
    [[nodiscard]] const std::optional<Uuid> &activePresetID() const { return activePresetID_; }
    void applyPreset(const Preset &preset);

    /// Signals changes of the active preset too: `switched`.
    [[nodiscard]] const OutputProfiles &profiles() const { return profiles_; }

  private:
    [[nodiscard]] OutputSound liveSound() const override;
    [[nodiscard]] std::optional<Uuid> livePreset() const override { return activePresetID_; }
    void play(const OutputSound &sound, const std::optional<Uuid> &preset) override;
    [[nodiscard]] const std::vector<Preset> &knownPresets() const override { return presets_; }
    [[nodiscard]] float presetGainDB(const Uuid &preset) const override {
        return gains_.of(preset);
    }

    AudioEngine &engine_;
    const std::vector<Preset> presets_;
    const PresetGains gains_;
    std::optional<Uuid> activePresetID_;
    OutputProfiles profiles_;
};

/// `ostrafine-cli live` under remote control: changes last until it ends, and are not saved. While
/// it is stopped, another program may process. [main]
class ControlledLive final : public ControlledProgram {
  public:
    /// `lock` is held, and given up while stopped. All must outlive it.
    ControlledLive(AudioEngine &engine, DeviceManager &devices, std::optional<InstanceLock> &lock,
                   LiveProfiles &profiles);

    AudioEngine &engine() override { return engine_; }
    DeviceManager &devices() override { return devices_; }
    const std::vector<Preset> &presets() const override { return profiles_.presets(); }
    std::vector<Uuid> favourites() const override;
    std::optional<Uuid> activePresetID() const override { return profiles_.activePresetID(); }
    void applyPreset(const Preset &preset) override;
    const OutputProfiles &profiles() override { return profiles_.profiles(); }
    std::string start() override;
    void stop() override { engine_.stop(); }
    std::string refusal() const override { return {}; } // the remote caller gets the message
    void edit(const std::string &, const std::string &,
              const std::function<void()> &change) override {
        change();
    }

    /// True if a remote command asked for the start that failed or is under way.
    [[nodiscard]] bool wasStartAsked() const { return wasStartAsked_; }

  private:
    AudioEngine &engine_;
    DeviceManager &devices_;
    std::optional<InstanceLock> &lock_;
    LiveProfiles &profiles_;
    bool wasStartAsked_ = false;
};

} // namespace quorbel
