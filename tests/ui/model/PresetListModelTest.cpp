#include "settings/interchange/PresetFile.h"
#include "ui/model/ModelFixture.h"
#include "ui/model/PresetFilterModel.h"

#include <QUrl>

namespace quorbel::testing {
namespace {

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
                found = found == -1 ? row : -2; // duplicate names are an error
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

TEST_F(PresetListModelTest, SavesUnderTrimmedNamesAndDeletesOnlyTheUsersOwn) {
    Announcements resets(presets(), &QAbstractItemModel::modelReset);
    PresetFilterModel list;
    list.setFilter(PresetFilterModel::Mine);
    EXPECT_EQ(list.count(), 0);
    EXPECT_FALSE(presets().canSave("  \t"));
    presets().save("   ");
    EXPECT_EQ(presets().count(), 33);
    presets().save("  Desk ");
    presets().save("Desk");
    EXPECT_EQ(presets().count(), 35) << "a name may be there twice";
    EXPECT_EQ(says(list, 0, "name").toString(), "Desk");
    EXPECT_EQ(playing(), 34);

    int announced = -1;
    QObject::connect(&list, &PresetFilterModel::countChanged, [&] { announced = list.total(); });
    presets().remove(presetId(9));
    presets().remove("no id");
    EXPECT_EQ(presets().count(), 35);
    presets().remove(presetId(34));
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(playing(), 0);
    EXPECT_EQ(resets.take(), 0) << "views keep their place";
    list.setFilter(PresetFilterModel::Factory);
    EXPECT_EQ(list.count(), 33);
}

TEST_F(PresetListModelTest, FindsWordsOfNamesAndDescriptionsWithoutCaseAndAccents) {
    PresetFilterModel list;
    const auto found = [&](const QString &search) {
        list.setSearch(search);
        QStringList names;
        for (int row = 0; row < list.count(); ++row)
            names << says(list, row, "name").toString();
        return names.join(", ").toStdString();
    };
    presets().save("Café Größe");
    EXPECT_EQ(found("cafe GRÖSSE"), "Café Größe");
    EXPECT_EQ(found("outdoor  jbl"), "JBL Go 3 — Outdoor Loud");
    EXPECT_EQ(found("fletcher-munson"), "MR5 Desk — Late Night") << "a description";
    EXPECT_EQ(found("nothing of that kind"), "");
    EXPECT_EQ(list.total(), 34);
    Announcements counts(list, &PresetFilterModel::countChanged);
    presets().rename(presetId(33), "Nothing of that kind");
    EXPECT_EQ(list.count(), 1);
    EXPECT_GE(counts.take(), 1);
    EXPECT_EQ(list.rowOf(presetId(33)), 0);
    EXPECT_EQ(list.rowOf(presetId(0)), -1);
    found(" ");
    EXPECT_EQ(list.count(), 34);
}

TEST_F(PresetListModelTest, RenamesUpdatesAndDuplicatesOnlyTheUsersOwn) {
    presets().save("Desk");
    const QString own = presetId(33);
    presets().rename(own, "  Table ");
    presets().rename(own, " ");
    presets().rename(presetId(9), "x");
    EXPECT_EQ(presets().activeName(), "Table");
    EXPECT_EQ(text(9, "name"), "Bass Heavy");

    presets().apply(presetId(9));
    app->equalizer()->bands()->setGain(0, -7);
    presets().update(presetId(9));
    EXPECT_EQ(presets().activeName(), "Custom");
    presets().update(own);
    EXPECT_EQ(presets().activeName(), "Table");
    EXPECT_EQ(bands()[0].gainDB, -7.0F) << "the sound stays";

    const QString copy = presets().duplicate(presetId(9));
    presets().duplicate(own);
    presets().duplicate(presetId(9));
    ASSERT_EQ(presets().count(), 37);
    EXPECT_EQ(text(34, "name"), "Table (copy)") << "behind the original";
    EXPECT_EQ(presetId(35), copy);
    EXPECT_EQ(text(35, "name"), "Bass Heavy (copy)");
    EXPECT_EQ(text(36, "name"), "Bass Heavy (copy 2)");
    EXPECT_EQ(presets().activeName(), "Table") << "a copy is not applied";
    const Persisted saved = readSettingsFile(state->settingsPath());
    EXPECT_EQ(saved.presets, state->presets());
    EXPECT_EQ(saved.activePresetName, "Table");
    EXPECT_EQ(saved.presets[33].bands, bands());
}

TEST_F(PresetListModelTest, OffersFavouritesThenTheUsersOwnThenTheLibrary) {
    const PresetChoiceModel &choices = *presets().choices();
    const auto rows = [&](int count) {
        QStringList names;
        for (int at = 0; at < count; ++at)
            names << says(choices, at, "group").toString() + ": " +
                         says(choices, at, "name").toString();
        return names.join(", ").toStdString();
    };
    EXPECT_EQ(rows(1), "General: Flat");
    presets().save("Desk");
    presets().setFavourite(presetId(28), true);
    presets().setFavourite(presetId(0), true);
    EXPECT_TRUE(says(presets(), 28, "favourite").toBool());
    EXPECT_EQ(rows(4), "Favourites: Flat, Favourites: Cinema / Film, Mine: Desk, "
                       "Edifier MR5: MR5 Neutral");
    EXPECT_EQ(choices.rowCount({}), 34) << "each once";
    EXPECT_EQ(choices.currentIndex(), 2);
    EXPECT_TRUE(choices.isCurrentUnchanged());
    Announcements changes(choices, &PresetChoiceModel::currentChanged);
    app->equalizer()->bands()->setGain(0, 1);
    EXPECT_FALSE(choices.isCurrentUnchanged()) << "Custom";
    EXPECT_EQ(choices.currentIndex(), 2) << "the keyboard starts there";
    EXPECT_EQ(changes.take(), 1);

    AppModel next(*state, clock);
    EXPECT_EQ(next.presets()->choices()->choices()[1].name, "Cinema / Film") << "kept";
    app->history()->undo(); // the band
    app->history()->undo();
    EXPECT_EQ(rows(1), "Favourites: Cinema / Film");
    app->history()->redo();
    EXPECT_EQ(rows(1), "Favourites: Flat");
    write(folder.path() / "favourite-presets.json", "{");
    EXPECT_THAT(AppModel(*state, clock).persistWarning().toStdString(),
                HasSubstr("set aside as favourite-presets.corrupt-"));
}

TEST_F(PresetListModelTest, SeveralFilesMakeOneStepAndOneSummary) {
    const QString good = file("A.txt", "Filter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.70\nnoise\n");
    const QString bad = file("bad.json", "{");
    const QString more = file("B.txt", "Preamp: -2 dB\nFilter 1: ON PK Fc 90 Hz Gain 0 dB Q 1\n");
    ExchangeResult result;
    QObject::connect(&presets(), &PresetListModel::exchanged,
                     [&](const ExchangeResult &exchanged) { result = exchanged; });
    presets().importDropped(
        {QUrl::fromLocalFile(good), QUrl::fromLocalFile(bad), QUrl::fromLocalFile(more)});
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.message, "2 of 3 files were imported.");
    ASSERT_EQ(result.details.size(), 4);
    EXPECT_TRUE(result.details[0].startsWith("bad.json: "));
    EXPECT_EQ(result.details[1], "A: 1 filter, no preamp");
    EXPECT_EQ(result.details[2], "B: 1 filter, preamp -2 dB");
    EXPECT_TRUE(result.details[3].startsWith("A, line 2: "));
    EXPECT_EQ(presets().activeName(), "Flat") << "none of several is applied";
    EXPECT_EQ(engine().eq().presetGainDB(), 0.0F);
    presets().applyRow(34);
    EXPECT_EQ(engine().eq().presetGainDB(), -2.0F) << "each brings its own";
    app->history()->undo();
    app->history()->undo();
    EXPECT_EQ(presets().count(), 33);

