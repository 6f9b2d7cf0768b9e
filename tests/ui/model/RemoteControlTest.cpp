#include "remote/RemoteControl.h"

#include "ui/app/ControlledWindow.h"
#include "ui/app/ProcessingPermit.h"
#include "ui/model/ModelFixture.h"

#include <limits>
#include <optional>

namespace quorbel::testing {
namespace {

using ::testing::HasSubstr;

/// The program with a window, controlled by other programs.
class RemoteControlTest : public ModelTest {
  protected:
    RemoteControlTest() : before_(qgetenv("XDG_RUNTIME_DIR")) {
        qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(folder.path().string()));
    }
    ~RemoteControlTest() override { qputenv("XDG_RUNTIME_DIR", before_); }

    /// The error thrown by `request`; "done" if none.
    template <typename Request> static std::string refusalOf(const Request &request) {
        try {
            request();
        } catch (const RemoteError &error) {
            return error.what();
        }
        return "done";
    }
    /// Outcome of a start: empty during it, then the failure or "".
    [[nodiscard]] std::shared_ptr<std::optional<std::string>> start() {
        auto outcome = std::make_shared<std::optional<std::string>>();
        control.start([outcome](const std::string &failure) {
            EXPECT_FALSE(*outcome) << "answered twice";
            *outcome = failure;
        });
        return outcome;
    }
    [[nodiscard]] QString shown(const QString &setting) const {
        return app->setting(setting)->text();
    }

