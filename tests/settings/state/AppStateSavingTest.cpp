#include "settings/state/AppStateFixture.h"

#include <limits>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class AppStateSaving : public AppStateTest {};

TEST_F(AppStateSaving, aFirstStartLeavesNothingBehindUntilSomethingChanges) {
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

TEST_F(AppStateSaving, onePerValueThatCameToRest) {
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

TEST_F(AppStateSaving, aFailureIsAWarningUntilTheNextSaveSucceeds) {
    launch();
    saveGain(1.0F);
    int announced = 0;
    QObject::connect(state.get(), &AppState::persistWarningChanged, [&] { ++announced; });

    // The folder is gone and a file has taken its name.
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

TEST_F(AppStateSaving, aFileThatCannotBeReadIsLeftUntilItCanAndThenTaken) {
    std::filesystem::create_symlink("state.json", file); // a circle: it cannot be read
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

TEST_F(AppStateSaving, linksAreKeptWhateverTheyLeadTo) {
    const std::filesystem::path target = folder / "elsewhere" / "mine.json";
    std::filesystem::create_symlink("elsewhere/mine.json", file); // leads nowhere yet
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

} // namespace
} // namespace quorbel::testing
