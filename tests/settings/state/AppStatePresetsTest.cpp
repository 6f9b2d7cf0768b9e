#include "settings/presets/FactoryPresets.h"
#include "settings/state/AppStateFixture.h"

namespace quorbel::testing {
namespace {

class AppStatePresets : public AppStateTest {
  protected:
    AppStatePresets() { launch(); }
};

TEST_F(AppStatePresets, applyingSetsBandsAndSpatialAndNothingElse) {
    MixerConfig mixer;
    mixer.autoGainEnabled = true;
    state->engine().setMixer(mixer);
    setGain(-2.0F);
    state->applyPreset(preset("Cinema / Film"));
    EXPECT_EQ(state->engine().eq().bands(), preset("Cinema / Film").bands);
    EXPECT_EQ(state->engine().spatial(), preset("Cinema / Film").spatial);
    EXPECT_EQ(state->engine().mixer(), mixer);
    EXPECT_EQ(gain(), -2.0F);
}

TEST_F(AppStatePresets, theNameIsThePresetsUntilASettingOfItMoves) {
    state->applyPreset(preset("Bass Heavy"));
    setGain(-2.0F);
    state->engine().setMixer({.limiterEnabled = false});
    EXPECT_EQ(state->activePresetDisplayName(), "Bass Heavy");
    const float original = preset("Bass Heavy").bands[7].gainDB;
    moveBand(7, original + 0.1F);
    EXPECT_EQ(state->activePresetDisplayName(), "Custom");
    moveBand(7, original);
    EXPECT_EQ(state->activePresetDisplayName(), "Bass Heavy");
    SpatialConfig spatial = state->engine().spatial();
    spatial.toneMidDB = 1.0F;
    state->engine().setSpatial(spatial);
    EXPECT_EQ(state->activePresetDisplayName(), "Custom");
    wait(0.5);
    launch();
    EXPECT_EQ(state->activePresetDisplayName(), "Custom");
}

TEST_F(AppStatePresets, aSavedOneIsTheUsersAndActiveAndInTheFileAtOnce) {
    state->applyPreset(preset("Bass Heavy"));
    moveBand(2, 7.0F);
    const Date before = Date::now();
    state->savePreset("Mine");
    EXPECT_EQ(saves(), 1);
    const Preset first = state->presets().back();
    EXPECT_EQ(first.category, Preset::Category::user);
    EXPECT_EQ(first.spatial, preset("Bass Heavy").spatial);
    EXPECT_EQ(first.bands[2].gainDB, 7.0F);
    EXPECT_GE(first.createdAt.secondsSince2001, before.secondsSince2001);
    EXPECT_LE(first.createdAt.secondsSince2001, Date::now().secondsSince2001);
    EXPECT_EQ(state->activePresetID(), first.id);
    EXPECT_EQ(state->activePresetDisplayName(), "Mine");
    EXPECT_EQ(saved().presets.back(), first);

    state->savePreset("Mine");
    EXPECT_EQ(state->presets().size(), factoryPresets().size() + 2);
    EXPECT_NE(state->presets().back().id, first.id);
}

TEST_F(AppStatePresets, deletingSparesTheFactorysAndMovesOnToTheFirst) {
    state->savePreset("Mine");
    state->savePreset("Mine too");
    (void)saves();
    state->deletePreset(preset("Bass Heavy"));
    EXPECT_EQ(state->presets().size(), factoryPresets().size() + 2);
    EXPECT_EQ(saves(), 0);

    state->deletePreset(preset("Mine"));
    EXPECT_EQ(state->activePresetDisplayName(), "Mine too");
    EXPECT_EQ(saves(), 1);
    state->deletePreset(preset("Mine too"));
    EXPECT_EQ(state->activePresetID(), stableFactoryID("Flat"));
    EXPECT_EQ(state->presets(), factoryPresets());
    EXPECT_EQ(saved().activePresetName, "Flat");
}

} // namespace
} // namespace quorbel::testing