    const QByteArray before_;
    ControlledWindow program{*state, *app};
    RemoteControl control{program, clock};
    const ProcessingPermit permit{*app->engine()};
};

TEST_F(RemoteControlTest, SettingsAreFoundAndCheckedByTheirPathInTheFile) {
    const auto nan = std::numeric_limits<double>::quiet_NaN();
    const std::string own = "expected a reverb preset (smallRoom, ";
    struct Case {
        std::string path;
        SettingValue value;
        std::string refusal;                             ///< part of the error
        std::optional<SettingValue> read = std::nullopt; ///< if not the written value
    };
    const std::vector<Case> cases{
        {"spatial.reverbMix", 30.5, "done"},
        {"spatial.reverbMix", "12", "done", 12.0},
        {"mixer.limiterThresholdDB", -12.0, "done"},
        {"mixer.limiterThresholdDB", -0.3, "done"},
        {"eqGlobalGainDB", -12.0, "done"},
        {"spatial.reverbEnabled", true, "done"},
        {"mixer.limiterEnabled", "false", "done", false},
        {"spatial.reverbPreset", "plate", "done"},
        {"bands[2].gainDB", 4.0, "done"},
        {"bands.9.filterType", "lowPass", "done"},
        {"mixer.pitchSemitones", 99.0, "done"}, // has no control, hence no range
        {"mixer", R"({"limiterThresholdDB":-1})", "done", std::string()},
        {"bands[0]", R"({"frequency":40})", "done", std::string()},
        // Values
        {"spatial.reverbMix", 60.1, "spatial.reverbMix: 60.1 is beyond the range from 0 to 60"},
        {"spatial.reverbMix", nan, "spatial.reverbMix: expected a finite number"},
        {"spatial.reverbMix", 1e300, "expected a number that fits 32-bit"},
        {"spatial.reverbMix", "loud", R"(spatial.reverbMix: expected a number, found "loud")"},
        {"spatial.reverbMix", true, "expected a number, found true"},
        {"spatial.reverbEnabled", 1.0, "expected true or false, found 1"},
        {"spatial.reverbPreset", "hall", own},
        {"spatial.reverbPreset", 3.0, own},
        {"bands[3].frequency", 10.0, "bands[3].frequency: 10 is beyond the range from 20 to 20000"},
        {"bands", "[]", "bands: expected 10 bands, found 0"},
        {"bands", "{", "bands: not valid JSON at line 1, column 2"},
        {"spatial", "{}", "spatial.widenerEnabled: required, but missing"},
        {"mixer", R"({"autoGainTargetDB":0})", "mixer.autoGainTargetDB: 0 is beyond the range"},
        {"mixer", std::string(100000, ' '), "mixer: longer than 65536 bytes"},
        {"outputDeviceUID", "usb", R"(has the uid "usb"; there are: speakers, hdmi)"},
        // Names
        {"", 1.0, R"(no setting is named ""; there are: bands, spatial, presets)"},
        {"reverbMix", 1.0, R"(no setting is named "reverbMix"; there are: bands)"},
        {"spatial.reverbMx", 1.0, R"(named "reverbMx" in spatial; there are: widenerEnabled)"},
        {"spatial.reverbMix.x", 1.0, R"(named "x" in spatial.reverbMix; there is one value)"},
        {"bands[10].q", 1.0, R"(named "10" in bands; there are 10, counted from 0)"},
        {"bands[-1].q", 1.0, R"(named "-1" in bands)"},
        {"bands[1e3].q", 1.0, R"(named "1e3" in bands)"},
        {std::string(5000, '.'), 1.0, "no setting is named \"...."},
        // Read-only settings
        {"presets", "[]", "presets: can only be read; bands, spatial, mixer, "},
        {"activePresetName", "Flat", "activePresetName: can only be read"},
        {"bands[0].id", "00000000-0000-0000-0000-000000000001", "bands[0].id: can only be read"},
    };
    for (const Case &step : cases) {
        SCOPED_TRACE(step.path.substr(0, 40));
        const auto bandsBefore = bands();
        const std::string refusal = refusalOf([&] { control.set(step.path, step.value); });
        EXPECT_THAT(refusal, HasSubstr(step.refusal));
        EXPECT_LT(refusal.size(), 600U);
        if (step.refusal == "done" && step.read != SettingValue(std::string())) {
            EXPECT_EQ(control.get(step.path), step.read.value_or(step.value));
        }
        for (std::size_t index = 0; index < bandsBefore.size(); ++index)
            EXPECT_EQ(bands()[index].id, bandsBefore[index].id) << "identity of a row";
    }
    EXPECT_EQ(engine().mixer(), (MixerConfig{.limiterThresholdDB = -1}));
    EXPECT_EQ(bands()[0].frequency, 40.0F);
    EXPECT_EQ(bands()[2].gainDB, 4.0F) << "as set before";
    EXPECT_EQ(control.get("activePresetName"), SettingValue("Flat"));
    EXPECT_THAT(std::get<std::string>(control.get("bands[9]")),
                HasSubstr(R"("filterType":"lowPass")"));
    control.set("outputDeviceUID", "hdmi");
    EXPECT_EQ(engine().outputChoice(), "hdmi");
}

TEST_F(RemoteControlTest, AChangeIsAStepOfTheWindowsHistory) {
    control.set("spatial.reverbMix", 40.0);
    EXPECT_EQ(shown("reverbMix"), "40 %");
    EXPECT_EQ(app->history()->undoText(), "Undo Reverb, Wet Mix");
    clock.advance(2.0);
    control.set("bands[3].gainDB", 6.0);
    EXPECT_EQ(says(*app->equalizer()->bands(), 3, "gain").toDouble(), 6.0);
    EXPECT_EQ(app->history()->undoText(), "Undo Band gain");
    clock.advance(2.0);
    EXPECT_EQ(control.applyPreset("warm / long session"), "Warm / Long Session");
    EXPECT_EQ(app->presets()->activeName(), "Warm / Long Session");
    EXPECT_EQ(app->history()->undoText(), "Undo Preset Warm / Long Session");
    clock.advance(2.0);
    control.set("eqGlobalGainDB", -3.0);
    EXPECT_EQ(readSettingsFile(state->settingsPath()).activePresetName, "Warm / Long Session");
    for (int step = 0; step < 4; ++step)
        app->history()->undo();
    EXPECT_FALSE(app->history()->canUndo());
    EXPECT_EQ(control.status().preset, "Flat");
    EXPECT_FALSE(control.status().isModified);
    // Setting an equal value is no step.
    control.set("eqGlobalGainDB", 0.0);
    EXPECT_FALSE(app->history()->canUndo());
}

TEST_F(RemoteControlTest, PresetsFollowEachOtherAsInThePicker) {
    app->presets()->save("Mine");
    app->presets()->setFavourite(presetId(7), true);
    const auto &choices = app->presets()->choices()->choices();
    ASSERT_EQ(choices[1].name, "Mine");
    app->presets()->apply(choices.back().id);
    for (int round = 0; round < 2; ++round)
        for (const auto &choice : choices)
            ASSERT_EQ(control.nextPreset(), choice.name.toStdString());
    EXPECT_EQ(control.applyPreset(choices[1].name.toStdString()), "Mine");
    EXPECT_EQ(control.previousPreset(), choices[0].name.toStdString());
    EXPECT_EQ(control.previousPreset(), choices.back().name.toStdString());
    EXPECT_THAT(refusalOf([&] { (void)control.applyPreset("mi\nne"); }),
                HasSubstr(R"(no preset is named "mi\nne")"));
    EXPECT_EQ(control.status().preset, choices.back().name.toStdString());
}

TEST_F(RemoteControlTest, ChangesThatBelongTogetherAreAnnouncedOnce) {
    run();
    clock.runPending();
    Announcements announced(control, &RemoteControl::statusChanged);
    QObject context;
    RemoteStatus last;
    QObject::connect(&control, &RemoteControl::statusChanged, &context,
                     [&] { last = control.status(); });
    app->presets()->apply(presetId(9));
    clock.runPending();
    EXPECT_EQ(announced.take(), 1);
    EXPECT_EQ(last.preset, "Bass Heavy");
    EXPECT_FALSE(last.isModified);
    app->equalizer()->bands()->setGain(3, 4);
    app->engine()->setComparing(true);
    app->devices()->select("hdmi");
    clock.runPending();
    EXPECT_EQ(announced.take(), 1);
    EXPECT_TRUE(last.isModified && last.isComparing);
    EXPECT_EQ(last.outputUID, "hdmi");
    EXPECT_EQ(last.profile, "");
    clock.advance(0.5);            // playback moves
    app->profiles()->choose(1, 1); // flat, for this output
    clock.runPending();
    EXPECT_EQ(last.profile, "Flat");
    app->setting("bassEnabled")->toggle();
    clock.runPending();
    EXPECT_EQ(last.profile, "Flat (modified)");
    app->devices()->select("speakers");
    clock.advance(0.5);
    EXPECT_EQ(last.profile, "Bass Heavy (modified)") << "the settings of before, for any other";
    app->engine()->stop();
    clock.runPending();
    EXPECT_EQ(last.state, RemoteStatus::State::stopped);
    EXPECT_FALSE(last.isComparing);
}

TEST_F(RemoteControlTest, AStartIsAnsweredWhenItIsDecided) {
    EXPECT_THAT(refusalOf([&] { control.setComparing(true); }), HasSubstr("nothing to compare"));
    const auto first = start();
    EXPECT_FALSE(*first) << "under way";
    clock.runPending();
    EXPECT_EQ(*first, "");
    EXPECT_EQ(*start(), "") << "it runs already";
    control.setComparing(true);
    EXPECT_TRUE(app->engine()->comparing());
    control.stop();
    EXPECT_FALSE(engine().comparing());

    const auto stopped = start();
    control.stop();
    EXPECT_EQ(*stopped, "stopped before it had started");
    clock.runPending();

    hardware.operations().fail(SimulatedHardware::Operation::createProcessTap, -1);
    const auto failing = start();
    clock.runPending();
    ASSERT_TRUE(*failing);
    EXPECT_EQ(**failing, control.status().reason);
    EXPECT_EQ(control.status().state, RemoteStatus::State::error);
    hardware.operations().repair(SimulatedHardware::Operation::createProcessTap);

    std::optional<InstanceLock> another(std::in_place);
    EXPECT_THAT((*start()).value_or(""), HasSubstr("Another Ostrafine is running"));
    EXPECT_THAT(control.status().reason, HasSubstr("Another Ostrafine is running"));
    another.reset();

    run();
    hardware.removeDevice("speakers");
    hardware.removeDevice("hdmi");
    clock.advance(0.5);
    EXPECT_EQ(control.status().state, RemoteStatus::State::waiting);
    const auto hopeless = start();
    clock.advance(6.0);
    EXPECT_EQ(*hopeless, control.status().reason) << "nobody waits for ever";
}

} // namespace
} // namespace quorbel::testing
