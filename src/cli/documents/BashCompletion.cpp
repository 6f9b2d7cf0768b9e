#include "cli/documents/Documents.h"

#include <fmt/format.h>

namespace quorbel {

namespace {

constexpr const char *script = R"(# Completes ostrafine-cli in bash.

# Sets `kinds` to what the values of an option are: file, preset, device or none.
_ostrafine_cli_kinds() {
    case $1:$2 in
@KINDS@        *) kinds=() ;;
    esac
}

# Sets `options` of a command, with what else it takes, and `place`: file or preset where it takes these
# without an option.
_ostrafine_cli_options() {
    case $1 in
@OPTIONS@        *) options='@PROGRAM@' place= ;;
    esac
}

# _ostrafine_cli_reply WORD COMMAND...: completes the word with the lines that the command prints, in
# any capitals, and quotes them as the word is quoted.
_ostrafine_cli_reply() {
    local word=$1 quote= name
    shift
    case $word in
        [\"\']*) quote=${word:0:1} word=${word:1} ;;
    esac
    # Reading a line takes its backslashes out.
    [[ $quote == \' ]] || IFS= read word <<<"$word"
    while IFS= read -r name; do
        [[ ${name,,} == "${word,,}"* ]] || continue
        case $quote in
            \")
                name=${name//\\/\\\\} name=${name//\"/\\\"}
                name=${name//\$/\\\$} name=${name//\`/\\\`}
                ;;
            \') name=${name//\'/\'\\\'\'} ;;
            *)
                printf -v name %q "$name"
                # Bash would take these for the end of a word.
                [[ $name == \$\'* ]] || { name=${name//:/\\:} name=${name//=/\\=} name=${name//@/\\@}; }
                ;;
        esac
        COMPREPLY+=("$name")
    done < <("$@" 2>/dev/null)
}

_ostrafine_cli() {
    local program=${COMP_WORDS[0]/#\~/$HOME} word=${COMP_WORDS[COMP_CWORD]}
    local command= kind= literal= options= place= before index back
    local -a words=() kinds=()
    COMPREPLY=()
    # Bash makes three words of --option=value.
    [[ $word == = ]] && word=
    for ((index = 1; index < COMP_CWORD; ++index)); do
        before=${COMP_WORDS[index]}
        [[ $before == = ]] && continue
        words+=("$before")
        [[ $before == -- ]] && literal=yes
        case $command:$before in
            *:-*) ;;
            :*) command=$before ;;
            @GROUP@:*) command="@GROUP@ $before" ;;
        esac
    done
    for ((back = 1; back <= ${#words[@]} && back <= @MOST@; ++back)); do
        _ostrafine_cli_kinds "$command" "${words[${#words[@]} - back]}"
        if ((${#kinds[@]} >= back)); then
            kind=${kinds[back - 1]}
            break
        fi
    done
    _ostrafine_cli_options "$command"
    case $kind in
        preset) _ostrafine_cli_reply "$word" "$program" presets --names ;;
        device) _ostrafine_cli_reply "$word" "$program" devices --uids ;;
        file) compopt -o default 2>/dev/null ;; # readline's own completion of files
        none) ;;
        *)
            if [[ -z $literal && $word == -* ]]; then
                COMPREPLY=($(compgen -W "$options" -- "$word"))
            elif [[ -z $command ]]; then
                COMPREPLY=($(compgen -W '@COMMANDS@' -- "$word"))
            elif [[ $place == file ]]; then
                compopt -o default 2>/dev/null
            elif [[ $place == preset ]]; then
                _ostrafine_cli_reply "$word" "$program" presets --names
            else
                COMPREPLY=($(compgen -W "$options" -- "$word"))
            fi
            ;;
    esac
}

complete -F _ostrafine_cli ostrafine-cli
)";

const char *kindOf(const CommandValue &value) {
    switch (value.completion) {
    case CommandValue::Completion::file:
        return "file";
    case CommandValue::Completion::presetName:
        return "preset";
    case CommandValue::Completion::deviceUID:
        return "device";
    case CommandValue::Completion::none:
        break;
    }
    return "none";
}

} // namespace

std::string bashCompletion(const Commands &commands) {
    std::string kinds;
    std::string options;
    std::size_t most = 0;
    for (const auto &command : commands) {
        std::vector<std::string> ofCommand;
        const CommandValue *place = positionalValue(*command);
        if (place != nullptr)
            ofCommand = place->choices;
        for (const std::string &name : namesOf(helpOption))
            ofCommand.push_back(name);
        for (const CommandArgument &argument : command->arguments()) {
            if (!argument.isOption())
                continue;
            ofCommand.push_back(argument.name);
            most = std::max(most, argument.values.size());
            std::vector<std::string> values;
            for (const CommandValue &value : argument.values)
                values.emplace_back(kindOf(value));
            if (!values.empty())
                kinds += fmt::format("        '{}:{}') kinds=({}) ;;\n", command->name(),
                                     argument.name, joined(values));
        }
        const std::string kind = place == nullptr ? "none" : kindOf(*place);
        options += fmt::format("        '{}') options='{}' place={} ;;\n", command->name(),
                               joined(ofCommand), kind == "none" ? "" : kind);
    }
    options += fmt::format("        {}) options='{} {}' place= ;;\n", controlGroup.name,
                           joined(groupedCommands(commands)), joined(namesOf(helpOption)));
    std::vector<std::string> names = plainCommands(commands);
    names.emplace_back(controlGroup.name);
    std::vector<std::string> ofProgram = namesOf(helpOption);
    for (const std::string &name : namesOf(versionOption))
        ofProgram.push_back(name);
    std::string text = withReplaced(script, "@KINDS@", kinds);
    text = withReplaced(text, "@OPTIONS@", options);
    text = withReplaced(text, "@PROGRAM@", joined(ofProgram));
    text = withReplaced(text, "@GROUP@", controlGroup.name);
    text = withReplaced(text, "@MOST@", std::to_string(most));
    return withReplaced(text, "@COMMANDS@", joined(names));
}

} // namespace quorbel
