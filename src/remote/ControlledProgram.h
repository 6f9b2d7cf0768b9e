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

/// A program with an engine, as remote control sees it. [main]
class ControlledProgram : public QObject {
    Q_OBJECT

  public:
    [[nodiscard]] virtual AudioEngine &engine() = 0;
    [[nodiscard]] virtual DeviceManager &devices() = 0;

    /// The library, then the user's own.
    [[nodiscard]] virtual const std::vector<Preset> &presets() const = 0;
    [[nodiscard]] virtual std::vector<Uuid> favourites() const = 0;
    [[nodiscard]] virtual std::optional<Uuid> activePresetID() const = 0;
    virtual void applyPreset(const Preset &preset) = 0;
    [[nodiscard]] virtual const OutputProfiles &profiles() = 0;

    /// Starts processing. Returns the reason why the program refuses to; empty where the engine
    /// decides.
    [[nodiscard]] virtual std::string start() = 0;
    virtual void stop() = 0;
    /// The reason against the last start, until it has gone; empty for none.
    [[nodiscard]] virtual std::string refusal() const = 0;
    /// An error of the engine as this program words it.
    [[nodiscard]] virtual std::string worded(const std::string &engineError) const {
        return engineError;
    }

    /// Runs `change`, which changes settings, as a user's step called `what`. Changes of one `key`
    /// in quick succession are one step.
    virtual void edit(const std::string &what, const std::string &key,
                      const std::function<void()> &change) = 0;

  Q_SIGNALS:
    /// Presets, the active one, profiles or a refusal. The engine announces the rest itself.
    void changed();
};

} // namespace quorbel
