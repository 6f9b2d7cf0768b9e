#include "endtoend/LiveTest.h"
#include "support/soundserver/SoundCard.h"
#include "support/soundserver/StallWitness.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <utility>

namespace quorbel {
namespace {

/// Lookahead of the limiter, our only latency.
constexpr std::int64_t limiterDelayFrames = 62;

/// Measures the delay from an application to a device's monitor, in frames of the graph's clock.
/// Exact, because player and recorder run in the same cycles of one clock.
class DelayProbe {
  public:
    /// Plays on `target`, or on the default device if `target` is empty.
    DelayProbe(GraphClient &client, const std::string &device, const std::string &target,
               int quantum = 1024)
        : quantum_(quantum), witness_(0.25 * quantum / 48000.0), recorder_(client, device, 60.0),
          player_(client, impulses_, {"probe", target}) {}

    /// Returns the distinct delays of at least `count` impulses: a single one without losses.
    /// Ignores impulses that arrive while the machine stalls. Returns none if too few arrive in
    /// 20 s.
    std::set<std::int64_t> delays(std::size_t count) {
        player_.waitUntilRunning();
        const std::size_t played = impulses_.positions().size() + settling;
        const std::size_t start = recorder_.frames();
        std::set<std::int64_t> found;
        const auto enoughArrive = [&] {
            const Recording heard = recorder_.recording(start);
            const auto sent = impulses_.positions();
            const Disturbances disturbances(witness_, heard, quantum_);
            std::size_t arrived = 0;
            found.clear();
            for (std::size_t frame = 0; frame < heard.frames(); ++frame) {
                if (heard.left[frame] > Impulses::height / 2 && !disturbances.include(frame)) {
                    const auto position = static_cast<std::int64_t>(heard.positionOf(frame));
                    // Pairs it with the last impulse sent: any delay is below the interval.
                    const auto after = std::ranges::upper_bound(sent, heard.positionOf(frame));
                    if (after - sent.begin() > static_cast<std::ptrdiff_t>(played)) {
                        found.insert(position - static_cast<std::int64_t>(*std::prev(after)));
                        ++arrived;
                    }
                }
            }
            return arrived >= count;
        };
        return comesTrue(20.0, enoughArrive) ? found : std::set<std::int64_t>();
    }

  private:
    static constexpr std::uint32_t interval = 4801; // falls on every frame of a cycle in turn
    static constexpr std::size_t settling = 3;      // ignored impulses after the start

    Impulses impulses_{interval};
    int quantum_;
    StallWitness witness_;
    Recorder recorder_;
    Player player_;
};

class Delay : public LiveTest {};

TEST_F(Delay, IsTheLimitersLookaheadOnEveryDeviceAndQuantum) {
    for (const auto &[device, quantum] :
         {std::pair("speakers", 1024), std::pair("hdmi", 256), std::pair("speakers", 64)}) {
        SCOPED_TRACE(testing::Message() << device << " at " << quantum);
        server.forceQuantum(quantum);
        const auto direct = DelayProbe(client, device, device, quantum).delays(20);
        // Some virtual machines lose cycles of 1.3 ms even without us.
        if (quantum == 64 && direct.empty())
            GTEST_SKIP() << "this machine loses too many cycles at quantum 64 without us";
        ASSERT_EQ(direct.size(), 1U);
        auto live = startLive(LiveSettings::flat(), {"--device", device});
        DelayProbe probe(client, device, "", quantum);
        ASSERT_TRUE(soonPlaysInto("probe", {tapName(*live)}));
        EXPECT_EQ(probe.delays(20), std::set{*direct.begin() + limiterDelayFrames});
        stopLive(live);
    }
}

TEST_F(Delay, ApplicationsAreToldTheLatencyOfTheDeviceBehindUs) {
    const LateDevice wireless(client, "wireless", 9600);
    const Player &player = playSequence();
    const auto live = startLive(LiveSettings::flat(), {"--device", "wireless"});
    const auto isTold = [&] {
        return comesTrue(
            2.0, [&] { return std::abs(player.reportedDelay() - 9600 - limiterDelayFrames) <= 1; });
    };
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    EXPECT_TRUE(isTold()) << player.reportedDelay();
    const auto serial = [&] {
        const ServerState state = server.state();
        const Node *tap = state.node(tapName(*live));
        return tap == nullptr ? "" : tap->property("object.serial");
    };
    const std::string first = serial();
    server.destroyNode(tapName(*live));
    ASSERT_TRUE(comesTrue(2.0, [&] { return !serial().empty() && serial() != first; }));
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    EXPECT_TRUE(isTold()) << "by another tap: " << player.reportedDelay();
}

TEST_F(Delay, IsTheSameAfterAnotherRate) {
    const auto direct = DelayProbe(client, "speakers", "").delays(10);
    ASSERT_EQ(direct.size(), 1U);
    const std::set<std::int64_t> processed{*direct.begin() + limiterDelayFrames};
    const auto live = startLive(LiveSettings::flat());
    playTone(-60.0); // keeps the graph running across the changes of rate
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    EXPECT_EQ(DelayProbe(client, "speakers", "").delays(10), processed);
    const Recorder &recorder = record("speakers");
    for (const int rate : {44100, 48000}) {
        server.forceSampleRate(rate);
        recorder.skip(1.0);
    }
    EXPECT_EQ(DelayProbe(client, "speakers", "").delays(10), processed);
}

} // namespace
} // namespace quorbel
