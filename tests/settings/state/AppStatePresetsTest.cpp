#include "settings/state/AppStateFixture.h"

namespace quorbel::testing {
namespace {

class AppStatePresets : public AppStateTest {
  protected:
    AppStatePresets() { launch(); }
};

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
