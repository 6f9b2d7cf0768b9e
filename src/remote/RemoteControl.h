#pragma once

#include "engine/EngineDiagnostics.h"
#include "engine/MeterReadings.h"
#include "platform/threads/Timer.h"
#include "remote/ControlledProgram.h"
#include "settings/records/Persisted.h"
#include "settings/records/json/SettingPath.h"

#include <QObject>

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

/// Rejection of a request; `what()` is one line for the user.
class RemoteError : public std::runtime_error {
  public:
    /// The request itself is wrong, or the program's state forbids it.
    enum class Kind { invalid, refused };

    RemoteError(Kind kind, const std::string &text) : std::runtime_error(text), kind_(kind) {}
    [[nodiscard]] Kind kind() const { return kind_; }

  private:
    Kind kind_;
};

/// State that other programs may follow.
struct RemoteStatus {
    enum class State { stopped, running, waiting, error };

    State state = State::stopped; ///< `waiting`: interrupted, resumes by itself
    std::string reason;           ///< of `waiting` and `error`
    std::string preset;           ///< name of the active preset
    bool isModified = false;      ///< bands or spatial settings differ from the preset's
    std::string profile;          ///< title of the profile in use; empty for none
    bool isComparing = false;
    std::string outputUID; ///< of the device in use; empty without one
    std::string outputName;

    friend bool operator==(const RemoteStatus &, const RemoteStatus &) = default;
};

/// Handles all requests of other programs to this one, independent of their transport. Requests
/// that fail throw RemoteError and change nothing. [main]
class RemoteControl final : public QObject {
    Q_OBJECT

  public:
    /// Both must outlive it.
    RemoteControl(ControlledProgram &program, Clock &clock);

    [[nodiscard]] RemoteStatus status() const;
    [[nodiscard]] MeterReadings meters() const;
    [[nodiscard]] const EngineLosses &losses() const;

    /// Called once, with the reason of a failure; empty if processing runs.
    using StartAnswer = std::function<void(const std::string &failure)>;
    /// Starts processing; calls `answer` after success or failure, within five seconds, perhaps
    /// during this call.
    void start(StartAnswer answer);
    void stop();

    // Each returns the name of the preset that is now active.
    std::string applyPreset(const std::string &name); ///< found as `presetNamed` does
    std::string nextPreset(); ///< in the order of pickers, from the last to the first
    std::string previousPreset();

    /// Plays the unprocessed sound at matched loudness. Only while processing.
    void setComparing(bool comparing);

    /// Returns a value of the settings file by its path (SettingPath.h).
    [[nodiscard]] SettingValue get(const std::string &path) const;
    void set(const std::string &path, const SettingValue &value);

  Q_SIGNALS:
    /// The status may have changed. Emitted once for changes that belong together.
    void statusChanged();

  private:
    [[nodiscard]] Persisted settings() const;
    [[nodiscard]] const Preset *activePreset() const;
    std::string apply(const Preset &preset);
    std::string applyNeighbour(std::size_t step);
    void setOutput(const std::string &uid);
    void followEngineState();
    void announceSoon();
    void answerStarts(const std::string &failure);

    ControlledProgram &program_;
    AudioEngine &engine_;
    Clock &clock_;
    Timer announcement_;
    Timer startDeadline_;
    std::vector<StartAnswer> waitingStarts_;
};

} // namespace quorbel
