#pragma once

#include "devices/DeviceManager.h"
#include "engine/AudioEngine.h"
#include "settings/records/Preset.h"
#include "settings/state/OutputProfiles.h"

#include <QObject>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// A program with an engine, as seen by remote control. [main]
class ControlledProgram : public QObject {
    Q_OBJECT

  public:
    [[nodiscard]] virtual AudioEngine &engine() = 0;
    [[nodiscard]] virtual DeviceManager &devices() = 0;

    /// Presets of the library, then the user's own.
    [[nodiscard]] virtual const std::vector<Preset> &presets() const = 0;
    [[nodiscard]] virtual std::vector<Uuid> favourites() const = 0;
    [[nodiscard]] virtual std::optional<Uuid> activePresetID() const = 0;
    virtual void applyPreset(const Preset &preset) = 0;
    [[nodiscard]] virtual const OutputProfiles &profiles() = 0;

    /// Starts processing. Returns the program's reason to refuse; empty if the engine decides.
    [[nodiscard]] virtual std::string start() = 0;
    virtual void stop() = 0;
    /// Reason against the last start while it lasts; empty for none.
    [[nodiscard]] virtual std::string refusal() const = 0;
    /// Returns this program's text for an error of the engine.
    [[nodiscard]] virtual std::string worded(const std::string &engineError) const {
        return engineError;
    }

    /// Runs `change`, which changes settings, as an undo step named `what`. Merges changes of one
    /// `key` in quick succession into one step.
    virtual void edit(const std::string &what, const std::string &key,
                      const std::function<void()> &change) = 0;

  Q_SIGNALS:
    /// Presets, the active one, profiles or a refusal. The engine announces its own changes.
    void changed();
};

} // namespace quorbel