    presets().importDropped({QUrl("https://example.org/x.json")});
    EXPECT_EQ(result.message,
              "Only files of this computer can be imported, not https://example.org/x.json.");
    presets().importDropped({QUrl::fromLocalFile(good)});
    EXPECT_EQ(presets().activeName(), "A") << "a single one is";
}

TEST_F(PresetListModelTest, ImportsAnEqualiserTextWithItsGainAndSaysWhatItSkipped) {
    const ExchangeResult result = presets().importFiles(
        {file("Living room.txt", "Preamp: -6.2 dB\n"
                                 "Filter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.70\n"
                                 "Filter 2: ON XX Fc 105 Hz Gain -3.1 dB\n")});
    ASSERT_TRUE(result.ok) << result.message.toStdString();
    EXPECT_EQ(result.message, "Living room: 1 filter, preamp -6.2 dB");
    ASSERT_EQ(result.details.size(), 1);
    EXPECT_THAT(result.details.first().toStdString(), ::testing::StartsWith("line 3: "));
    EXPECT_EQ(engine().eq().presetGainDB(), -6.2F);
    EXPECT_EQ(engine().eq().globalGainDB(), 0.0F);
    const Persisted saved = readSettingsFile(state->settingsPath());
    EXPECT_EQ(saved.bands, bands());
    EXPECT_EQ(saved.activePresetName, "Living room");
}

TEST_F(PresetListModelTest, ReadsItsOwnFiles) {
    presets().apply(presetId(9));
    app->equalizer()->setGlobalGainDB(-2);
    ASSERT_TRUE(presets().exportPreset(presetId(9), path("out.json")).ok);
    state->setPresetGainDB(*state->activePresetID(), -6.0F);
    EXPECT_THAT(
        presets().exportPreset(presetId(9), path("out.json")).details.join("").toStdString(),
        HasSubstr("without its gain of -6.0 dB"));

    const SpatialConfig spatial = engine().spatial();
    const std::vector<EQBand> exported = bands();
    presets().applyRow(0);
    const ExchangeResult back = presets().importFiles({path("out.json")});
    ASSERT_TRUE(back.ok) << back.message.toStdString();
    EXPECT_EQ(bands(), exported);
    EXPECT_EQ(engine().spatial(), spatial);
    EXPECT_TRUE(says(presets(), 33, "isUser").toBool());
}

} // namespace
} // namespace quorbel::testing
