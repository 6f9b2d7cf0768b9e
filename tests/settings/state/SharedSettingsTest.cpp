#include "settings/files/FileReplacement.h"
#include "settings/files/SettingsFileLock.h"
#include "settings/state/AppStateFixture.h"
#include "settings/state/FileWatch.h"
#include "settings/state/SharedSettingsFile.h"

#include <QCoreApplication>

#include <random>
#include <set>

namespace quorbel::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class SharedSettings : public AppStateTest {
  protected:
    [[nodiscard]] std::unique_ptr<AppState> program() {
        return std::make_unique<AppState>(hardware, clock, file.string());
    }
    /// Replaces the file, as a synchronising tool or an editor does.
    void writeGain(float gainDB) {
        Persisted record = saved();
        record.eqGlobalGainDB = gainDB;
        replaceFile(file, encodeRecord(record));
    }
    [[nodiscard]] static std::set<std::string> userNames(const std::vector<Preset> &presets) {
        std::set<std::string> names;
        for (const Preset &preset : presets)
            if (preset.category == Preset::Category::user)
                names.insert(preset.name);
        return names;
    }
};

/// Two programs and an importing command change separate fields and presets of one file, with and
/// without reading each other's changes. No change may get lost.
TEST_F(SharedSettings, LoseNothingInAnyStormOfWriters) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto upTo = [&](int count) {
        return std::uniform_int_distribution<int>(0, count - 1)(random);
    };
    std::array<std::unique_ptr<AppState>, 2> programs{program(), program()};
    Persisted expected = untouched();
    expected.eqGlobalGainDB = 0.0F;
    expected.mixer = MixerConfig{};
    std::set<std::string> names;
    int number = 0;
    for (int rest = 0; rest < 25; ++rest) {
        const int swapped = upTo(2); // assigns the fields to the programs
        AppState &first = *programs[static_cast<std::size_t>(swapped)];
        AppState &second = *programs[static_cast<std::size_t>(1 - swapped)];
        for (int change = 0, count = 1 + upTo(12); change < count; ++change) {
            const auto value = static_cast<float>(1 + number++ % 11);
            const std::string name = "preset " + std::to_string(number);
            AppState &either = *programs[static_cast<std::size_t>(upTo(2))];
            switch (upTo(9)) {
            case 0:
                first.engine().eq().setGlobalGainDB(value);
                expected.eqGlobalGainDB = value;
                break;
            case 1:
                expected.spatial.widthPercent = 100.0F + value;
                first.engine().setSpatial(expected.spatial);
                break;
            case 2:
                expected.mixer->manualLoudnessDB = value;
                second.engine().setMixer(*expected.mixer);
                break;
            case 3: {
                auto bands = second.engine().eq().bands();
                bands[0].gainDB = expected.bands[0].gainDB = value;
                second.engine().eq().setBands(bands);
                break;
            }
            case 4:
                either.savePreset(name);
                names.insert(name);
                break;
            case 5:
                if (const Preset last = first.presets().back();
                    last.category == Preset::Category::user) {
                    first.deletePreset(last);
                    names.erase(last.name);
                }
                break;
            case 6: { // a command that reads the file under its lock
                const SettingsFileLock lock(file);
                SharedSettingsFile shared(file);
                Persisted record = shared.readChange().value_or(untouched());
                record.presets.push_back({.id = Uuid::random(), .name = name});
                shared.write(record);
                EXPECT_FALSE(shared.readChange()) << "what it wrote itself is no change";
                names.insert(name);
                break;
            }
            case 7:
                either.takeFileChanges();
                break;
            default:
                wait(0.2 * upTo(4));
            }
        }
        wait(0.6);
        for (const auto &each : programs)
            each->persist();
        for (const auto &each : programs)
            each->takeFileChanges();
        if (upTo(3) == 0)
            programs[0] = program();
        (void)saves();
        wait(1.0);
        ASSERT_EQ(saves(), 0) << "they do not answer each other for ever";
        for (const auto &each : programs) {
            ASSERT_EQ(each->engine().eq().globalGainDB(), expected.eqGlobalGainDB);
            ASSERT_EQ(each->engine().spatial(), expected.spatial);
            ASSERT_EQ(each->engine().mixer(), expected.mixer);
            ASSERT_EQ(each->engine().eq().bands()[0].gainDB, expected.bands[0].gainDB);
            ASSERT_EQ(userNames(each->presets()), names);
        }
        ASSERT_EQ(userNames(saved().presets), names);
        ASSERT_EQ(saved().eqGlobalGainDB, expected.eqGlobalGainDB);
    }
    EXPECT_THAT(otherFiles(), IsEmpty());
}

