#include "cli/CliTest.h"

namespace quorbel {
namespace {

class Usage : public CliTest {
  protected:
    /// Bash's completions of the last word, one per line.
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

TEST_F(Usage, AnInvalidCommandLineExitsWithStatusTwo) {
    const std::vector<std::vector<std::string>> commandLines{
        {""},
        {"play"},
        {"render"},
        {"render", "in.wav"},
        {"render", "in.wav", "out.wav", "more.wav"},
        {"render", "--block", "0", "in.wav", "out.wav"},
        {"render", "--block", "8193", "in.wav", "out.wav"},
        {"render", "--block", "many", "in.wav", "out.wav"},
        {"render", "--at", "-1", "s.json", "in.wav", "out.wav"},
        {"render", "--at", "nan", "s.json", "in.wav", "out.wav"},
        {"live", "--seconds", "soon"},
        {"live", "--seconds", "-1"},
        {"presets", "--json", "--names"},
        {"render", "--unheard-of", "in.wav", "out.wav"},
    };
    for (const auto &arguments : commandLines) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Result result = run(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.errors, "");
        EXPECT_TRUE(folderContents().empty());
    }
}

TEST_F(Usage, BashCompletesNamesAndQuotesThem) {
    EXPECT_EQ(completed({"live", "--preset", "warm"}), "Warm\\ /\\ Long\\ Session\n");
    EXPECT_EQ(completed({"live", "--preset", "=", "Warm\\ /"}), "Warm\\ /\\ Long\\ Session\n");
    EXPECT_EQ(completed({"live", "--preset", "\"Warm / L"}), "Warm / Long Session\n");
    EXPECT_EQ(completed({"render", "--at", "1", ""}), "\n") << "files are left to readline";

    Persisted settings = flatSettings();
    settings.presets.push_back({.name = "It's $5: \"a=b\""});
    userSettings(settings);
    EXPECT_EQ(completed({"live", "--preset", "it"}), "It\\'s\\ \\$5\\:\\ \\\"a\\=b\\\"\n");
    EXPECT_EQ(completed({"live", "--preset", "'it"}), "It'\\''s $5: \"a=b\"\n");
    EXPECT_EQ(completed({"live", "--preset", "\"it"}), "It's \\$5: \\\"a=b\\\"\n");
}

} // namespace
} // namespace quorbel
