#include "settings/state/AppStateFixture.h"

#include <gmock/gmock.h>

namespace quorbel::testing {
namespace {

using ::testing::HasSubstr;

class PresetGainsTest : public AppStateTest {
  protected:
    PresetGainsTest() { launch(); }

    [[nodiscard]] float presetGain() { return state->engine().eq().presetGainDB(); }
    void setPresetGain(float gainDB) { state->engine().eq().setPresetGainDB(gainDB); }
    [[nodiscard]] std::string content() const { return contentOf(gainsFile); }

    const std::filesystem::path gainsFile = file.parent_path() / "preset-gains.json";
};

TEST_F(PresetGainsTest, ComeWithTheirPresetLeaveWithItAndSurviveARestart) {
    setPresetGain(-6.2F);
    state->savePreset("Loud");
    setPresetGain(-3.0F); // changes the live gain, not the preset
    state->applyPreset(preset("Flat"));
    EXPECT_EQ(presetGain(), 0.0F);
    setGain(-1.0F);
    state->applyPreset(preset("Loud"));
    EXPECT_EQ(presetGain(), -6.2F);
    EXPECT_EQ(state->engine().eq().eq().globalGainDB(), -7.2F) << "both are played";

    setPresetGain(-2.0F);
    wait(0.5);
    launch();
    EXPECT_EQ(presetGain(), -2.0F) << "as it was heard last";
    state->applyPreset(preset("Loud"));
    EXPECT_EQ(presetGain(), -6.2F);

    wait(0.5);
    Persisted elsewhere = saved();
    elsewhere.activePresetID = preset("Flat").id;
    launchWith(elsewhere);
    EXPECT_EQ(presetGain(), 0.0F) << "of the preset that a program without gains has applied";
}

TEST_F(PresetGainsTest, TwoProgramsKeepEachOthersAndKeysThatTheyDoNotKnow) {
    write(gainsFile, R"({"version":1,"later":[1.5],"gainsDB":{}})");
    launch();
    AppState other(hardware, clock, file.string());
    setPresetGain(-1.0F);
    state->savePreset("One");
    other.takeFileChanges();
    other.engine().eq().setPresetGainDB(-2.0F);
    other.savePreset("Two");
    state->takeFileChanges();
    EXPECT_EQ(displayName(), "Two");
    EXPECT_EQ(presetGain(), -2.0F) << "with the preset that the other applied";
    state->applyPreset(preset("One"));
    EXPECT_EQ(presetGain(), -1.0F);
    EXPECT_THAT(content(), HasSubstr(R"("later":[1.5])"));
}

TEST_F(PresetGainsTest, AFileOfALaterVersionIsLeftAndTheSettingsAreSaved) {
    const std::string later = R"({"version":2,"gainsDB":7})";
    write(gainsFile, later);
    launch();
    setPresetGain(-3.0F);
    saveGain(-2.0F);
    EXPECT_THAT(warning(), HasSubstr("written by a later version"));
    EXPECT_EQ(content(), later);
    EXPECT_EQ(saved().eqGlobalGainDB, -2.0F);
}

} // namespace
} // namespace quorbel::testing
