#include "cli/documents/Documents.h"

#include <algorithm>

namespace quorbel {

std::string withReplaced(std::string text, const std::string &part,
                         const std::string &replacement) {
    for (std::size_t at = text.find(part); at != std::string::npos;
         at = text.find(part, at + replacement.size()))
        text.replace(at, part.size(), replacement);
    return text;
}

std::vector<std::string> namesOf(const EndingOption &option) {
    std::vector<std::string> names{""};
    for (const char *letter = option.names; *letter != '\0'; ++letter)
        if (*letter == ',')
            names.emplace_back();
        else
            names.back() += *letter;
    return names;
}

CommandWords wordsOf(const Command &command) {
    const std::size_t blank = command.name().find(' ');
    if (blank == std::string::npos)
        return {"", command.name()};
    return {command.name().substr(0, blank), command.name().substr(blank + 1)};
}

std::vector<std::string> plainCommands(const Commands &commands) {
    std::vector<std::string> names;
    for (const auto &command : commands)
        if (wordsOf(*command).group.empty())
            names.push_back(command->name());
    return names;
}

std::vector<std::string> groupedCommands(const Commands &commands) {
    std::vector<std::string> names;
    for (const auto &command : commands)
        if (const CommandWords words = wordsOf(*command); !words.group.empty())
            names.push_back(words.word);
    return names;
}

const CommandValue *positionalValue(const Command &command) {
    const auto positional = std::ranges::find_if(
        command.arguments(), [](const CommandArgument &argument) { return !argument.isOption(); });
    return positional == command.arguments().end() ? nullptr : &positional->values.front();
}

bool takesFiles(const Command &command) {
    const CommandValue *value = positionalValue(command);
    return value != nullptr && value->completion == CommandValue::Completion::file;
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

} // namespace quorbel
