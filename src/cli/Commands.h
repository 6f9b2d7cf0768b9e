#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace quorbel {

/// A time in seconds and a file that takes effect then.
using TimedFile = std::pair<double, std::string>;

/// One value of an option or argument.
struct CommandValue {
    /// The source of a shell's completions.
    enum class Completion { none, file, presetName, deviceUID };

    std::string name; ///< in capitals, as help and manual write it
    Completion completion = Completion::none;
    std::vector<std::string> choices{}; ///< values to offer
    bool isOneOfThem = false;           ///< no others are allowed
};

/// An option (`--preset`) or a positional argument (`FILE`) of a subcommand.
struct CommandArgument {
    struct WholeNumber {
        std::uint32_t *variable;
        std::uint32_t least;
        std::uint32_t most;
    };
    /// Receives the given value; untouched for an argument that is not given. A `double` is a
    /// finite number of seconds, not negative. A list makes the option repeatable.
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
    std::string excludes{}; ///< an option declared before that may not be given as well
};

/// A subcommand. Its declarations are the only source of its help, manual and completions. A name
/// of two words, such as "ctl start", is a subcommand of a group.
class Command {
  public:
    virtual ~Command() = default;
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    [[nodiscard]] const std::string &name() const { return name_; }
    [[nodiscard]] const std::string &summary() const { return summary_; }
    [[nodiscard]] const std::vector<CommandArgument> &arguments() const { return arguments_; }

    /// Does the work, once the variables of the arguments are filled. Throws CommandError.
    virtual void run() const = 0;

    /// True if the command has failed when standard output cannot be written.
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

/// The subcommands, in the order of help and manual.
[[nodiscard]] std::vector<std::unique_ptr<Command>> allCommands();

/// `render`: plays a sound file through the chain into another, as fast as the machine can. On an
/// error OUT is as it was.
[[nodiscard]] std::unique_ptr<Command> makeRenderCommand();

/// `live`: plays everything the computer plays through the chain, until a signal or for some time.
/// On an error the sound is as it was.
[[nodiscard]] std::unique_ptr<Command> makeLiveCommand();

/// `presets`: lists the program's presets and the user's own.
[[nodiscard]] std::unique_ptr<Command> makePresetsCommand();

/// `import`: makes a preset of the user's of a parametric equaliser text or a preset file, and
/// activates it. On an error the settings are as they were.
[[nodiscard]] std::unique_ptr<Command> makeImportCommand();

/// `export`: writes a preset as a parametric equaliser text, or as JSON to a file named so.
[[nodiscard]] std::unique_ptr<Command> makeExportCommand();

/// `devices`: lists the output devices.
[[nodiscard]] std::unique_ptr<Command> makeDevicesCommand();

/// `ctl status` and its like: ask the Ostrafine that runs, and have it do things.
[[nodiscard]] std::vector<std::unique_ptr<Command>> makeControlCommands();

} // namespace quorbel
