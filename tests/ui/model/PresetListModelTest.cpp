#include "settings/interchange/PresetFile.h"
#include "ui/model/ModelFixture.h"
#include "ui/model/PresetFilterModel.h"

#include <filesystem>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class PresetListModelTest : public ModelTest {
  protected:
    [[nodiscard]] PresetListModel &presets() { return *app->presets(); }
    [[nodiscard]] QString text(int row, const QByteArray &role) {
        return says(presets(), row, role).toString();
    }
    [[nodiscard]] int playing() {
        int found = -1;
        for (int row = 0; row < presets().count(); ++row)
            if (says(presets(), row, "playing").toBool())
                found = found == -1 ? row : -2; // two would be wrong
        return found;
    }
    [[nodiscard]] QString file(const std::string &name, const std::string &content) {
        write(folder.path() / name, content);
        return path(name);
    }
    [[nodiscard]] QString path(const std::string &name) {
        return QString::fromStdString(folder.path() / name);
    }
};

TEST_F(PresetListModelTest, ShowsTheLibrary) {
    EXPECT_EQ(presets().count(), 33);
    EXPECT_EQ(text(9, "name"), "Bass Heavy");
    EXPECT_EQ(text(9, "categoryTitle"), "Bass");
    EXPECT_EQ(text(9, "summary"), "10 bands · 1 spatial stage");
    EXPECT_THAT(text(28, "notes").toStdString(), HasSubstr("XTC shuffler"));
    EXPECT_FALSE(says(presets(), 9, "isUser").toBool());
    EXPECT_EQ(playing(), 0);
}

TEST_F(PresetListModelTest, TheNameShownFollowsBandsAndSpatialSettings) {
    Announcements names(presets(), &PresetListModel::activeNameChanged);
    Announcements subtitles(*app->engine(), &EngineModel::subtitleChanged);
    presets().apply(presetId(9));
    EXPECT_EQ(presets().activeName(), "Bass Heavy");
    EXPECT_EQ(presets().activeIndex(), 9);
    EXPECT_EQ(playing(), 9);
    EXPECT_GE(names.take(), 1);
    EXPECT_GE(subtitles.take(), 1);

    app->equalizer()->bands()->setGain(0, 1);
    EXPECT_EQ(presets().activeName(), "Custom");
    EXPECT_EQ(names.take(), 1);
    EXPECT_EQ(app->engine()->subtitle(), "48 kHz · 32 ms · Custom");
    EXPECT_EQ(playing(), 9) << "still the one that was applied";
    app->setting("saturationDrive")->setValue(3);
    app->equalizer()->setGlobalGainDB(1);
    EXPECT_EQ(names.take(), 0) << "presets do not carry these";
    app->equalizer()->bands()->setGain(0, 5);
    EXPECT_EQ(presets().activeName(), "Bass Heavy");
    app->setting("bassDrive")->setValue(1);
    EXPECT_EQ(presets().activeName(), "Custom");
}

TEST_F(PresetListModelTest, SavesUnderTrimmedNamesAndDeletesOnlyTheUsersOwn) {
    Announcements resets(presets(), &QAbstractItemModel::modelReset);
    Announcements insertions(presets(), &QAbstractItemModel::rowsInserted);
    EXPECT_FALSE(presets().canSave("  \t"));
    presets().save("   ");
    EXPECT_EQ(presets().count(), 33);
    presets().save("  Desk ");
    presets().save("Desk");
    EXPECT_EQ(presets().count(), 35) << "a name may be there twice";
    EXPECT_EQ(text(33, "name"), "Desk");
    EXPECT_EQ(playing(), 34);
    EXPECT_EQ(insertions.take(), 2);

    presets().remove(presetId(9));
    presets().remove("no id");
    EXPECT_EQ(presets().count(), 35);
    presets().remove(presetId(34));
    EXPECT_EQ(presets().count(), 34);
    EXPECT_EQ(playing(), 0);
    EXPECT_EQ(resets.take(), 0) << "views keep their place";
}

