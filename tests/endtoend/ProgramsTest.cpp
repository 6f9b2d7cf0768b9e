#include "endtoend/LiveTest.h"
#include "settings/state/ProgramRulesFile.h"

#include <gmock/gmock.h>

#include <fstream>

namespace quorbel {
namespace {

/// `live` with rules for programs.
class Programs : public LiveTest {
  protected:
    void write(const ProgramRules &rules) const {
        create_directories(server.settingsFolder());
        ProgramRulesFile(server.settingsFolder() / "state.json").write(rules);
    }
    [[nodiscard]] ProgramRules defaults() const {
        return ProgramRulesFile(server.settingsFolder() / "state.json").rules();
    }
    [[nodiscard]] static Player::Options program(const std::string &name,
                                                 const std::string &role = "Music") {
        Player::Options options(name);
        options.properties = {{"application.name", name}, {"media.role", role}};
        return options;
    }
};

TEST_F(Programs, AreLeftAloneFromTheFirstBlock) {
    ProgramRules rules = defaults();
    rules.rules = {{.program = {.name = "game"}, .title = "*battle", .isProcessed = false}};
    write(rules);
    Recorder &speakers = record("speakers");
    auto live = startLive(twelveDBLower());
    Player::Options game = program("game");
    game.properties["media.name"] = "The Battle";
    for (const Player::Options &options : {game, program("telephone", "Communication")}) {
        playSequence(options);
        EXPECT_TRUE(soonHears(speakers, Heard::dry));
        closePlayer();
        EXPECT_TRUE(soonHears(speakers, Heard::silence));
    }
    EXPECT_EQ(longestSeconds(speakers.recording(), Heard::processed), 0.0)
        << "nothing of them has gone through the tap";
    game.properties["media.name"] = "Menu";
    playSequence(game);
    EXPECT_TRUE(soonHears(speakers, Heard::processed));
    stopLive(live);
}

TEST_F(Programs, WithADamagedFileAreNotProcessed) {
    create_directories(server.settingsFolder());
    std::ofstream(server.settingsFolder() / "programs.json") << R"({"version":1,"calls":"yes"})";
    const auto live = server.start({LiveProcess::program(), "live"});
    EXPECT_EQ(live->exitStatusWithin(5.0), 1);
    EXPECT_THAT(live->errors(), testing::HasSubstr("programs.json: calls"));
}

/// Checks every line of the manual's table about recording and sharing.
TEST_F(Programs, AreRecordedAsTheManualSays) {
    Recorder &device = record("speakers");
    playSequence(program("music"));
    auto live = startLive(twelveDBLower());
    EXPECT_TRUE(soonHears(device, Heard::processed)) << "what the device plays";
    // Recorders of one program, and of all sound but their own, link themselves to streams.
    Recorder &stream = record("hdmi");
    for (const std::string side : {"FL", "FR"})
        EXPECT_EQ(server.start({"pw-link", "music:output_" + side, "recorder-hdmi:input_" + side})
                      ->exitStatusWithin(5.0),
                  0);
    EXPECT_TRUE(soonHears(stream, Heard::dry)) << "one program";
    EXPECT_TRUE(soonHears(device, Heard::processed));
    std::vector<std::string> streams;
    for (const Node &node : server.state().nodes)
        if (node.property("media.class") == "Stream/Output/Audio")
            streams.push_back(node.name());
    EXPECT_EQ(streams, std::vector<std::string>{"music"}) << "ours is none of them";
    stopLive(live);
}

} // namespace
} // namespace quorbel
