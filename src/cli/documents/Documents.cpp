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

bool takesFiles(const Command &command) {
    return std::any_of(command.arguments().begin(), command.arguments().end(),
                       [](const CommandArgument &argument) {
                           return !argument.isOption() && argument.values.front().completion ==
                                                              CommandValue::Completion::file;
                       });
}

} // namespace quorbel
