#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace quorbel {

/// A time in seconds and the file that takes effect then.
using TimedFile = std::pair<double, std::string>;

/// One value of an option or argument.
struct CommandValue {
    /// The source of a shell's completions.
    enum class Completion { none, file, presetName, deviceUID };

    std::string name; ///< in capitals, as in the help and the manual
    Completion completion = Completion::none;
    std::vector<std::string> choices{}; ///< values to offer
    bool isOneOfThem = false;           ///< allows no other values
};

/// An option (`--preset`) or a positional argument (`FILE`) of a subcommand.
struct CommandArgument {
    struct WholeNumber {
        std::uint32_t *variable;
        std::uint32_t least;
        std::uint32_t most;
    };
    /// Receives the given value; untouched for an omitted argument. A `double` is a finite,
    /// non-negative number of seconds. A list makes the option repeatable.
    using Variable = std::variant<bool *, std::string *, std::optional<std::string> *, WholeNumber,
                                  std::optional<double> *, std::vector<TimedFile> *>;

    [[nodiscard]] bool isOption() const { return name.starts_with("--"); }
    [[nodiscard]] bool isRepeatable() const {
        return std::holds_alternative<std::vector<TimedFile> *>(variable);
    }

    std::string name;
    std::string help{};
    std::vector<CommandValue> values{}; ///< empty for a flag
    Variable variable;
    bool isRequired = false;
    std::string excludes{}; ///< an earlier declared option that conflicts with this one
};

/// A subcommand. Help, manual and completions come only from its declarations. A name of two words,
/// such as "ctl start", is a subcommand of a group.
class Command {
  public:
    virtual ~Command() = default;
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    [[nodiscard]] const std::string &name() const { return name_; }
    [[nodiscard]] const std::string &summary() const { return summary_; }
    [[nodiscard]] const std::vector<CommandArgument> &arguments() const { return arguments_; }

    /// Runs the command after the variables of the arguments are filled. Throws CommandError.
    virtual void run() const = 0;

    /// True if an unwritable standard output is a failure of the command.
    [[nodiscard]] virtual bool needsOutput() const { return true; }

  protected:
    Command(std::string name, std::string summary)
        : name_(std::move(name)), summary_(std::move(summary)) {}

    void declare(CommandArgument argument) { arguments_.push_back(std::move(argument)); }

  private:
    std::string name_;
    std::string summary_;
    std::vector<CommandArgument> arguments_;
};

/// The subcommands in the order of the help and the manual.
[[nodiscard]] std::vector<std::unique_ptr<Command>> allCommands();

/// `render`: processes a sound file into another, faster than real time. Leaves OUT unchanged on an
/// error.
[[nodiscard]] std::unique_ptr<Command> makeRenderCommand();

/// `live`: processes everything that the computer plays until a signal or a given time. Restores
/// the original sound on an error.
[[nodiscard]] std::unique_ptr<Command> makeLiveCommand();

/// `presets`: lists the factory presets and the user's own.
[[nodiscard]] std::unique_ptr<Command> makePresetsCommand();

/// `import`: makes a user preset from a parametric equaliser text or a preset file, and activates
/// it. Leaves the settings unchanged on an error.
[[nodiscard]] std::unique_ptr<Command> makeImportCommand();

/// `export`: writes a preset as a parametric equaliser text, or as JSON to a `.json` file.
[[nodiscard]] std::unique_ptr<Command> makeExportCommand();

/// `devices`: lists the output devices.
[[nodiscard]] std::unique_ptr<Command> makeDevicesCommand();

/// `ctl status` and the other commands that query and control the running Ostrafine.
[[nodiscard]] std::vector<std::unique_ptr<Command>> makeControlCommands();

} // namespace quorbel
