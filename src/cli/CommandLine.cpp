#include "cli/CommandLine.h"

#include "platform/core/Version.h"
#include "settings/records/json/JsonLiterals.h"

// The only file that includes CLI11: its headers take seconds to compile.
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace quorbel {

namespace {

constexpr int exitUsage = 2;

CLI::Validator timeInSeconds() {
    return {[](const std::string &text) -> std::string {
                double seconds = 0.0;
                const bool isTime = CLI::detail::lexical_cast(text, seconds) &&
                                    std::isfinite(seconds) && seconds >= 0.0;
                return isTime ? "" : text + " is not a time in seconds";
            },
            ""};
}

/// Adds one argument to a subcommand, with the conversion for its variable's type.
struct ArgumentAdder {
    CLI::App &subcommand;
    const CommandArgument &argument;

    CLI::Option *operator()(bool *variable) const {
        return subcommand.add_flag(argument.name, *variable, argument.help);
    }
    CLI::Option *operator()(std::string *variable) const { return add(*variable); }
    CLI::Option *operator()(std::optional<std::string> *variable) const { return add(*variable); }
    CLI::Option *operator()(CommandArgument::WholeNumber number) const {
        return add(*number.variable)->check(CLI::Range(number.least, number.most).description(""));
    }
    CLI::Option *operator()(std::optional<double> *variable) const {
        return add(*variable)->check(timeInSeconds());
    }
    CLI::Option *operator()(std::vector<TimedFile> *variable) const {
        return add(*variable)
            ->check(timeInSeconds().application_index(0))
            ->expected(1)
            ->take_all()
            ->allow_extra_args(false);
    }

  private:
    template <typename Value> CLI::Option *add(Value &variable) const {
        return subcommand.add_option(argument.name, variable, argument.help);
    }
};

/// The names of an option's values; empty for a positional argument, which has its own name.
std::string valueNames(const CommandArgument &argument) {
    std::string names;
    if (argument.isOption())
        for (const CommandValue &value : argument.values)
            names += (names.empty() ? "" : " ") + value.name;
    return names;
}

CLI::App *addSubcommand(CLI::App &parent, const Command &command) {
    const std::string word = command.name().substr(command.name().rfind(' ') + 1);
    CLI::App *subcommand = parent.add_subcommand(word, command.summary());
    for (const CommandArgument &argument : command.arguments()) {
        CLI::Option *option = std::visit(ArgumentAdder{*subcommand, argument}, argument.variable);
        option->required(argument.isRequired);
        if (!argument.values.empty()) {
            option->type_name(valueNames(argument));
            if (argument.values.front().isOneOfThem)
                option->check(CLI::IsMember(argument.values.front().choices).description(""));
        }
        if (!argument.excludes.empty())
            option->excludes(subcommand->get_option(argument.excludes));
    }
    return subcommand;
}

/// Reports an unknown subcommand by name; CLI11 only says that one is required.
bool complainedOfWord(const CLI::App &asked) {
    const std::vector<std::string> unknown = asked.remaining();
    if (unknown.empty() || !asked.get_subcommands().empty())
        return false;
    std::string known;
    for (const CLI::App *subcommand : asked.get_subcommands({}))
        known += (known.empty() ? "" : ", ") + subcommand->get_name();
    fmt::print(stderr, "ostrafine-cli: {} is no command; there are: {}\n",
               quotedText(unknown.front()), known);
    return true;
}

} // namespace

ParsedCommandLine parseCommandLine(const std::vector<std::unique_ptr<Command>> &commands, int argc,
                                   const char *const *argv) {
    CLI::App program(programSummary, "ostrafine-cli");
    program.set_help_flag(helpOption.names, helpOption.help);
    program.set_version_flag(versionOption.names, std::string("ostrafine-cli ") + version,
                             versionOption.help);
    program.require_subcommand(1);
    std::vector<const CLI::App *> subcommands;
    subcommands.reserve(commands.size());
    CLI::App *group = nullptr;
    for (const auto &command : commands) {
        const bool isInGroup = command->name().find(' ') != std::string::npos;
        if (isInGroup && group == nullptr) {
            group = program.add_subcommand(controlGroup.name, controlGroup.summary);
            group->require_subcommand(1);
        }
        subcommands.push_back(addSubcommand(isInGroup ? *group : program, *command));
    }
    try {
        program.parse(argc, argv);
    } catch (const CLI::RequiredError &error) {
        if (complainedOfWord(group != nullptr && group->parsed() ? *group : program))
            return {nullptr, exitUsage};
        return {nullptr, program.exit(error) == 0 ? 0 : exitUsage};
    } catch (const CLI::ParseError &error) {
        return {nullptr, program.exit(error) == 0 ? 0 : exitUsage};
    }
    std::size_t chosen = 0;
    while (!subcommands[chosen]->parsed())
        ++chosen;
    return {commands[chosen].get(), 0};
}

} // namespace quorbel
