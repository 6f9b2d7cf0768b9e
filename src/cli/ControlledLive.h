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

/// The presets of `ostrafine-cli live` and the output profiles that apply them. Changes last until
/// the command ends and are never saved. [main]
class LiveProfiles final : private ProfileSettings {
  public:
    /// Has no profiles until `follow`. `settings` are the engine's, with all presets; `gains` are
    /// the presets' gains. The engine must outlive it.
    LiveProfiles(AudioEngine &engine, const Persisted &settings, PresetGains gains);
    ~LiveProfiles() override;

    /// Lets the engine follow the user's profiles. Throws CommandError for an unreadable or invalid
    /// file: an output could be too loud without its profile.
    void follow();

    [[nodiscard]] const std::vector<Preset> &presets() const { return presets_; }
    /// The preset last applied by the user or a profile; none for a profile with a deleted preset.
    [[nodiscard]] const std::optional<Uuid> &activePresetID() const { return activePresetID_; }
    void applyPreset(const Preset &preset);

    /// Its `switched` also signals changes of the active preset.
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

/// `ostrafine-cli live` under remote control. Changes last until the command ends and are never
/// saved. While it is stopped, another program may process. [main]
class ControlledLive final : public ControlledProgram {
  public:
    /// Holds `lock` except while stopped. All arguments must outlive it.
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

    /// True if the pending or failed start was a remote request.
    [[nodiscard]] bool wasStartAsked() const { return wasStartAsked_; }

  private:
    AudioEngine &engine_;
    DeviceManager &devices_;
    std::optional<InstanceLock> &lock_;
    LiveProfiles &profiles_;
    bool wasStartAsked_ = false;
};

} // namespace quorbel
