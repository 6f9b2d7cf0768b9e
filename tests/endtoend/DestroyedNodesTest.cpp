#include "endtoend/LiveTest.h"

#include <algorithm>
#include <optional>

namespace quorbel {
namespace {

/// A node of ours that goes behind our back is made again, and until then the state says so.
class DestroyedNodes : public LiveTest {
  protected:
    /// The present name of the node whose name begins with `kind`.
    [[nodiscard]] std::optional<std::string> nodeOfKind(const std::string &kind) const {
        const auto names = ourNodes();
        const auto found = std::ranges::find_if(
            names, [&](const std::string &name) { return name.starts_with(kind); });
        return found == names.end() ? std::nullopt : std::optional(*found);
    }

    Recorder &speakers = record("speakers");
    Recorder &hdmi = record("hdmi");
};

TEST_F(DestroyedNodes, AreReplacedWithinTwoSecondsAndStopLeavesNothing) {
    playSequence({"pinned"});
    server.moveApplication("pinned", "hdmi");
    ASSERT_TRUE(soonHears(hdmi, Heard::dry));
    const SessionMemory before = settledMemory();
    ASSERT_TRUE(remembersTarget(before.stored, "pinned", "hdmi"));

    for (const std::string kind : {"quorbel.tap", "quorbel.out", "quorbel.keep"}) {
        SCOPED_TRACE(kind);
        auto live = startLive(twelveDBLower());
        ASSERT_TRUE(soonHears(speakers, Heard::processed));
        const auto name = nodeOfKind(kind);
        if (!name && kind == "quorbel.keep")
            continue; // made when there is something to keep the device awake for
        ASSERT_TRUE(name.has_value());
        const std::size_t onSpeakers = speakers.frames();
        const std::size_t onHDMI = hdmi.frames();
        server.destroyNode(*name);
        EXPECT_TRUE(soonHears(speakers, Heard::processed));
        EXPECT_LT(longestSeconds(speakers.recording(onSpeakers), Heard::dry), 2.0);
        EXPECT_LT(longestSeconds(hdmi.recording(onHDMI), Heard::dry), 2.0);
        const bool isHeard = heardIn(speakers.last(0.1)) == Heard::processed;
        EXPECT_TRUE(comesTrue(1.0, [&] { return saysItRuns(*live) == isHeard; }))
            << (isHeard ? "says that it does not process" : "says that it processes");
        stopLive(live);
        // By us, or by the watchdog where the server was slow to answer.
        EXPECT_TRUE(comesTrue(1.0, [&] { return !exists(journal()); }));
        EXPECT_TRUE(soonPlaysInto("pinned", {"hdmi"}, 1.0));
    }
    EXPECT_TRUE(soonIsAsBefore(before));
}

} // namespace
} // namespace quorbel
