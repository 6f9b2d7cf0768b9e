#include "endtoend/LiveTest.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace quorbel {
namespace {

/// A loopback from one device's monitor to another, as users set up to play on both.
struct Copy {
    std::string from;
    std::string to;
    [[nodiscard]] std::string name() const { return "copy-of-" + from; }
};

/// Streams that carry the processed sound are never captured, because that would cause feedback.
class Feedback : public LiveTest {
  protected:
    static constexpr double levelDB = -20.0;

    Feedback()
        : LiveTest({48000,
                    {{"speakers", "Speakers"}, {"headphones", "Headphones"}, {"hdmi", "HDMI"}}}) {}

    void make(const Copy &copy) {
        server.run({"pactl", "load-module", "module-loopback", "source=" + copy.from + ".monitor",
                    "sink=" + copy.to, "latency_msec=20",
                    "sink_input_properties=node.name=" + copy.name()});
        waitFor(copy.name() + " plays", 5.0,
                [&] { return !server.state().targetsOf(copy.name()).empty(); });
    }

    /// Level of the loudest 200 ms (whole periods of the tone) in dB, 0 dB being a full-scale sine.
    /// A shorter window would count the one dry cycle of a new player.
    static double loudestDB(const std::vector<float> &samples) {
        constexpr std::size_t window = 9600;
        double loudest = 1e-12;
        for (std::size_t start = 0; start + window <= samples.size(); start += window / 2) {
            const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(start);
            const double energy = std::inner_product(begin, begin + window, begin, 0.0);
            loudest = std::max(loudest, 2.0 * energy / window);
        }
        return 10.0 * std::log10(loudest);
    }

    const std::vector<Recorder *> recorders = {&record("speakers"), &record("headphones"),
                                               &record("hdmi")};
};

TEST_F(Feedback, NeverArisesAndEndsWithTheSound) {
    // The first copy exists before processing starts, the copy of that copy comes later.
    const Copy toHeadphones{"speakers", "headphones"};
    const Copy toHDMI{"headphones", "hdmi"};
    make(toHeadphones);
    const std::size_t start = recorders.front()->frames();
    const auto live = startLive(LiveSettings::flat(), {"--device", "speakers"});
    playTone(levelDB);
    EXPECT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    make(toHDMI);
    for (const Copy &copy : {toHeadphones, toHDMI})
        EXPECT_TRUE(soonPlaysInto(copy.name(), {copy.to}));
    recorders.front()->skip(1.0); // enough for 25 round trips of a 40 ms loop
    closePlayer();
    for (const Recorder *recorder : recorders)
        EXPECT_TRUE(comesTrue(3.0, [&] { return peak(recorder->last(0.2).left) < 1e-4F; }))
            << "something still plays at " << peak(recorder->last(0.2).left);
    // Measures our device, through which any loop passes. (The server's loopback sometimes starts
    // with garbage on its own device, even without us.)
    EXPECT_LT(loudestDB(recorders.front()->recording(start).left), levelDB + 2.0);
}

} // namespace
} // namespace quorbel
