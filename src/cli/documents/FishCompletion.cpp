#include "cli/documents/Documents.h"

#include <fmt/format.h>

namespace quorbel {

namespace {

std::string quoted(const std::string &text) {
    return "'" + withReplaced(withReplaced(text, "\\", "\\\\"), "'", "\\'") + "'";
}

/// Options of `complete` for an argument's first value; any further one is a file or nothing.
std::string valueSwitches(const CommandArgument &argument) {
    if (argument.values.empty())
        return "";
    if (!argument.values.front().choices.empty())
        return " -x -a '" + joined(argument.values.front().choices) + "'";
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
    const std::string seen = "__fish_seen_subcommand_from ";
    const std::string inGroup = seen + controlGroup.name;
    const std::string atGroup = inGroup + "; and not " + seen + joined(groupedCommands(commands));
    const auto offer = [&](const std::string &where, const std::string &word, const auto &summary) {
        text += fmt::format("\ncomplete -c ostrafine-cli -n {} -a {} -d {}\n", where, word,
                            quoted(summary));
    };
    offer("__fish_use_subcommand", controlGroup.name, controlGroup.summary);
    text += fmt::format("complete -c ostrafine-cli -n '{}' -f\n", inGroup);
    for (const auto &command : commands) {
        const auto [group, word] = wordsOf(*command);
        offer(group.empty() ? "__fish_use_subcommand" : quoted(atGroup), word, command->summary());
        const std::string start = fmt::format("complete -c ostrafine-cli -n '{}{}{}'",
                                              group.empty() ? "" : inGroup + "; and ", seen, word);
        if (!takesFiles(*command))
            text += start + " -f\n";
        for (const CommandArgument &argument : command->arguments())
            if (argument.isOption())
                text += fmt::format("{} -l {}{} -d {}\n", start, argument.name.substr(2),
                                    valueSwitches(argument), quoted(argument.help));
            else if (!group.empty())
                text += start + valueSwitches(argument) + "\n";
    }
    return text;
}

} // namespace quorbel
