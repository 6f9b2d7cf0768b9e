// The headroom up to full scale.

#include "ui/logic/Headroom.h"
#include "ui/model/ModelFixture.h"

#include <cmath>

namespace quorbel::testing {
namespace {

class LevelModelTest : public ModelTest {
  protected:
    [[nodiscard]] LevelModel &level() { return *app->level(); }
    void setBands(const std::vector<EQBand> &some) {
        std::vector<EQBand> all = bands();
        for (std::size_t i = 0; i < some.size(); ++i)
            all[i] = some[i];
        engine().eq().setBands(all);
    }
};

TEST_F(LevelModelTest, TheHighestPointIsOfEqualiserToneAndAllGains) {
    EXPECT_EQ(level().highestPointText(), "+0.0 dB");
    // The narrowest band lies between two points of the coarse search.
    setBands({EQBand{.frequency = 1234.5F, .gainDB = 6.0F, .q = 20.0F}});
    EXPECT_NEAR(highestPointDB(engine().eq(), {}, 48000.0), 6.0, 0.01);
    // The peaks of equal bands and of the tone add up.
    setBands({EQBand{.frequency = 1000.0F, .gainDB = 4.0F, .q = 1.0F},
              EQBand{.frequency = 1000.0F, .gainDB = 3.0F, .q = 1.0F}});
    engine().setSpatial({.toneMidDB = 2.0F});
    app->equalizer()->setGlobalGainDB(-1.0);
    level().setPresetGainDB(-2.5);
    EXPECT_EQ(level().highestPointText(), "+5.5 dB");
    EXPECT_TRUE(level().overshoots());

    level().lowerToFullScale();
    EXPECT_EQ(level().highestPointText(), "+0.0 dB");
    EXPECT_FALSE(level().overshoots());
    EXPECT_NEAR(level().presetGainDB(), -8.0, 0.01);
    EXPECT_EQ(app->equalizer()->globalGainDB(), -1.0);
    app->history()->undo();
    EXPECT_EQ(level().presetGainDB(), -2.5);

    setBands({EQBand{.frequency = 100.0F, .gainDB = -12.0F}, EQBand{.frequency = 1000.0F}});
    EXPECT_NEAR(highestPointDB(engine().eq(), {}, 48000.0), -3.5, 0.05);
}

TEST_F(LevelModelTest, OneClickLowersTheGainByTheLimitersReduction) {
    const MixerConfig limited;
    EXPECT_EQ(excessDB({.largestReductionDB = 2.1F}, limited), 2.1);
    MixerConfig open;
    open.limiterEnabled = false;
    EXPECT_EQ(excessDB({.samplePeakDB = 1.5F}, open), 1.5);
    EXPECT_EQ(excessDB({.samplePeakDB = -1.5F}, open), 0.0);
    EXPECT_EQ(heldPeakText({.samplePeakDB = -0.3F, .truePeakDB = 0.2F}),
              "Peak -0.3 dBFS, +0.2 dBTP");
    EXPECT_EQ(heldPeakText({}), "Peak –");

    setBands({EQBand{.frequency = 1000.0F, .gainDB = 12.0F, .q = 1.0F}});
    run();
    clock.advance(3.0);
    EXPECT_NEAR(level().excessDB(), 6.3, 0.11);
    EXPECT_EQ(level().heldPeakText(), "Peak -0.3 dBFS, -0.3 dBTP");
    EXPECT_EQ(level().limiterTimeText(), "3 s of the last minute");
    level().lowerByExcess();
    EXPECT_EQ(level().excessDB(), 0.0) << "cleared at once";
    EXPECT_NEAR(app->equalizer()->globalGainDB(), -6.3, 0.11);
    for (int tenth = 0; tenth < 30; ++tenth, clock.advance(0.1))
        EXPECT_EQ(level().excessDB(), 0.0) << "the way down does not count";
    EXPECT_EQ(level().limiterTimeText(), "3 s of the last minute");

    MixerConfig levelled = engine().mixer();
    levelled.autoGainEnabled = true;
    levelled.autoGainTargetDB = -6.0F;
    engine().setMixer(levelled);
    clock.advance(10.0);
    const double excess = level().excessDB();
    ASSERT_GT(excess, 0.0);
    level().lowerByExcess();
    EXPECT_NEAR(engine().mixer().autoGainTargetDB, -6.0 - excess, 0.01);
    clock.advance(25.0);
    EXPECT_EQ(level().excessDB(), 0.0);
}

} // namespace
} // namespace quorbel::testing
