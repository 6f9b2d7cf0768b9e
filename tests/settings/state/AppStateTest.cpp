#include "settings/state/AppStateFixture.h"

#include <ctime>
#include <limits>

namespace quorbel::testing {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Loading

class AppStateLoading : public AppStateTest {};

Preset userPreset(const std::string &name) {
    return {.id = Uuid::random(), .name = name, .bands = EQBand::defaultBands()};
}

TEST_F(AppStateLoading, TheRunningVersionsLibraryWinsAndMissingValuesStay) {
    Persisted record = untouched();
    record.outputDeviceUID = "a device that is absent today";
    record.presets[0].name = "Flat, but edited";
    record.presets[1].id = Uuid::random(); // unknown to this version
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

TEST_F(AppStateLoading, TheActivePresetIsFoundByIdThenByNameElseTheFirst) {
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

TEST_F(AppStateLoading, BandsThatDifferOnlyInTheirIdsAreThePresets) {
    // As saved by a version with other ids for its factory bands.
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

TEST_F(AppStateLoading, AFileThatDoesNotDecodeIsSetAside) {
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

// Saving

class AppStateSaving : public AppStateTest {};

TEST_F(AppStateSaving, AFirstStartLeavesNothingBehindUntilSomethingChanges) {
    std::filesystem::remove(folder);
    launch();
    wait(10.0);
    EXPECT_EQ(warning(), "");
    EXPECT_EQ(displayName(), "Flat");
    EXPECT_FALSE(std::filesystem::exists(folder));
    setGain(-3.0F);
    wait(0.49);
    EXPECT_FALSE(std::filesystem::exists(folder));
    wait(0.02);
    EXPECT_EQ(saved().eqGlobalGainDB, -3.0F);
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(AppStateSaving, WritesOncePerDebouncedValue) {
    launch();
    for (int edit = 1; edit <= 5; ++edit) {
        setGain(static_cast<float>(edit));
        wait(0.1);
    }
    wait(0.39);
    EXPECT_EQ(saves(), 0);
    wait(0.02);
    EXPECT_EQ(saves(), 1);
    EXPECT_EQ(saved().eqGlobalGainDB, 5.0F);

    state->engine().setMixer({});
    state->engine().setOutputDevice(state->deviceManager().outputDevice("hdmi"));
    state->applyPreset(preset("Flat"));
    setGain(5.0F);
    wait(10.0);
    EXPECT_EQ(saves(), 5) << "bands, gain, spatial, mixer and device, equal ones too";
    setGain(1.0F);
    state.reset();
    wait(1.0);
    EXPECT_EQ(saves(), 0) << "nothing fires once the state is gone";
}

TEST_F(AppStateSaving, AFailureIsAWarningUntilTheNextSaveSucceeds) {
    launch();
    saveGain(1.0F);
    int announced = 0;
    QObject::connect(state.get(), &AppState::persistWarningChanged, [&] { ++announced; });

    // A file replaces the folder.
    std::filesystem::remove_all(folder);
    write(folder, "in the way");
    saveGain(2.0F);
    EXPECT_EQ(warning(), "Settings could not be saved: Not a directory");
    EXPECT_EQ(gain(), 2.0F);
    EXPECT_EQ(contentOf(folder), "in the way");
    wait(10.0);
    EXPECT_EQ(announced, 1) << "tried again at the next change, not before";

    std::filesystem::remove(folder);
    saveGain(3.0F);
    EXPECT_EQ(warning(), "");
    EXPECT_EQ(announced, 2);
    EXPECT_EQ(saved().eqGlobalGainDB, 3.0F) << "the folder was made again";

    saveGain(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(warning(), "Settings could not be saved: eqGlobalGainDB: not a finite number, JSON "
                         "cannot hold it");
    EXPECT_EQ(saved().eqGlobalGainDB, 3.0F);
}

TEST_F(AppStateSaving, AnUnreadableFileIsLeftUntilItIsReadable) {
    std::filesystem::create_symlink("state.json", file); // unreadable: links to itself
    launch();
    EXPECT_EQ(warning(), "");
    int announced = 0;
    QObject::connect(state.get(), &AppState::persistWarningChanged, [&] { ++announced; });
    for (int save = 1; save <= 2; ++save) {
        saveGain(2.0F);
        EXPECT_THAT(warning(), HasSubstr("state.json: Too many levels of symbolic links"));
        EXPECT_THAT(warning(), EndsWith("The file is left as it is."));
        EXPECT_EQ(announced, save) << "each failure is told";
    }
    EXPECT_TRUE(std::filesystem::is_symlink(file));

    std::filesystem::remove(file);
    Persisted theirs = untouched();
    theirs.mixer = MixerConfig{.saturationEnabled = true};
    write(file, encodeRecord(theirs));
    saveGain(3.0F);
    EXPECT_EQ(warning(), "");
    EXPECT_EQ(saved().eqGlobalGainDB, 3.0F);
    EXPECT_TRUE(saved().mixer->saturationEnabled) << "what could not be read then";
    EXPECT_THAT(otherFiles(), IsEmpty());
}

TEST_F(AppStateSaving, LinksAreKeptWithAnyTarget) {
    const std::filesystem::path target = folder / "elsewhere" / "mine.json";
    std::filesystem::create_symlink("elsewhere/mine.json", file); // target does not exist yet
    launch();
    saveGain(2.0F);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(readSettingsFile(target).eqGlobalGainDB, 2.0F);
    launch();
    EXPECT_EQ(gain(), 2.0F);
    saveGain(3.0F);
    EXPECT_EQ(readSettingsFile(target).eqGlobalGainDB, 3.0F);

    write(target, "broken");
    launch();
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_THAT(warning(), HasSubstr((folder / "elsewhere" / "state.corrupt-").string()));
    EXPECT_FALSE(std::filesystem::exists(target)) << "what it leads to was set aside";
    saveGain(4.0F);
    EXPECT_EQ(readSettingsFile(target).eqGlobalGainDB, 4.0F);
    EXPECT_THAT(otherFiles(), ElementsAre("elsewhere"));
}

// Presets

class AppStatePresets : public AppStateTest {
  protected:
    AppStatePresets() { launch(); }
};

TEST_F(AppStatePresets, TheNameIsThePresetsUntilASettingOfItMoves) {
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

TEST_F(AppStatePresets, OnlyTheUsersOwnAreDeletedOrSetAndTheFirstFollowsTheActiveOne) {
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
