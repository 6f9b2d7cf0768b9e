#include "endtoend/LiveTest.h"
#include "support/soundserver/SoundCard.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace quorbel {
namespace {

/// Lookahead of the limiter, our only latency.
constexpr std::int64_t limiterDelayFrames = 62;

/// Measures the delay from an application to a device's monitor, in frames of the graph's clock.
/// Exact, because player and recorder run in the same cycles of one clock.
class DelayProbe {
  public:
    /// Plays on `target`, or on the default device if `target` is empty.
    DelayProbe(GraphClient &client, const std::string &device, const std::string &target)
        : recorder_(client, device, 60.0), player_(client, impulses_, {"probe", target}) {}

    /// Returns the least delay of the next 20 impulses, which at least five must have: a stalled
    /// machine plays some of them cycles late. Throws `ServerError` if fewer have it, or if too few
    /// arrive in 20 s.
    std::int64_t delay() {
        player_.waitUntilRunning();
        const std::size_t played = impulses_.positions().size() + settling;
        const std::size_t start = recorder_.frames();
        std::vector<std::int64_t> delays;
        waitFor("the impulses arrive", 20.0, [&] {
            const Recording heard = recorder_.recording(start);
            const auto sent = impulses_.positions();
            delays.clear();
            for (std::size_t frame = 0; frame < heard.frames(); ++frame) {
                if (heard.left[frame] > Impulses::height / 2) {
                    const auto position = static_cast<std::int64_t>(heard.positionOf(frame));
                    // Pairs it with the last impulse sent: any delay is below the interval.
                    const auto after = std::ranges::upper_bound(sent, heard.positionOf(frame));
                    if (after - sent.begin() > static_cast<std::ptrdiff_t>(played))
                        delays.push_back(position - static_cast<std::int64_t>(*std::prev(after)));
                }
            }
            return delays.size() >= 20;
        });
        const std::int64_t least = *std::ranges::min_element(delays);
        if (std::ranges::count(delays, least) < 5)
            throw ServerError("the delay varies: " + testing::PrintToString(delays));
        return least;
    }

  private:
    static constexpr std::uint32_t interval = 4801; // falls on every frame of a cycle in turn
    static constexpr std::size_t settling = 3;      // ignored impulses after the start

    Impulses impulses_{interval};
    Recorder recorder_;
    Player player_;
};

class Delay : public LiveTest {};

TEST_F(Delay, IsTheLimitersLookaheadOnEveryDeviceAndQuantum) {
    for (const auto &[device, quantum] :
         {std::pair("speakers", 1024), std::pair("hdmi", 256), std::pair("speakers", 64)}) {
        SCOPED_TRACE(testing::Message() << device << " at " << quantum);
        server.forceQuantum(quantum);
        const std::int64_t direct = DelayProbe(client, device, device).delay();
        auto live = startLive(LiveSettings::flat(), {"--device", device});
        DelayProbe probe(client, device, "");
        ASSERT_TRUE(soonPlaysInto("probe", {tapName(*live)}));
        EXPECT_EQ(probe.delay(), direct + limiterDelayFrames);
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
    const std::int64_t processed = DelayProbe(client, "speakers", "").delay() + limiterDelayFrames;
    const auto live = startLive(LiveSettings::flat());
    playTone(-60.0); // keeps the graph running across the changes of rate
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    EXPECT_EQ(DelayProbe(client, "speakers", "").delay(), processed);
    const Recorder &recorder = record("speakers");
    for (const int rate : {44100, 48000}) {
        server.forceSampleRate(rate);
        recorder.skip(1.0);
    }
    EXPECT_EQ(DelayProbe(client, "speakers", "").delay(), processed);
}

} // namespace
} // namespace quorbel
