#include "endtoend/LiveTest.h"
#include "support/soundserver/StallWitness.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>

namespace quorbel {
namespace {

/// After any end of processing, every application plays as it did before.
class Ending : public LiveTest {
  protected:
    /// Starts an application pinned to hdmi by the user, and one that follows the default device.
    void playPinnedAndUnpinned() {
        playSequence({"pinned"});
        server.moveApplication("pinned", "hdmi");
        ASSERT_TRUE(soonPlaysInto("pinned", {"hdmi"}));
        playSequence({"unpinned"});
        ASSERT_TRUE(soonPlaysInto("unpinned", {"speakers"}));
        ASSERT_TRUE(soonHears(hdmi, Heard::dry));
        ASSERT_TRUE(soonHears(speakers, Heard::dry));
        before = settledMemory();
        // Without the pin the later comparisons could not fail.
        ASSERT_TRUE(remembersTarget(before.stored, "pinned", "hdmi"))
            << testing::PrintToString(before.stored);
    }

    void expectEverythingAsBefore() {
        EXPECT_TRUE(soonPlaysInto("pinned", {"hdmi"}, 1.0));
        EXPECT_TRUE(soonPlaysInto("unpinned", {"speakers"}, 1.0));
        EXPECT_TRUE(soonIsAsBefore(before));
    }

    Recorder &speakers = record("speakers");
    Recorder &hdmi = record("hdmi");
    SessionMemory before;
};

class EndingBySignal : public Ending, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Signal, EndingBySignal, testing::Values(SIGTERM, SIGHUP, SIGKILL),
                         [](const auto &value) {
                             return std::string("SIG") + sigabbrev_np(value.param);
                         });

TEST_P(EndingBySignal, GivesEveryApplicationItsOwnDeviceBackWithinASecond) {
    playPinnedAndUnpinned();
    const auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonPlaysInto("pinned", {tapName(*live)}));
    ASSERT_TRUE(soonPlaysInto("unpinned", {tapName(*live)}));
    ASSERT_TRUE(soonHears(hdmi, Heard::silence));

    live->process().signal(GetParam());
    EXPECT_TRUE(soonHears(speakers, Heard::dry, 1.0));
    EXPECT_TRUE(soonHears(hdmi, Heard::dry, 1.0));
    EXPECT_EQ(live->process().exitStatusWithin(2.0), GetParam() == SIGKILL ? 128 + SIGKILL : 0)
        << live->process().errors();
    expectEverythingAsBefore();
    EXPECT_TRUE(comesTrue(1.0, [&] { return live->helpers().empty(); }));
}

TEST_F(Ending, AKillIsHeardForThreeCyclesAtMost) {
    server.forceQuantum(1024);
    playSequence();
    const auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonHears(speakers, Heard::processed));
    const std::size_t start = speakers.frames();
    live->process().signal(SIGKILL);
    ASSERT_TRUE(soonHears(speakers, Heard::dry, 1.0));
    const auto heard = speakers.recording(start);
    EXPECT_LE(std::ranges::count(heard.left, 0.0F), 3 * 1024);
}

TEST_F(Ending, TheNextStartRepairsAnEndWithoutAWatchdog) {
    playPinnedAndUnpinned();
    auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonPlaysInto("pinned", {tapName(*live)}));
    const auto helpers = live->helpers();
    ASSERT_FALSE(helpers.empty());
    for (const pid_t helper : helpers)
        kill(helper, SIGKILL);
    live->process().signal(SIGKILL);
    // The server moves both to the default device; the user's pin remains stored.
    EXPECT_TRUE(soonPlaysInto("pinned", {"speakers"}));
    EXPECT_TRUE(soonPlaysInto("unpinned", {"speakers"}));
    EXPECT_EQ(settledMemory().stored, before.stored);

    live = startLive(twelveDBLower());
    ASSERT_TRUE(soonPlaysInto("pinned", {tapName(*live)}));
    stopLive(live);
    expectEverythingAsBefore();
}

TEST_F(Ending, AReverbIsHeardOutAfterTheLastApplication) {
    const PrivateSoundServer quiet;
    LiveSettings settings = LiveSettings::flat();
    settings.reverbMix = 100.0;
    LiveProcess live(quiet, settings);
    live.waitUntilRunning();
    Sequence sequence;
    const auto file = quiet.folder() / "sequence.wav";
    writeSoundFile(file, rendered(sequence, 1.5));
    const auto application = quiet.start({"pw-play", file.string()});
    GraphClient quietClient(quiet);
    const Recorder recorder(quietClient, "speakers", 30.0, 48000, true);
    const StallWitness witness(0.005); // a quarter of a cycle; longer stalls may lose it
    ASSERT_EQ(application->exitStatusWithin(5.0), 0);
    const std::size_t framesAtEnd = recorder.frames();
    const auto isPlaying = [&] { return quiet.state().node("speakers")->state == "running"; };
    const auto ended = SteadyClock::now();
    ASSERT_TRUE(comesTrue(15.0, [&] { return !isPlaying(); }));
    EXPECT_GT(SteadyClock::now() - ended, std::chrono::seconds(2));

    // If the graph stopped early, the effects would lose their state and cut off the tail.
    const Recording heard = recorder.recording(framesAtEnd);
    std::size_t sound = 0; ///< frame after the last nonzero one
    std::size_t longestHole = 0;
    for (std::size_t frame = 0; frame < heard.frames(); ++frame) {
        if (heard.left[frame] != 0.0F) {
            longestHole = std::max(longestHole, frame - sound);
            sound = frame + 1;
        }
    }
    EXPECT_GT(sound, 48000U);
    if (witness.stalls().empty())
        EXPECT_LT(longestHole, 64U);
    else
        std::cout << "the machine stood still; longest hole " << longestHole << " frames\n";
}

} // namespace
} // namespace quorbel
