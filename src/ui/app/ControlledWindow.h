#pragma once

#include "remote/ControlledProgram.h"
#include "settings/state/AppState.h"

namespace quorbel {

class AppModel;

/// Remote control of the program with the window. Remote changes are shown, saved and can be undone
/// like the user's own. [main]
class ControlledWindow final : public ControlledProgram {
  public:
    /// Both must outlive it.
    ControlledWindow(AppState &state, AppModel &model);

    AudioEngine &engine() override { return state_.engine(); }
    DeviceManager &devices() override { return state_.deviceManager(); }
    const std::vector<Preset> &presets() const override { return state_.presets(); }
    std::vector<Uuid> favourites() const override;
    std::optional<Uuid> activePresetID() const override { return state_.activePresetID(); }
    void applyPreset(const Preset &preset) override { state_.applyPreset(preset); }
    const OutputProfiles &profiles() override { return state_.profiles(); }
    std::string start() override;
    void stop() override;
    std::string refusal() const override;
    std::string worded(const std::string &engineError) const override;
    void edit(const std::string &what, const std::string &key,
              const std::function<void()> &change) override;

  private:
    AppState &state_;
    AppModel &model_;
};

} // namespace quorbel
