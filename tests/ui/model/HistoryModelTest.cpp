#include "settings/records/json/SettingsCoding.h"
#include "ui/model/ModelFixture.h"

namespace quorbel::testing {
namespace {

/// Everything that undo must restore.
struct Settings {
    std::vector<EQBand> bands;
    float globalGainDB;
    SpatialConfig spatial;
    MixerConfig mixer;
    std::vector<Preset> presets;
    std::optional<Uuid> active;

    friend bool operator==(const Settings &, const Settings &) = default;
};

class HistoryModelTest : public ModelTest {
  protected:
    [[nodiscard]] Settings now() {
        return {
            bands(),          engine().eq().globalGainDB(), engine().spatial(), engine().mixer(),
            state->presets(), state->activePresetID()};
    }
    [[nodiscard]] HistoryModel &history() { return *app->history(); }
    /// Ends a burst of changes.
    void pause() { clock.advance(2.0); }

    /// Makes a change; expects one step that undo and redo pass.
    template <typename Change> void expectOneStep(const Change &change) {
        pause();
        const Settings before = now();
        change();
        const Settings after = now();
        ASSERT_FALSE(after == before) << "it changes something";
        history().undo();
        EXPECT_TRUE(now() == before) << "undone";
        history().redo();
        EXPECT_TRUE(now() == after) << "redone";
    }
};

TEST_F(HistoryModelTest, EveryKindOfChangeIsOneStep) {
    EqualizerModel &equalizer = *app->equalizer();
    expectOneStep([&] { equalizer.bands()->setGain(3, 4); });
    expectOneStep([&] { equalizer.bands()->resetBand(3); });
    expectOneStep([&] { equalizer.bands()->setBypassed(1, true); });
    expectOneStep([&] { equalizer.resetAll(); });
    expectOneStep([&] { equalizer.setGlobalGainDB(-6); });
    expectOneStep([&] { app->setting("xtcEnabled")->setValue(1); });
    expectOneStep([&] { app->setting("reverbPreset")->setValue(5); });
    expectOneStep([&] { app->setting("saturationDrive")->setValue(80); });
    expectOneStep([&] { app->presets()->apply(presetId(9)); });
    expectOneStep([&] { app->presets()->apply(presetId(28)); });
    history().undo();
    EXPECT_EQ(app->presets()->activeName(), "Bass Heavy");
    clock.advance(0.5);
    const Persisted saved = readSettingsFile(state->settingsPath());
    EXPECT_EQ(saved.activePresetName, "Bass Heavy") << "saved like any other change";
    EXPECT_EQ(saved.bands, bands());
}

TEST_F(HistoryModelTest, UndoKeepsValuesThatItsStepDidNotChange) {
    app->setting("xtcAmount")->setValue(70);
    engine().eq().setGlobalGainDB(-5); // not by the user
    history().undo();
    EXPECT_EQ(engine().spatial().xtcAmount, 50.0F);
    EXPECT_EQ(engine().eq().globalGainDB(), -5.0F);
}

TEST_F(HistoryModelTest, SavingDeletingAndImportingAreSteps) {
    const auto file = folder.path() / "Desk.txt";
    write(file, "Preamp: -6 dB\nFilter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.70\n");
    expectOneStep([&] { app->presets()->save("One"); });
    expectOneStep([&] { app->presets()->save("Two"); });
    expectOneStep([&] { app->presets()->rename(presetId(34), "Three"); });
    expectOneStep([&] { app->presets()->duplicate(presetId(4)); });
    app->equalizer()->setGlobalGainDB(-1);
    app->equalizer()->bands()->setGain(0, 2);
    expectOneStep([&] { app->presets()->update(presetId(34)); });
    expectOneStep([&] { app->presets()->remove(presetId(33)); });
    expectOneStep([&] { ASSERT_TRUE(app->presets()->importFiles({file.c_str()}).ok); });
    const Settings end = now();
    for (int i = 0; i < 9; ++i)
        history().undo();
    EXPECT_EQ(app->presets()->count(), 33);
    for (int i = 0; i < 9; ++i)
        history().redo();
    EXPECT_TRUE(now() == end);
    EXPECT_EQ(readSettingsFile((folder.path() / "state.json").string()).presets, end.presets)
        << "on disk as well, at once";

    // A preset that another program adds is taken by the next save and kept by undo.
    Persisted theirs = readSettingsFile(state->settingsPath());
    theirs.presets.push_back({.id = Uuid::random(), .name = "Theirs"});
    write(state->settingsPath(), encodeRecord(theirs));
    app->presets()->save("Three");
    while (history().canUndo())
        history().undo();
    EXPECT_EQ(app->presets()->count(), 34);
    EXPECT_EQ(state->presets().back().name, "Theirs");
}

} // namespace
} // namespace quorbel::testing
