#pragma once

#include "settings/records/EQBand.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/Preset.h"
#include "settings/records/SpatialConfig.h"
#include "settings/records/Uuid.h"
#include "settings/state/PresetGainsFile.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorbel {

/// The user's presets at one moment. Copies share one list, so a step costs a pointer for them and
/// not a copy of every preset.
class PresetSnapshot {
  public:
    PresetSnapshot() = default;
    explicit PresetSnapshot(std::vector<Preset> presets)
        : list_(std::make_shared<const std::vector<Preset>>(std::move(presets))) {}

    [[nodiscard]] const std::vector<Preset> &operator*() const { return *list_; }

    friend bool operator==(const PresetSnapshot &a, const PresetSnapshot &b) {
        return a.list_ == b.list_ || *a == *b;
    }

  private:
    std::shared_ptr<const std::vector<Preset>> list_ =
        std::make_shared<const std::vector<Preset>>();
};

/// Everything that undo restores.
struct EditState {
    std::vector<EQBand> bands;
    float globalGainDB = 0.0F;
    float presetGainDB = 0.0F; ///< in use
    SpatialConfig spatial;
    MixerConfig mixer;
    PresetSnapshot userPresets;
    std::optional<Uuid> activePresetID;
    std::vector<Uuid> favourites; ///< among the presets
    PresetGains presetGains;      ///< those of presets only

    friend bool operator==(const EditState &, const EditState &) = default;
};

/// One change by the user.
struct EditStep {
    EditState before;
    EditState after;
    std::string what; ///< in words, for "Undo …"
};

/// The steps that can be undone and redone. A gesture (from pressing a control to releasing it) is
/// one step. So are changes of one setting within `burstSeconds` of each other, as from a held key
/// or a wheel.
///
/// The caller changes and restores the settings; the history only keeps them.
class EditHistory {
  public:
    static constexpr double burstSeconds = 0.8;
    static constexpr std::size_t maximumSteps = 100;

    /// From now until `endGesture` all changes are one step. Ends a gesture that was left open.
    void beginGesture();
    void endGesture();

    /// Records a change at `now` seconds. `key` names its subject, such as a field: equal keys may
    /// become one step. No step where nothing differs. Steps that could be redone are dropped.
    void record(EditState before, EditState after, std::string what, const std::string &key,
                double now);

    [[nodiscard]] bool canUndo() const { return position_ > 0; }
    [[nodiscard]] bool canRedo() const { return position_ < steps_.size(); }
    /// The steps that undo and redo would apply; only where there is one.
    [[nodiscard]] const EditStep &undoable() const { return steps_[position_ - 1]; }
    [[nodiscard]] const EditStep &redoable() const { return steps_[position_]; }

    /// Moves over that step; the caller then sets `before` or `after`.
    EditStep undo();
    EditStep redo();

  private:
    [[nodiscard]] bool continuesLast(const std::string &key, double now) const;
    void close();

    std::deque<EditStep> steps_;
    std::size_t position_ = 0; ///< steps before it are done, the others undone
    bool inGesture_ = false;
    bool gestureHasStep_ = false;
    bool lastIsOpen_ = false; ///< the last step may still grow by a burst
    std::string lastKey_;
    double lastTime_ = 0.0;
};

} // namespace quorbel
