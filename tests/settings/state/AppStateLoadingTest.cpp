#include "settings/state/AppStateFixture.h"

#include <ctime>

namespace quorbel::testing {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

class AppStateLoading : public AppStateTest {};

Preset userPreset(const std::string &name) {
    return {.id = Uuid::random(), .name = name, .bands = EQBand::defaultBands()};
}

TEST_F(AppStateLoading, theRunningVersionsLibraryWinsAndWhatIsMissingStaysAsItIs) {
    Persisted record = untouched();
    record.outputDeviceUID = "a device that is absent today";
    record.presets[0].name = "Flat, but edited";
    record.presets[1].id = Uuid::random(); // one that this version does not have
    const Preset first = userPreset("Zorile"), second = userPreset("Amurg");
    record.presets.insert(record.presets.begin() + 3, first);
    record.presets.push_back(second);
    launchWith(record);
    std::vector<Preset> expected = factoryPresets();
    expected.insert(expected.end(), {first, second});
    EXPECT_EQ(state->presets(), expected);
    EXPECT_EQ(warning(), "");
    EXPECT_EQ(state->engine().mixer(), MixerConfig{});
    EXPECT_EQ(gain(), 0.0F);
    EXPECT_FALSE(state->engine().outputDevice());
}

TEST_F(AppStateLoading, theActivePresetIsFoundByIdThenByNameElseTheFirst) {
    const auto activeAfterLoading = [&](std::optional<Uuid> id, std::optional<std::string> name) {
        Persisted record = untouched();
        record.presets.push_back(userPreset("Bass Heavy"));
        record.activePresetID = id;
        record.activePresetName = std::move(name);
        launchWith(record);
        return state->activePresetID();
    };
    const Uuid unknown = Uuid::random();
    const Uuid heavy = stableFactoryID("Bass Heavy"), flat = stableFactoryID("Flat");
    EXPECT_EQ(activeAfterLoading(heavy, "Flat"), heavy);
    EXPECT_EQ(activeAfterLoading(unknown, "Bass Heavy"), heavy);
    EXPECT_EQ(activeAfterLoading({}, "Bass Heavy"), heavy);
    EXPECT_EQ(activeAfterLoading(unknown, "bass heavy"), flat);
    EXPECT_EQ(activeAfterLoading({}, {}), flat);
}

TEST_F(AppStateLoading, bandsThatDifferInNothingButTheirIdsAreThePresets) {
    // As a program left them whose factory bands had other ids.
    Persisted record = untouched();
    record.activePresetID = stableFactoryID("Bass Heavy");
    record.bands = factoryPresets()[9].bands;
    record.spatial = factoryPresets()[9].spatial;
    for (EQBand &band : record.bands)
        band.id = Uuid::random();
    launchWith(record);
    EXPECT_EQ(displayName(), "Bass Heavy");

    record.bands[4].gainDB += 0.1F;
    launchWith(record);
    EXPECT_EQ(displayName(), "Custom");
    EXPECT_EQ(state->engine().eq().bands(), record.bands);
}

TEST_F(AppStateLoading, aFileThatDoesNotDecodeIsSetAside) {
    const std::time_t before = std::time(nullptr);
    write(file, "{}");
    launch();
    const auto nameAt = [](std::time_t seconds) {
        return "state.corrupt-" + std::to_string(seconds) + ".json";
    };
    ASSERT_THAT(otherFiles(),
                ElementsAre(AnyOf(nameAt(before), nameAt(before + 1), nameAt(before + 2))));
    const std::string name = otherFiles().front();
    EXPECT_EQ(warning(),
              "Saved settings were unreadable and were set aside as " + name + ". Starting fresh.");
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(contentOf(folder / name), "{}");
    EXPECT_EQ(displayName(), "Flat");

    saveGain(1.0F);
    EXPECT_EQ(warning(), "");
    EXPECT_EQ(saved().eqGlobalGainDB, 1.0F);
}

} // namespace
} // namespace quorbel::testing
