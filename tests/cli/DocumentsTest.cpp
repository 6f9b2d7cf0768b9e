#include "cli/CliTest.h"

#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <utility>

namespace quorbel {
namespace {

using testing::HasSubstr;

class Documents : public CliTest {
  protected:
    [[nodiscard]] static std::string document(const std::string &name) {
        return bytes(QUORBEL_CLI_DOCUMENTS "/" + name);
    }

    [[nodiscard]] static std::set<std::string> matches(const std::string &text,
                                                       const char *pattern) {
        const std::regex expression(pattern, std::regex::ECMAScript | std::regex::multiline);
        std::set<std::string> found;
        for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
             ++match)
            found.insert((*match)[1]);
        return found;
    }

    /// What `text` says between a heading and the next one of its kind.
    [[nodiscard]] static std::string section(const std::string &text, const std::string &heading,
                                             const std::string &end) {
        const std::size_t start = text.find(heading);
        EXPECT_NE(start, std::string::npos) << heading;
        if (start == std::string::npos)
            return {};
        return text.substr(start, text.find(end, start + heading.size()) - start);
    }

    /// The lines that bash completes the last of these words to.
    [[nodiscard]] std::string completed(const std::vector<std::string> &words) const {
        std::vector<std::string> command{
            "/bin/bash",
            "-c",
            R"(. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _ostrafine_cli;)"
            R"( printf '%s\n' "${COMPREPLY[@]}")",
            "bash",
            QUORBEL_CLI_DOCUMENTS "/ostrafine-cli.bash",
            QUORBEL_CLI};
        command.insert(command.end(), words.begin(), words.end());
        const Result result = run(command);
        EXPECT_EQ(result.errors, "");
        return result.output;
    }
};

TEST_F(Documents, nameEveryCommandAndOptionThatHelpNames) {
    const std::string manual = document("ostrafine-cli.1");
    const std::string zsh = document("_ostrafine-cli");
    const std::string fish = document("ostrafine-cli.fish");
    const std::string help = run({"--help"}).output;
    std::vector<std::vector<std::string>> commands;
    for (const std::string &command :
         matches(help.substr(help.find("Subcommands:")), "^  ([a-z]+) ")) {
        const std::string own = run({command, "--help"}).output;
        if (own.find("Subcommands:") == std::string::npos)
            commands.push_back({command});
        else
            for (const std::string &word :
                 matches(own.substr(own.find("Subcommands:")), "^  ([a-z]+) "))
                commands.push_back({command, word});
    }
    ASSERT_GE(commands.size(), 17U);
    for (const std::vector<std::string> &words : commands) {
        const std::string &command = words.back();
        std::vector<std::string> line = words;
        const auto with = [&](const std::string &more) {
            line.back() = more.empty() ? command.substr(0, command.size() - 1) : command;
            if (!more.empty())
                line.push_back(more);
            return std::exchange(line, words);
        };
        SCOPED_TRACE(testing::PrintToString(words));
        const std::string name = words.size() == 1 ? command : words[0] + " " + command;
        const std::string ofManual = section(manual, ".SS " + name + "\n", "\n.S");
        const std::string ofZsh = section(zsh, "  " + command + ")\n", ";;");
        const std::string inBash = completed(with("-"));
        EXPECT_THAT(completed(with("")), HasSubstr(command));
        EXPECT_THAT(zsh, HasSubstr("'" + command + ":"));
        EXPECT_THAT(fish, HasSubstr("-a " + command + " "));
        const std::string ofCommand = run(with("--help")).output;
        for (const std::string &option : matches(ofCommand, "^  (?:-h,)?--([a-z]+)")) {
            EXPECT_THAT(option == "help" ? manual : ofManual,
                        HasSubstr("\\-\\-" + option + "\\fR"));
            EXPECT_THAT(inBash, HasSubstr("--" + option + "\n"));
            EXPECT_THAT(ofZsh, testing::ContainsRegex("--" + option + "=?\\["));
            EXPECT_THAT(fish, testing::ContainsRegex((option == "help" ? " -s h" : command + "'") +
                                                     " -l " + option + " "));
        }
        for (const std::string &positional : matches(ofCommand, "^  ([A-Z]+) "))
            EXPECT_THAT(ofManual, HasSubstr("\n\\fI" + positional + "\\fR\n"));
    }
}

TEST_F(Documents, bashCompletesNamesAndQuotesThem) {
    EXPECT_EQ(completed({"live", "--preset", "warm"}), "Warm\\ /\\ Long\\ Session\n");
    EXPECT_EQ(completed({"live", "--preset", "=", "Warm\\ /"}), "Warm\\ /\\ Long\\ Session\n");
    EXPECT_EQ(completed({"live", "--preset", "\"Warm / L"}), "Warm / Long Session\n");
    EXPECT_EQ(completed({"render", "--at", "1", ""}), "\n") << "files are left to readline";
    EXPECT_EQ(completed({"ctl", "preset", "warm"}), "Warm\\ /\\ Long\\ Session\n");
    EXPECT_EQ(completed({"ctl", "compare", "o"}), "on\noff\n");
    EXPECT_EQ(completed({"ctl", "set", "spatial.reverbM"}), "spatial.reverbMix\n");

    Persisted settings = flatSettings();
    settings.presets.push_back({.name = "It's $5: \"a=b\""});
    std::filesystem::create_directory(path("../Quorbel"));
    file("../Quorbel/state.json", settings);
    EXPECT_EQ(completed({"live", "--preset", "it"}), "It\\'s\\ \\$5\\:\\ \\\"a\\=b\\\"\n");
    EXPECT_EQ(completed({"live", "--preset", "'it"}), "It'\\''s $5: \"a=b\"\n");
    EXPECT_EQ(completed({"live", "--preset", "\"it"}), "It's \\$5: \\\"a=b\\\"\n");
}

} // namespace
} // namespace quorbel
