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

/// Snapshot of the user's presets. Copies share one list, so that a step stores a pointer instead
/// of every preset.
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
    float presetGainDB = 0.0F; ///< gain applied now
    SpatialConfig spatial;
    MixerConfig mixer;
    PresetSnapshot userPresets;
    std::optional<Uuid> activePresetID;
    std::vector<Uuid> favourites; ///< favourite presets
    PresetGains presetGains;      ///< `ofPresets` only

    friend bool operator==(const EditState &, const EditState &) = default;
};

/// One change by the user.
struct EditStep {
    EditState before;
    EditState after;
    std::string what; ///< text after "Undo "
};

/// Steps for undo and redo. A gesture, from press to release of a control, is one step. So are
/// changes of one setting within `burstSeconds` of each other, as from a held key or a wheel.
///
/// The caller changes and restores the settings; the history only keeps them.
class EditHistory {
  public:
    static constexpr double burstSeconds = 0.8;
    static constexpr std::size_t maximumSteps = 100;

    /// Combines all changes until `endGesture` into one step. Ends a gesture that is still open.
    void beginGesture();
    void endGesture();

    /// Records a change at `now` seconds and drops the steps to redo, unless nothing differs. `key`
    /// names the changed subject, such as a field: changes of equal keys may become one step.
    void record(EditState before, EditState after, std::string what, const std::string &key,
                double now);

    [[nodiscard]] bool canUndo() const { return position_ > 0; }
    [[nodiscard]] bool canRedo() const { return position_ < steps_.size(); }
    /// Steps that `undo` and `redo` would apply; require `canUndo` and `canRedo`.
    [[nodiscard]] const EditStep &undoable() const { return steps_[position_ - 1]; }
    [[nodiscard]] const EditStep &redoable() const { return steps_[position_]; }

    /// Moves past that step and returns it; the caller then restores `before` or `after`.
    EditStep undo();
    EditStep redo();

  private:
    [[nodiscard]] bool continuesLast(const std::string &key, double now) const;
    void close();

    std::deque<EditStep> steps_;
    std::size_t position_ = 0; ///< number of steps that are done; the others are undone
    bool inGesture_ = false;
    bool gestureHasStep_ = false;
    bool lastIsOpen_ = false; ///< a burst may still extend the last step
    std::string lastKey_;
    double lastTime_ = 0.0;
};

} // namespace quorbel
