#include "cli/CliTest.h"
#include "settings/records/json/SettingsCoding.h"

#include <gmock/gmock.h>

namespace quorbel {
namespace {

class RenderSettings : public CliTest {
  protected:
    static Persisted settingsWithGain(float gainDB) {
        Persisted settings = flatSettings();
        settings.eqGlobalGainDB = gainDB;
        return settings;
    }
};

TEST_F(RenderSettings, ComeFromTheNamedFileOrTheUsersOrTheDefaults) {
    file("in.wav", noise(20000));
    file("louder.json", settingsWithGain(3.0F));
    ASSERT_EQ(run({"render", "in.wav", "out.wav"}).status, 0);
    EXPECT_NEAR(gain(10000, 19000), 0.0, 0.01);

    userSettings(settingsWithGain(-6.0F));
    ASSERT_EQ(run({"render", "in.wav", "out.wav"}).status, 0);
    EXPECT_NEAR(gain(10000, 19000), -6.0, 0.01);
    ASSERT_EQ(run({"render", "--settings", "louder.json", "in.wav", "out.wav"}).status, 0);
    EXPECT_NEAR(gain(10000, 19000), 3.0, 0.01);

    std::filesystem::remove(path("out.wav"));
    userSettings("{}");
    expectRefusal({"render", "in.wav", "out.wav"}, "state.json: bands: required, but missing");
    EXPECT_EQ(bytes(path("../Quorbel/state.json")), "{}");
}

TEST_F(RenderSettings, ChangeAtTheFirstBlockBoundaryAtOrAfterTheTimeGiven) {
    file("in.wav", noise(96000, 48000, 1)); // mono, so that flat is bit-exact
    file("flat.json", flatSettings());
    file("quiet.json", settingsWithGain(-12.0F));
    file("louder.json", settingsWithGain(6.0F));
    // Times out of order; 0.7 s lies inside the block that begins at frame 33280.
    ASSERT_EQ(run({"render", "--settings", "flat.json", "--at", "1.5", "louder.json", "--at", "0.7",
                   "quiet.json", "in.wav", "out.wav"})
                  .status,
              0);
    const Sound in = sound(path("in.wav"));
    const Sound out = sound(path("out.wav"));
    ASSERT_EQ(out.frames(), in.frames());
    for (std::size_t frame = 0; frame < 33792; ++frame)
        ASSERT_EQ(out.at(frame, 0), in.at(frame, 0)) << frame;
    EXPECT_NEAR(gain(48000, 70000), -12.0, 0.01);
    EXPECT_NEAR(gain(84000, 95000), 6.0, 0.01);
}

TEST_F(RenderSettings, APresetReplacesBandsAndSpatialSettingsOnly) {
    file("in.wav", noise(20000));
    Persisted quiet = settingsWithGain(-6.0F);
    quiet.bands[4].gainDB = 12.0F;
    Preset mine{.id = Uuid::random(), .name = "Mine — Own", .bands = quiet.bands};
    mine.bands[4].gainDB = 0.0F;
    mine.spatial.toneMidDB = 0.0F;
    quiet.presets = {mine};
    file("quiet.json", quiet);

    for (const char *name : {"Flat", "Mine — Own", "mine - own", "FLAT"}) {
        ASSERT_EQ(run({"render", "--settings", "quiet.json", "--preset", name, "in.wav", "out.wav"})
                      .status,
                  0)
            << name;
        EXPECT_NEAR(gain(10000, 19000), -6.0, 0.01) << name;
    }
    std::filesystem::remove(path("out.wav"));
    expectRefusal({"render", "--preset", "Loudest\n", "in.wav", "out.wav"},
                  "no preset is named \"Loudest\\n\"");
}

TEST_F(RenderSettings, TheListOfPresetsEndsWithTheUsersOwn) {
    Persisted settings = flatSettings();
    settings.presets = {{.id = Uuid::random(), .name = "Evening", .notes = "Soft\x1B\u009Bä"}};
    userSettings(settings);
    const std::string text = run({"presets"}).output;
    EXPECT_THAT(text, testing::StartsWith("General\n  Flat "));
    EXPECT_THAT(text, testing::HasSubstr("\nMine\n  Evening "));
    EXPECT_THAT(text, testing::HasSubstr("  Soft??ä\n")) << "nothing that a terminal obeys";
    const std::string json = run({"presets", "--json"}).output;
    EXPECT_THAT(json, testing::StartsWith(
                          "[{\"id\":\"0AF4AEBF-A952-50FE-B0E2-06CC11DE9AA4\",\"name\":\"Flat\""));
    EXPECT_THAT(json, testing::EndsWith("," + encodeRecord(settings.presets[0]) + "]\n"));
}

} // namespace
} // namespace quorbel
