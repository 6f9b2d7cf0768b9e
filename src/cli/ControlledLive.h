#pragma once

#include "cli/LiveProfiles.h"
#include "platform/hardware/RuntimeFolder.h"
#include "remote/ControlledProgram.h"

#include <optional>

namespace quorbel {

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
    std::string refusal() const override { return {}; } // told to whoever asked
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
