#pragma once

#include <cstdint>
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

} // namespace quorbel
