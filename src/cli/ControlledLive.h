#pragma once

#include "platform/hardware/InstanceLock.h"
#include "remote/ControlledProgram.h"
#include "settings/records/Persisted.h"
#include "settings/state/PresetGainsFile.h"

#include <optional>

namespace quorbel {

/// `ostrafine-cli live` under remote control: changes last until it ends, and are not saved. While
/// it is stopped, another program may process. [main]
class ControlledLive final : public ControlledProgram {
  public:
    /// `lock` is held, and given up while stopped. `settings` are those that the engine has, with
    /// all presets, and `gains` what the presets bring. Engine, devices and lock must outlive it.
    ControlledLive(AudioEngine &engine, DeviceManager &devices, std::optional<InstanceLock> &lock,
                   const Persisted &settings, PresetGains gains);

    AudioEngine &engine() override { return engine_; }
    DeviceManager &devices() override { return devices_; }
    const std::vector<Preset> &presets() const override { return presets_; }
    std::vector<Uuid> favourites() const override;
    std::optional<Uuid> activePresetID() const override { return activePresetID_; }
    void applyPreset(const Preset &preset) override;
    std::string start() override;
    void stop() override { engine_.stop(); }
    std::string refusal() const override { return {}; } // told to whoever asked
    void edit(const std::string &, const std::string &,
              const std::function<void()> &change) override {
        change();
    }

    /// Whether the start that failed or is under way was asked for from outside.
    [[nodiscard]] bool wasStartAsked() const { return wasStartAsked_; }

  private:
    AudioEngine &engine_;
    DeviceManager &devices_;
    std::optional<InstanceLock> &lock_;
    std::vector<Preset> presets_;
    PresetGains gains_;
    std::optional<Uuid> activePresetID_;
    bool wasStartAsked_ = false;
};

} // namespace quorbel
