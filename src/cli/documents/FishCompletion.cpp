#include "cli/documents/Documents.h"

#include <fmt/format.h>

namespace quorbel {

namespace {

std::string quoted(const std::string &text) {
    return "'" + withReplaced(withReplaced(text, "\\", "\\\\"), "'", "\\'") + "'";
}

/// The switches of `complete` for an option's first value; any further one is a file or nothing.
const char *valueSwitches(const CommandArgument &argument) {
    if (argument.values.empty())
        return "";
    switch (argument.values.front().completion) {
    case CommandValue::Completion::file:
        return " -r -F";
    case CommandValue::Completion::presetName:
        return " -x -a '(ostrafine-cli presets --names 2>/dev/null)'";
    case CommandValue::Completion::deviceUID:
        return " -x -a '(ostrafine-cli devices --uids 2>/dev/null)'";
    case CommandValue::Completion::none:
        break;
    }
    return " -x";
}

std::string endingOption(const EndingOption &option, const char *condition) {
    std::string line = std::string("complete -c ostrafine-cli") + condition;
    for (const std::string &name : namesOf(option))
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    return fmt::format("{} -d {}\n", line, quoted(option.help));
}

} // namespace

std::string fishCompletion(const Commands &commands) {
    std::string text = "# Completes ostrafine-cli in fish.\n\n";
    text += "complete -c ostrafine-cli -n __fish_use_subcommand -f\n";
    text += endingOption(helpOption, "") + endingOption(versionOption, " -n __fish_use_subcommand");
    for (const auto &command : commands) {
        text += fmt::format("\ncomplete -c ostrafine-cli -n __fish_use_subcommand -a {} -d {}\n",
                            command->name(), quoted(command->summary()));
        const std::string start = fmt::format(
            "complete -c ostrafine-cli -n '__fish_seen_subcommand_from {}'", command->name());
        if (!takesFiles(*command))
            text += start + " -f\n";
        for (const CommandArgument &argument : command->arguments())
            if (argument.isOption())
                text += fmt::format("{} -l {}{} -d {}\n", start, argument.name.substr(2),
                                    valueSwitches(argument), quoted(argument.help));
    }
    return text;
}

} // namespace quorbel
