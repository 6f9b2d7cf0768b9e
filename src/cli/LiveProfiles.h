#pragma once

#include "settings/records/Persisted.h"
#include "settings/state/OutputProfiles.h"
#include "settings/state/PresetGainsFile.h"

#include <optional>
#include <vector>

namespace quorbel {

class AudioEngine;

/// Lets an engine that has the user's own settings follow the profiles of the outputs. The files
/// are left as they are. [main]
class LiveProfiles final : private ProfileSettings {
  public:
    /// The engine must outlive it. Throws CommandError for a file that cannot be read or decoded:
    /// an output could be too loud without its profile.
    LiveProfiles(AudioEngine &engine, const Persisted &settings, const PresetGains &gains);
    ~LiveProfiles() override;

  private:
    [[nodiscard]] OutputSound liveSound() const override;
    [[nodiscard]] std::optional<Uuid> livePreset() const override { return preset_; }
    void play(const OutputSound &sound, const std::optional<Uuid> &preset) override;
    [[nodiscard]] const std::vector<Preset> &knownPresets() const override { return presets_; }
    [[nodiscard]] float presetGainDB(const Uuid &preset) const override {
        return gains_.of(preset);
    }

    AudioEngine &engine_;
    const std::vector<Preset> presets_;
    const PresetGains gains_;
    std::optional<Uuid> preset_;
    OutputProfiles profiles_;
};

} // namespace quorbel
