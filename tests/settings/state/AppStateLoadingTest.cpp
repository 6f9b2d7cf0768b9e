#include "settings/presets/FactoryPresets.h"
#include "settings/state/AppStateFixture.h"

#include <cstdlib>
#include <ctime>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::SizeIs;

class AppStateLoading : public AppStateTest {};

Preset userPreset(const std::string &name) {
    return {.id = Uuid::random(), .name = name, .bands = EQBand::defaultBands()};
}

TEST_F(AppStateLoading, whatAFileDoesNotHaveStaysAsItIs) {
    store(untouched());
    launch();
    EXPECT_EQ(warning(), "");
    EXPECT_EQ(state->engine().mixer(), MixerConfig{});
    EXPECT_EQ(gain(), 0.0F);
    EXPECT_FALSE(state->engine().outputDevice());

    Persisted absentDevice = untouched();
    absentDevice.outputDeviceUID = "headset";
    store(absentDevice);
    launch();
    EXPECT_FALSE(state->engine().outputDevice());
    EXPECT_EQ(warning(), "");
}

TEST_F(AppStateLoading, theRunningVersionsLibraryWins) {
    Persisted record = untouched();
    record.presets[0].name = "Flat, but edited";
    record.presets[1].id = Uuid::random(); // one that this version does not have
    const Preset first = userPreset("Zorile"), second = userPreset("Amurg");
    record.presets.insert(record.presets.begin() + 3, first);
    record.presets.push_back(second);
    store(record);
    launch();
    std::vector<Preset> expected = factoryPresets();
    expected.push_back(first);
    expected.push_back(second);
    EXPECT_EQ(state->presets(), expected);
}

TEST_F(AppStateLoading, theActivePresetIsFoundByIdThenByNameElseTheFirst) {
    const auto activeAfterLoading = [&](std::optional<Uuid> id, std::optional<std::string> name) {
        Persisted record = untouched();
        record.presets.push_back(userPreset("Bass Heavy"));
        record.activePresetID = id;
        record.activePresetName = std::move(name);
        store(record);
        launch();
        return state->activePresetID();
    };
    EXPECT_EQ(activeAfterLoading(stableFactoryID("Bass Punchy"), "Flat"),
              stableFactoryID("Bass Punchy"));
    EXPECT_EQ(activeAfterLoading(Uuid::random(), "Bass Heavy"), stableFactoryID("Bass Heavy"));
    EXPECT_EQ(activeAfterLoading({}, "Bass Heavy"), stableFactoryID("Bass Heavy"));
    EXPECT_EQ(activeAfterLoading(Uuid::random(), "bass heavy"), stableFactoryID("Flat"));
    EXPECT_EQ(activeAfterLoading({}, {}), stableFactoryID("Flat"));
}

TEST_F(AppStateLoading, bandsThatDifferInNothingButTheirIdsAreThePresets) {
    // As a program left them whose factory bands had other ids.
    Persisted record = untouched();
    record.activePresetID = stableFactoryID("Bass Heavy");
    record.bands = factoryPresets()[9].bands;
    record.spatial = factoryPresets()[9].spatial;
    for (EQBand &band : record.bands)
        band.id = Uuid::random();
    store(record);
    launch();
    EXPECT_EQ(state->activePresetDisplayName(), "Bass Heavy");

    record.bands[4].gainDB += 0.1F;
    store(record);
    launch();
    EXPECT_EQ(state->activePresetDisplayName(), "Custom");
    EXPECT_EQ(state->engine().eq().bands(), record.bands) << "nothing of a custom list is touched";
}

TEST_F(AppStateLoading, aFileThatDoesNotDecodeIsSetAside) {
    const std::time_t before = std::time(nullptr);
    write(file, "{}");
    launch();
    EXPECT_FALSE(std::filesystem::exists(file));
    ASSERT_THAT(otherFiles(), SizeIs(1));
    const std::string name = otherFiles().front();
    EXPECT_THAT(name, MatchesRegex("state\\.corrupt-[0-9]+\\.json"));
    const std::time_t seconds = std::atoll(name.c_str() + std::string("state.corrupt-").size());
    EXPECT_GE(seconds, before);
    EXPECT_LE(seconds, std::time(nullptr));
    EXPECT_EQ(warning(),
              "Saved settings were unreadable and were set aside as " + name + ". Starting fresh.");
    EXPECT_EQ(contentOf(folder / name), "{}");
    EXPECT_EQ(state->activePresetDisplayName(), "Flat");

    setGain(1.0F);
    wait(0.5);
    EXPECT_EQ(warning(), "");
    EXPECT_EQ(saved().eqGlobalGainDB, 1.0F);
}

TEST_F(AppStateLoading, neitherIsLostWhenTwoAreSetAsideInOneSecond) {
    for (const std::string content : {"first", "second", "third"}) {
        write(file, content);
        launch();
    }
    std::vector<std::string> kept;
    for (const std::string &name : otherFiles())
        kept.push_back(contentOf(folder / name));
    EXPECT_THAT(kept, ::testing::UnorderedElementsAre("first", "second", "third"));
}

TEST_F(AppStateLoading, oneBadValueSetsTheWholeFileAside) {
    Persisted record = untouched();
    record.eqGlobalGainDB = 6.0F;
    store(record);
    std::string text = contentOf(file);
    text.replace(text.rfind("\"parametric\""), 12, "\"comb\"");
    write(file, text);
    launch();
    EXPECT_EQ(gain(), 0.0F);
    EXPECT_THAT(otherFiles(), SizeIs(1));
}

} // namespace
} // namespace quorbel::testing
