#include "cli/documents/Documents.h"

#include <fmt/format.h>

namespace quorbel {

namespace {

constexpr const char *head = R"(#compdef ostrafine-cli

_ostrafine_cli_presets() {
    local -a names # which the program takes in any capitals
    names=("${(@f)$(_call_program presets $program presets --names 2>/dev/null)}")
    _wanted presets expl preset compadd -M 'm:{a-zA-Z}={A-Za-z}' -a - names
}

_ostrafine_cli_devices() {
    local -a uids
    uids=("${(@f)$(_call_program devices $program devices --uids 2>/dev/null)}")
    _wanted devices expl device compadd -a - uids
}

_ostrafine_cli_@GROUP@() {
    case $words[1] in
@GROUPARGUMENTS@    esac
}

_ostrafine_cli() {
    local context state state_desc line expl program=$words[1]
    local -A opt_args
    local -a commands=(
@COMMANDS@    )
    local -a grouped=(
@GROUPED@    )
    _arguments -C \
@PROGRAM@        '1: :->command' \
        '*:: :->arguments' && return
    case $state in
        command) _describe -t commands command commands ;;
        arguments)
            case $words[1] in
                @GROUP@)
                    _arguments -C \
@GROUPHELP@                        '1: :->command' \
                        '*:: :->arguments' && return
                    case $state in
                        command) _describe -t commands command grouped ;;
                        arguments) _ostrafine_cli_@GROUP@ ;;
                    esac
                    ;;
@ARGUMENTS@            esac
            ;;
    esac
}

_ostrafine_cli "$@"
)";

/// Escapes text for single quotes and for the special characters of `_arguments`.
std::string zshQuoted(const std::string &text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '\'')
            escaped += "'\\'";
        else if (character == '[' || character == ']' || character == ':' || character == '\\')
            escaped += '\\';
        escaped += character;
    }
    return escaped;
}

std::string valueSpec(const CommandValue &value) {
    if (!value.choices.empty())
        return fmt::format(":{}:({})", value.name, joined(value.choices));
    switch (value.completion) {
    case CommandValue::Completion::file:
        return fmt::format(":{}:_files", value.name);
    case CommandValue::Completion::presetName:
        return fmt::format(":{}:_ostrafine_cli_presets", value.name);
    case CommandValue::Completion::deviceUID:
        return fmt::format(":{}:_ostrafine_cli_devices", value.name);
    case CommandValue::Completion::none:
        break;
    }
    return fmt::format(":{}: ", value.name);
}

std::string argumentSpec(const CommandArgument &argument, std::size_t position) {
    if (!argument.isOption())
        return fmt::format("'{}{}'", position, valueSpec(argument.values.front()));
    std::string spec = argument.isRepeatable() ? "'*" : "'";
    if (!argument.excludes.empty())
        spec += fmt::format("({})", argument.excludes);
    // A single value may also follow an equals sign.
    spec += fmt::format("{}{}[{}]", argument.name, argument.values.size() == 1 ? "=" : "",
                        zshQuoted(argument.help));
    for (const CommandValue &value : argument.values)
        spec += valueSpec(value);
    return spec + "'";
}

std::string endingSpecs(const EndingOption &option, const char *indent) {
    std::string specs;
    for (const std::string &name : namesOf(option))
        specs += fmt::format("{}'(- *){}[{}]' \\\n", indent, name, zshQuoted(option.help));
    return specs;
}

} // namespace

std::string zshCompletion(const Commands &commands) {
    std::string list =
        fmt::format("        '{}:{}'\n", controlGroup.name, zshQuoted(controlGroup.summary));
    std::string grouped;
    std::string arguments;
    std::string groupArguments;
    for (const auto &command : commands) {
        const auto [group, word] = wordsOf(*command);
        (group.empty() ? list : grouped) +=
            fmt::format("        '{}:{}'\n", word, zshQuoted(command->summary()));
        std::string &specs = group.empty() ? arguments : groupArguments;
        specs += fmt::format("                {})\n                    _arguments \\\n", word);
        specs += endingSpecs(helpOption, "                        ");
        std::size_t position = 0;
        for (const CommandArgument &argument : command->arguments()) {
            position += argument.isOption() ? 0 : 1;
            specs +=
                fmt::format("                        {} \\\n", argumentSpec(argument, position));
        }
        specs.erase(specs.size() - 3, 2); // the last line continuation
        specs += "                    ;;\n";
    }
    std::string text = withReplaced(head, "@COMMANDS@", list);
    text =
        withReplaced(text, "@PROGRAM@",
                     endingSpecs(helpOption, "        ") + endingSpecs(versionOption, "        "));
    text = withReplaced(text, "@GROUPED@", grouped);
    text = withReplaced(text, "@GROUPHELP@", endingSpecs(helpOption, "                        "));
    text = withReplaced(text, "@GROUPARGUMENTS@", groupArguments);
    text = withReplaced(text, "@GROUP@", controlGroup.name);
    return withReplaced(text, "@ARGUMENTS@", arguments);
}

} // namespace quorbel