TEST_F(SharedSettings, AnUnfinishedTextIsWaitedForAndAnUnreadableOneSetAside) {
    launchWith(untouched());
    write(file, "{\"bands\":");
    state->takeFileChanges();
    wait(0.9);
    Persisted theirs = untouched();
    theirs.eqGlobalGainDB = 4.0F;
    write(file, encodeRecord(theirs)); // the complete text
    state->takeFileChanges();
    wait(2.0);
    EXPECT_EQ(gain(), 4.0F);
    EXPECT_THAT(otherFiles(), IsEmpty());

    write(file, "broken");
    state->takeFileChanges();
    wait(1.1);
    ASSERT_THAT(otherFiles(), SizeIs(1));
    EXPECT_EQ(contentOf(folder / otherFiles().front()), "broken");
    EXPECT_EQ(warning(), "Saved settings were unreadable and were set aside as " +
                             otherFiles().front() + ". Starting fresh.");
    EXPECT_EQ(gain(), 4.0F);

    // A warning raised by a save lasts until the next save.
    write(file, "broken again");
    saveGain(5.0F);
    EXPECT_THAT(warning(), HasSubstr("set aside"));
    EXPECT_THAT(otherFiles(), SizeIs(2));
    EXPECT_EQ(saved().eqGlobalGainDB, 5.0F);
    saveGain(6.0F);
    EXPECT_EQ(warning(), "");
}

TEST_F(SharedSettings, TakeAnotherProgramsRulesAndKeepThemWhereTheFileIsDamaged) {
    launch();
    ProgramRulesFile theirs(file.string());
    theirs.write({.processesOthers = false,
                  .rules = {{.program = {.binary = "games"}, .isProcessed = false}}});
    state->takeFileChanges();
    EXPECT_FALSE(state->programRules().processesOthers);
    EXPECT_EQ(hardware.programRules(), state->programRules());
    ASSERT_EQ(hardware.programRules().rules.size(), 1U);
    write(folder / "programs.json", R"({"version":1,"others":"no one"})");
    state->takeFileChanges();
    wait(0.9);
    EXPECT_EQ(warning(), "") << "its writer may go on";
    wait(0.2);
    EXPECT_THAT(warning(), HasSubstr("programs.json: others"));
    EXPECT_EQ(hardware.programRules().rules.size(), 1U);
}

TEST_F(SharedSettings, AreWrittenByOneAtATime) {
    std::filesystem::create_symlink("mine.json", folder / "link");
    {
        const SettingsFileLock lock(folder / "mine.json");
        EXPECT_THROW(SettingsFileLock(folder / "link", 0.0), FileReplacementError);
    }
    EXPECT_NO_THROW(SettingsFileLock(folder / "link", 0.0));
}

TEST_F(SharedSettings, AreNoticedAfterEveryKindOfWriting) {
    int argumentCount = 1;
    char name[] = "test";
    char *arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    std::filesystem::remove(folder);
    const auto elsewhere = folder.parent_path() / "elsewhere";
    std::filesystem::create_directory(elsewhere);
    launch();
    const auto take = [this] { state->takeFileChanges(); };
    const FileWatch watch(state->settingsPath(), clock, take);
    const FileWatch profilesWatch(state->profiles().path(), clock, take);
    // The kernel queues the notification before the changing call returns.
    const auto heard = [&] {
        QCoreApplication::processEvents();
        wait(0.3);
        return gain();
    };
    const auto textWithGain = [](float gainDB) {
        Persisted record = untouched();
        record.eqGlobalGainDB = gainDB;
        return encodeRecord(record);
    };
    std::filesystem::create_directory(folder);
    EXPECT_EQ(heard(), 0.0F);
    write(file, textWithGain(1.0F));
    EXPECT_EQ(heard(), 1.0F) << "in a folder that was not there";
    write(file, textWithGain(2.0F));
    EXPECT_EQ(heard(), 2.0F) << "in place";
    writeGain(3.0F);
    EXPECT_EQ(heard(), 3.0F) << "replaced";
    write(file, textWithGain(4.0F));
    EXPECT_EQ(heard(), 4.0F) << "in place of what was replaced";

    std::filesystem::rename(file, elsewhere / "mine.json");
    std::filesystem::create_symlink(elsewhere / "mine.json", file);
    EXPECT_EQ(heard(), 4.0F);
    writeGain(5.0F);
    EXPECT_EQ(heard(), 5.0F) << "behind a link";
    write(elsewhere / "other.json", textWithGain(6.0F));
    std::filesystem::create_symlink(elsewhere / "other.json", folder / "new");
    std::filesystem::rename(folder / "new", file);
    EXPECT_EQ(heard(), 6.0F) << "by another link";

    OutputProfilesFile(file.string()).write({{.use = OutputProfile::Use::flat}});
    (void)heard();
    EXPECT_THAT(state->profiles().profiles(), SizeIs(1));
    write(folder / "profiles.json", R"({"profiles":[],"version":1})");
    (void)heard();
    EXPECT_THAT(state->profiles().profiles(), IsEmpty()) << "in place";
}

} // namespace
} // namespace quorbel::testing
