#include "endtoend/LiveTest.h"

#include <memory>
#include <string>
#include <vector>

namespace quorbel {
namespace {

/// Processing survives changes of the desktop's sound, or resumes without the user.
class Comeback : public LiveTest {
  protected:
    /// Recorder and application after the server's restart, which disconnects earlier clients.
    struct Afterwards {
        explicit Afterwards(PrivateSoundServer &server) : client(server) {}
        GraphClient client;
        Recorder speakers{client, "speakers", 60.0, 48000};
        Sequence sequence;
        Player player{client, sequence};
    };

    static bool waits(const LiveProcess &live) { return live.hasLogged("revine singură"); }
    static bool isBack(const LiveProcess &live) { return live.hasLogged("a revenit după"); }
};

TEST_F(Comeback, WithTheServerWithinTwoSeconds) {
    playSequence();
    auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    server.crash();
    EXPECT_TRUE(comesTrue(1.0, [&] { return waits(*live); })) << "noticed within a second";
    EXPECT_TRUE(live->process().running());

    server.restart();
    EXPECT_TRUE(comesTrue(2.0, [&] { return isBack(*live); })) << live->process().errors();
    {
        Afterwards now(server);
        EXPECT_TRUE(soonHears(now.speakers, Heard::processed));
        EXPECT_TRUE(soonPlaysInto("player", {tapName(*live)}));
        stopLive(live);
        EXPECT_TRUE(soonPlaysInto("player", {"speakers"}));
        EXPECT_TRUE(soonHears(now.speakers, Heard::dry));
    }
}

TEST_F(Comeback, FromAnotherDefaultDeviceWithoutADrySound) {
    const Recorder &hdmi = record("hdmi");
    playSequence();
    const auto live = startLive(twelveDBLower(), {"--device", "speakers"});
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    ASSERT_TRUE(soonHears(hdmi, Heard::silence));
    const std::size_t change = hdmi.frames();
    server.setDefaultDevice("hdmi");
    ASSERT_TRUE(
        comesTrue(2.0, [&] { return server.state().defaultName("default.audio.sink") == "hdmi"; }));
    const Recorder &speakers = record("speakers"); // only now: a new default moves recorders too
    EXPECT_TRUE(soonHears(speakers, Heard::processed)) << "the choice remains";
    EXPECT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    EXPECT_EQ(heardIn(hdmi.recording(change)), Heard::silence)
        << "no application was put back meanwhile";
}

TEST_F(Comeback, OfDestroyedNodesKeepsApplicationsProcessed) {
    Recorder &speakers = record("speakers");
    Recorder &hdmi = record("hdmi");
    playSequence({"pinned"});
    server.moveApplication("pinned", "hdmi");
    ASSERT_TRUE(soonHears(hdmi, Heard::dry));
    const SessionMemory before = settledMemory();
    for (const std::string kind : {"quorbel.tap.", "quorbel.out."}) {
        SCOPED_TRACE(kind);
        auto live = startLive(twelveDBLower());
        ASSERT_TRUE(soonHears(speakers, Heard::processed));
        const std::size_t onSpeakers = speakers.frames();
        const std::size_t onHDMI = hdmi.frames();
        server.destroyNode(kind + std::to_string(live->process().pid()));
        EXPECT_TRUE(soonHears(speakers, Heard::processed));
        EXPECT_LT(longestSeconds(speakers.recording(onSpeakers), Heard::dry), 2.0);
        EXPECT_LT(longestSeconds(hdmi.recording(onHDMI), Heard::dry), 2.0);
        EXPECT_TRUE(comesTrue(1.0, [&] { return saysItRuns(*live); }));
        stopLive(live);
        // The watchdog removes it if the server answered us too late.
        EXPECT_TRUE(comesTrue(1.0, [&] { return !exists(journal()); }));
        EXPECT_TRUE(soonPlaysInto("pinned", {"hdmi"}, 1.0));
    }
    EXPECT_TRUE(soonIsAsBefore(before));
}

TEST_F(Comeback, SurvivesAHailOfShortApplications) {
    const Recorder &speakers = record("speakers");
    auto live = startLive(twelveDBLower());
    const double before = live->memoryMiB();
    Sequence sounds[5];
    for (int round = 0; round < 40; ++round) {
        std::vector<std::unique_ptr<Player>> players;
        for (Sequence &sound : sounds)
            players.push_back(std::make_unique<Player>(client, sound, Player::Options("hail")));
    }
    playSequence();
    EXPECT_TRUE(soonHears(speakers, Heard::processed));
    EXPECT_LT(live->memoryMiB(), before + 4.0) << "nothing is kept of the two hundred";
    stopLive(live);
    EXPECT_TRUE(soonPlaysInto("player", {"speakers"}));
}

} // namespace
} // namespace quorbel
