#include "endtoend/window/WindowTest.h"

#include <cmath>
#include <string>

namespace quorbel {
namespace {

const Sought heldPeak{"button", "", "The highest level since it was cleared. Press to clear it."};
const Sought lowerByExcess{
    "button", "",
    "Lowers Global, or the target of Auto-Gain while it is on, by the largest reduction"};
const Sought lowerToFullScale{"button", "",
                              "Lowers the preset's gain until the highest point is at 0 dB"};

Sought named(Sought what, const std::string &name) {
    what.name = name;
    return what;
}

/// A tone of -3 dB and a band of +9 dB at its frequency.
class LevelTest : public WindowTest {
  protected:
    static constexpr double toneDB = -3.0;
    static constexpr double boostDB = 9.0;
    static constexpr double thresholdDB = -0.3;

    void playBoosted() {
        play(std::make_unique<Tone>(toneHz, toneDB, sampleRate));
        startProcessing();
        setSlider("Band 7 gain", boostDB);
    }
    [[nodiscard]] static bool isHidden(const Sought &what) {
        return desktop("hides", what.role, what.name, what.description) == true;
    }
    /// Waits until the held peak shows this sample peak.
    [[nodiscard]] static testing::AssertionResult soonHolds(const std::string &peak) {
        std::string seen;
        if (comesTrue(3.0, [&] {
                seen = read(heldPeak)["name"];
                return seen.starts_with("Peak " + peak + " dBFS, ");
            }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << seen;
    }
};

TEST_F(LevelTest, LowersLoudSettingsByTheAmountOnTheButtons) {
    open();
    playBoosted();
    EXPECT_TRUE(soonHears(thresholdDB)) << "limited";
    EXPECT_TRUE(soonHolds("-0.3"));
    EXPECT_TRUE(soonShows(named(lowerByExcess, "Lower by 6.3 dB"))) << "-3 + 9 + 0.3";
    EXPECT_TRUE(comesTrue(3.0, [] {
        return desktop("tree").get<std::string>().find(" s of the last minute") !=
               std::string::npos;
    }));
    press(lowerByExcess);
    EXPECT_TRUE(isHidden(lowerByExcess));
    EXPECT_NEAR(read({"slider", "Global"})["value"], -6.3, 0.01);
    EXPECT_TRUE(soonHears(toneDB + boostDB - 6.3));
    speakers().skip(1.5);
    EXPECT_TRUE(isHidden(lowerByExcess)) << "the way down does not count";

    EXPECT_TRUE(soonShows(named(lowerToFullScale, "Lower by 2.7 dB")));
    press(lowerToFullScale);
    EXPECT_TRUE(soonShows({"label", "Highest +0.0 dB"}));
    EXPECT_TRUE(soonHears(toneDB)) << "at the highest point as loud as unprocessed";
    EXPECT_TRUE(soonHolds("-0.3")) << "held";
    press(heldPeak);
    EXPECT_TRUE(soonHolds("-3.0")) << "cleared";
}

TEST_F(LevelTest, LowersPeaksAboveFullScaleWithoutTheLimiter) {
    open();
    goTo("Limiter & gain");
    press({"check box", "Master Limiter"});
    goTo("Equalizer");
    playBoosted();
    EXPECT_TRUE(soonHears(toneDB + boostDB));
    EXPECT_TRUE(soonHolds("+6.0"));
    press(named(lowerByExcess, "Lower by 6.0 dB"));
    EXPECT_TRUE(soonHears(0.0));
    EXPECT_TRUE(soonHolds("+0.0"));
    pressButton("Undo Lower by 6.0 dB");
    EXPECT_TRUE(soonHears(toneDB + boostDB));
}

} // namespace
} // namespace quorbel
