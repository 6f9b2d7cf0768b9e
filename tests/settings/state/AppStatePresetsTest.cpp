#include "settings/state/AppStateFixture.h"

namespace quorbel::testing {
namespace {

class AppStatePresets : public AppStateTest {
  protected:
    AppStatePresets() { launch(); }
};

TEST_F(AppStatePresets, theNameIsThePresetsUntilASettingOfItMoves) {
    state->applyPreset(preset("Bass Heavy"));
    setGain(-2.0F);
    state->engine().setMixer({.limiterEnabled = false});
    EXPECT_EQ(displayName(), "Bass Heavy");
    const float original = preset("Bass Heavy").bands[7].gainDB;
    moveBand(7, original + 0.1F);
    EXPECT_EQ(displayName(), "Custom");
    moveBand(7, original);
    EXPECT_EQ(displayName(), "Bass Heavy");
    state->engine().setSpatial({.toneMidDB = 1.0F});
    EXPECT_EQ(displayName(), "Custom");

    state->applyPreset(preset("Cinema / Film"));
    EXPECT_EQ(displayName(), "Cinema / Film");
    EXPECT_EQ(gain(), -2.0F);
    EXPECT_FALSE(state->engine().mixer().limiterEnabled);
}

TEST_F(AppStatePresets, onlyTheUsersOwnAreDeletedOrSetAndTheFirstFollowsTheActiveOne) {
    state->savePreset("One");
    state->savePreset("Two");
    const Preset one = state->presets()[factoryPresets().size()];
    (void)saves();
    state->deletePreset(preset("Bass Heavy"));
    EXPECT_EQ(saves(), 0);
    state->deletePreset(one);
    EXPECT_EQ(saves(), 1);
    EXPECT_EQ(displayName(), "Two");
    state->setUserPresets({one, preset("Bass Heavy")});
    EXPECT_EQ(saves(), 1);
    EXPECT_EQ(state->presets().size(), factoryPresets().size() + 1);
    EXPECT_EQ(state->presets().back(), one);
    EXPECT_EQ(state->activePresetID(), stableFactoryID("Flat")) << "Two was active and is gone";
    EXPECT_EQ(saved().activePresetName, "Flat");
    state->deletePreset(one);
    EXPECT_EQ(state->presets(), factoryPresets());
}

} // namespace
} // namespace quorbel::testing
