#include "cli/documents/Documents.h"

#include <fmt/format.h>

#include <sstream>

namespace quorbel {

namespace {

/// Escapes text for roff.
std::string roff(const std::string &text) {
    std::string escaped;
    for (const char character : text)
        if (character == '\\')
            escaped += "\\e";
        else if (character == '-')
            escaped += "\\-";
        else
            escaped += character;
    return escaped;
}

/// Wraps a sentence for readers of the source; roff refills the lines.
std::string roffLines(const std::string &text) {
    constexpr std::size_t columns = 78;
    std::istringstream words(roff(text));
    std::string lines;
    std::string line;
    for (std::string word; words >> word;) {
        if (!line.empty() && line.size() + 1 + word.size() > columns) {
            lines += line + "\n";
            line.clear();
        }
        // A leading dot or quote would turn the line into a roff request.
        const bool isRequest = line.empty() && (word[0] == '.' || word[0] == '\'');
        line += (line.empty() ? "" : " ") + ((isRequest ? "\\&" : "") + word);
    }
    return lines + line;
}

/// "\fB--at\fR \fISECONDS FILE\fR"
std::string argumentText(const CommandArgument &argument) {
    if (!argument.isOption())
        return "\\fI" + roff(argument.name) + "\\fR";
    std::string text = "\\fB" + roff(argument.name) + "\\fR";
    for (const CommandValue &value : argument.values)
        text += "\\~\\fI" + roff(value.name) + "\\fR";
    return text;
}

std::string entry(const std::string &tag, const std::string &help) {
    return fmt::format(".TP\n{}\n{}\n", tag, roffLines(help + "."));
}

std::string entry(const EndingOption &option) {
    std::string tag;
    for (const std::string &name : namesOf(option))
        tag += (tag.empty() ? "\\fB" : ", \\fB") + roff(name) + "\\fR";
    return entry(tag, option.help);
}

} // namespace

std::string manualSynopsis(const Commands &commands) {
    std::string text;
    for (const auto &command : commands) {
        text += fmt::format(".SY ostrafine\\-cli\n{}\n", roff(command->name()));
        for (const CommandArgument &argument : command->arguments()) {
            if (!argument.excludes.empty()) // shares the brackets of the option before
                text.replace(text.size() - 2, 2, " | ");
            else
                text += argument.isRequired ? "" : "[";
            const char *dots = argument.isRepeatable() ? " .\\|.\\|." : "";
            text += fmt::format("{}{}{}\n", argumentText(argument), argument.isRequired ? "" : "]",
                                dots);
        }
        text += ".YS\n";
    }
    return text;
}

std::string manualCommands(const Commands &commands) {
    std::string text;
    for (const auto &command : commands) {
        text +=
            fmt::format(".SS {}\n{}\n", roff(command->name()), roffLines(command->summary() + "."));
        for (const CommandArgument &argument : command->arguments())
            text += entry(argumentText(argument), argument.help);
    }
    return text + ".SS General options\n" + entry(helpOption) + entry(versionOption);
}

} // namespace quorbel