TEST_F(PresetListModelTest, FiltersByWhoseTheyAre) {
    PresetFilterModel list;
    EXPECT_EQ(list.title(), "All presets");
    EXPECT_EQ(list.count(), 33);
    list.setFilter(PresetFilterModel::Mine);
    EXPECT_EQ(list.title(), "Mine");
    EXPECT_EQ(list.count(), 0);
    Announcements counts(list, &PresetFilterModel::countChanged);
    presets().save("Desk");
    EXPECT_EQ(list.count(), 1);
    EXPECT_GE(counts.take(), 1);
    EXPECT_EQ(says(list, 0, "name").toString(), "Desk");
    list.setFilter(PresetFilterModel::Factory);
    EXPECT_EQ(list.count(), 33);
}

TEST_F(PresetListModelTest, ImportsAnEqualiserTextWithItsGainAndSaysWhatItSkipped) {
    const ExchangeResult result = presets().importFile(
        file("Living room.txt", "Preamp: -6.2 dB\n"
                                "Filter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.70\n"
                                "Filter 2: ON XX Fc 105 Hz Gain -3.1 dB\n"));
    ASSERT_TRUE(result.ok) << result.message.toStdString();
    EXPECT_EQ(result.message, "Living room: 1 filter, preamp -6.2 dB as the global gain");
    ASSERT_EQ(result.skipped.size(), 1);
    EXPECT_TRUE(result.skipped.first().startsWith("line 3: "))
        << result.skipped.first().toStdString();
    EXPECT_EQ(presets().count(), 34);
    EXPECT_EQ(presets().activeName(), "Living room");
    EXPECT_EQ(engine().eq().globalGainDB(), -6.2F);
    EXPECT_EQ(bands()[0].frequency, 105.0F);
    const Persisted saved = readSettingsFile((folder.path() / "state.json").string());
    EXPECT_EQ(saved.eqGlobalGainDB, -6.2F) << "in the same write as the preset";
    EXPECT_EQ(saved.bands, bands());
    EXPECT_EQ(saved.activePresetName, "Living room");
}

TEST_F(PresetListModelTest, WhatItWritesItReads) {
    presets().apply(presetId(9));
    app->equalizer()->setGlobalGainDB(-2);
    ASSERT_TRUE(presets().exportPreset(presetId(9), path("out.json")).ok);
    ASSERT_TRUE(presets().exportPreset(presetId(9), path("active.txt")).ok);
    ASSERT_TRUE(presets().exportPreset(presetId(10), path("other.txt")).ok);
    EXPECT_THAT(contentOf(folder.path() / "active.txt"), HasSubstr("Preamp: -2"));
    EXPECT_THAT(contentOf(folder.path() / "other.txt"), HasSubstr("Preamp: 0"))
        << "the gain belongs to what is heard";

    const SpatialConfig spatial = engine().spatial();
    const std::vector<EQBand> exported = bands();
    presets().applyRow(0);
    const ExchangeResult back = presets().importFile(path("out.json"));
    ASSERT_TRUE(back.ok) << back.message.toStdString();
    EXPECT_EQ(bands(), exported);
    EXPECT_EQ(engine().spatial(), spatial);
    EXPECT_EQ(engine().eq().globalGainDB(), -2.0F) << "a preset file has no gain";
    EXPECT_TRUE(says(presets(), 33, "isUser").toBool());
}

TEST_F(PresetListModelTest, FailuresNameTheFileAndChangeNothing) {
    const auto failure = [&](const QString &from) {
        const ExchangeResult result = presets().importFile(from);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(presets().count(), 33);
        return result.message.toStdString();
    };
    EXPECT_EQ(failure(path("none.txt")), "none.txt: the file does not exist");
    std::filesystem::create_directory(folder.path() / "folder");
    EXPECT_EQ(failure(path("folder")), "folder: not a file");
    EXPECT_THAT(failure(file("bad.json", "{\"id\": 3}")), HasSubstr("bad.json: "));
    EXPECT_THAT(failure(file("prose.txt", "Dear reader,")), HasSubstr("prose.txt: "));
    EXPECT_THAT(failure(file("large.txt", std::string(3 << 20, ' '))), HasSubstr("too large"));
    EXPECT_FALSE(app->history()->canUndo());

    EXPECT_FALSE(presets().exportPreset("no id", path("x.txt")).ok);
    const ExchangeResult unwritable = presets().exportPreset(presetId(0), path("folder"));
    EXPECT_FALSE(unwritable.ok);
    EXPECT_THAT(unwritable.message.toStdString(), HasSubstr("folder: "));
}

} // namespace
} // namespace quorbel::testing
