#include "settings/state/OutputProfiles.h"

#include "settings/state/AppStateFixture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorbel::testing {
namespace {

using Use = OutputProfile::Use;
using Bluetooth = OutputIdentity::Bluetooth;

const OutputKey onSpeaker{.card = "pci", .route = "speaker"};
const OutputKey onHeadphones{.card = "pci", .route = "headphones"};
const OutputKey onHDMI{.node = "hdmi"};
const OutputKey anyOther;

/// Distinguishes profiles by their gain on an application's tone of amplitude 0.25.
class OutputProfilesTest : public AppStateTest {
  protected:
    OutputProfilesTest() {
        plug("speaker");
        hardware.play([](double seconds, std::uint32_t) {
            return static_cast<float>(0.25 * std::sin(2000.0 * std::numbers::pi * seconds));
        });
    }

    [[nodiscard]] static OutputProfile profile(const OutputKey &key, float gainDB) {
        return {.key = key,
                .own = OutputSound{.bands = EQBand::defaultBands(), .presetGainDB = gainDB}};
    }
    void launchWithProfiles(const std::vector<OutputProfile> &profiles) {
        std::filesystem::remove(folder / "profiles.json");
        OutputProfilesFile(file.string()).write(profiles);
        launch();
        state->engine().useDefaultOutput();
        wait(0.0);
    }
    void useOutput(const std::string &uid) {
        hardware.setDefaultOutput(uid);
        state->deviceManager().refresh();
    }
    /// Sets the active route of the card of "speakers".
    void plug(const std::string &route) {
        hardware.setIdentity("speakers", {.card = "pci", .route = route});
    }
    void unknownRoute() { hardware.setIdentity("speakers", {.card = "pci", .isAwaited = true}); }
    void start() {
        state->engine().start();
        clock.runPending();
    }
    [[nodiscard]] bool isRunning() {
        return state->engine().state() == EngineLifecycle::State::running();
    }
    [[nodiscard]] float liveGain() { return state->engine().eq().presetGainDB(); }
    void setLiveGain(float gainDB) { state->engine().eq().setPresetGainDB(gainDB); }
    [[nodiscard]] float savedGain(const OutputKey &key) const {
        OutputProfilesFile saved(file.string());
        saved.read();
        const auto found = std::ranges::find(saved.profiles(), key, &OutputProfile::key);
        return found == saved.profiles().end() || !found->own ? NAN : found->own->presetGainDB;
    }
    /// Peak that a device has played since the last call, in dB relative to the tone.
    [[nodiscard]] double loudest(const std::string &uid) {
        float peak = 1e-9F;
        for (const float sample : hardware.takeRecording(uid).left)
            peak = std::max(peak, std::abs(sample));
        return 20.0 * std::log10(static_cast<double>(peak) / 0.25);
    }
    [[nodiscard]] double soonHears(const std::string &uid) {
        wait(0.3);
        (void)loudest(uid);
        wait(0.1);
        return loudest(uid);
    }
    [[nodiscard]] std::string nameInUse() const {
        const OutputProfile *used = state->profiles().inUse();
        return used == nullptr ? "none" : state->profiles().titleOf(*used);
    }
};

TEST_F(OutputProfilesTest, WithoutProfilesNothingIsDifferent) {
    unknownRoute();
    launch();
    state->engine().useDefaultOutput();
    setLiveGain(-3.0F);
    wait(1.0);
    (void)saves();
    start();
    EXPECT_TRUE(isRunning()) << "waits for nothing";
    int announced = 0;
    QObject::connect(&state->engine(), &AudioEngine::outputDeviceChanged, &state->engine(),
                     [&] { ++announced; });
    for (const char *route : {"speaker", "headphones", "speaker"}) {
        plug(route);
        wait(1.0);
        EXPECT_EQ(liveGain(), -3.0F);
        EXPECT_EQ(state->engine().outputDevice()->identity.route, route);
    }
    hardware.setIdentity("speakers", {.card = "headset", .bluetooth = Bluetooth::call});
    wait(1.0);
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(announced, 0);
    EXPECT_EQ(saves(), 0);
    EXPECT_EQ(state->engine().upheavals().outputRestarts, 0);
    EXPECT_FALSE(exists(folder / "profiles.json"));
}

TEST_F(OutputProfilesTest, NoBlockIsPlayedWithAnotherOutputsSettings) {
    launchWithProfiles({profile(onSpeaker, -6.0F), profile(onHDMI, -20.0F)});
    start();
    wait(0.2);
    EXPECT_NEAR(loudest("speakers"), -6.0, 0.2) << "from the first block on";
    hardware.setDefaultOutput("hdmi");
    wait(0.5);
    EXPECT_NEAR(loudest("hdmi"), -20.0, 0.2) << "from the first block on";
    EXPECT_NEAR(loudest("speakers"), -6.0, 0.2) << "to the last one";
    EXPECT_LT(soonHears("speakers"), -100.0);

    hardware.setDefaultOutput("speakers");
    wait(0.5);
    EXPECT_NEAR(loudest("hdmi"), -20.0, 0.2) << "nor is the next one's heard before";
    EXPECT_NEAR(loudest("speakers"), -6.0, 0.2);
    hardware.setDefaultOutput("hdmi");
    wait(0.5);
    (void)loudest("speakers");

    // A removed output's gain must not reach the next output.
    hardware.removeDevice("hdmi");
    wait(0.5);
    EXPECT_NEAR(loudest("speakers"), -6.0, 0.2);
}

TEST_F(OutputProfilesTest, AStartWaitsForTheRouteButNoLongerThanASecond) {
    const std::vector<OutputProfile> profiles{profile(onHeadphones, -20.0F),
                                              profile(anyOther, -6.0F)};
    unknownRoute();
    launchWithProfiles(profiles);
    start();
    wait(0.8);
    EXPECT_FALSE(isRunning());
    EXPECT_FALSE(hardware.isCapturing());
    plug("headphones");
    clock.runPending();
    EXPECT_TRUE(isRunning());
    (void)loudest("speakers"); // drops the unprocessed sound
    wait(0.2);
    EXPECT_NEAR(loudest("speakers"), -20.0, 0.2);

    unknownRoute();
    launchWithProfiles(profiles);
    start();
    wait(0.99);
    EXPECT_FALSE(isRunning());
    (void)loudest("speakers");
    wait(0.2);
    EXPECT_TRUE(isRunning());
    wait(0.1);
    EXPECT_NEAR(soonHears("speakers"), -6.0, 0.2);
    plug("headphones");
    EXPECT_NEAR(soonHears("speakers"), -20.0, 0.2) << "corrected later";

    unknownRoute();
    launchWithProfiles({profile(onHDMI, -20.0F)});
    start();
    EXPECT_TRUE(isRunning()) << "no route makes a difference";

    unknownRoute();
    launchWithProfiles(profiles);
    start();
    state->engine().stop();
    wait(2.0);
    EXPECT_FALSE(isRunning()) << "a stop while it waits";
    EXPECT_FALSE(hardware.isListenedTo());
}

TEST_F(OutputProfilesTest, AHundredJackFlipsKeepEveryChangeWhereItBelongs) {
    launchWithProfiles({profile(onSpeaker, -1.0F), profile(onHeadphones, -20.0F)});
    start();
    for (int flip = 1; flip <= 100; ++flip) {
        const bool isPlugged = flip % 2 == 1;
        plug(isPlugged ? "headphones" : "speaker");
        clock.runPending();
        const float expected = (isPlugged ? -20.0F : -1.0F) - 0.0625F * ((flip - 1) / 2);
        ASSERT_EQ(liveGain(), expected) << flip;
        setLiveGain(expected - 0.0625F);
        wait(flip % 7 == 0 ? 0.6 : 0.01); // with and without a save
    }
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(state->engine().upheavals().outputRestarts, 0) << "it plays on";
    wait(1.0);
    EXPECT_EQ(savedGain(onSpeaker), -1.0F - 50 * 0.0625F);
    EXPECT_EQ(savedGain(onHeadphones), -20.0F - 50 * 0.0625F);
    EXPECT_EQ(saved().bands.size(), 10U);
}

TEST_F(OutputProfilesTest, AnOutputThatIsLeftAloneEndsTheCaptureButNotTheWish) {
    launchWithProfiles({profile(onSpeaker, -6.0F), {.key = onHDMI, .use = Use::leaveAlone}});
    start();
    EXPECT_NEAR(soonHears("speakers"), -6.0, 0.2);
    hardware.setDefaultOutput("hdmi");
    clock.runPending();
    EXPECT_FALSE(hardware.isCapturing());
    EXPECT_TRUE(hardware.taps().empty());
    EXPECT_TRUE(state->engine().isLeavingAlone());
    EXPECT_FALSE(isRunning());
    EXPECT_NEAR(soonHears("hdmi"), 0.0, 0.1) << "as the application plays it";
    state->engine().start();
    EXPECT_FALSE(hardware.isCapturing()) << "it wants to process already";

    (void)loudest("speakers");
    hardware.setDefaultOutput("speakers");
    wait(0.2);
    EXPECT_TRUE(isRunning());
    EXPECT_FALSE(state->engine().isLeavingAlone());
    EXPECT_NEAR(soonHears("speakers"), -6.0, 0.2);

    // Stopping cancels the start request; assigning another use resumes processing.
    hardware.setDefaultOutput("hdmi");
    wait(0.2);
    state->engine().stop();
    EXPECT_FALSE(state->engine().isLeavingAlone());
    EXPECT_FALSE(hardware.isListenedTo());
    start();
    EXPECT_TRUE(state->engine().isLeavingAlone()) << "a start is a wish too";
    state->assignProfile(onHDMI, "HDMI", Use::flat);
    clock.runPending();
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(nameInUse(), "Flat");

    // The sound server disappears while the output is left alone; the first restart fails.
    state->assignProfile(onHDMI, "HDMI", Use::leaveAlone);
    EXPECT_TRUE(state->engine().isLeavingAlone());
    hardware.loseConnection(-EPIPE);
    wait(1.0);
    EXPECT_TRUE(state->engine().isComingBack());
    hardware.restoreConnection();
    wait(3.0);
    EXPECT_TRUE(state->engine().isLeavingAlone());
    hardware.operations().fail(SimulatedHardware::Operation::startOutput, -EIO);
    hardware.setDefaultOutput("speakers");
    wait(0.1);
    EXPECT_TRUE(state->engine().isComingBack());
    hardware.operations().repair(SimulatedHardware::Operation::startOutput);
    wait(2.0);
    EXPECT_TRUE(isRunning());
}

TEST_F(OutputProfilesTest, ACallLeavesTheHeadsetAlone) {
    launchWithProfiles({profile(anyOther, -6.0F)});
    hardware.addDevice(
        {.uid = "bluez.1", .identity = {.card = "bluez_card", .bluetooth = Bluetooth::music}});
    useOutput("bluez.1");
    start();
    EXPECT_NEAR(soonHears("bluez.1"), -6.0, 0.2);
    hardware.setIdentity("bluez.1", {.card = "bluez_card", .bluetooth = Bluetooth::call});
    EXPECT_NEAR(soonHears("bluez.1"), 0.0, 0.1);
    EXPECT_TRUE(state->engine().isLeavingAlone());
    hardware.setIdentity("bluez.1", {.card = "bluez_card", .bluetooth = Bluetooth::music});
    EXPECT_NEAR(soonHears("bluez.1"), -6.0, 0.2);
}

TEST_F(OutputProfilesTest, AnotherProgramsChangesAreHeardAtOnce) {
    const auto rewrite = [&](const std::vector<OutputProfile> &profiles) {
        OutputProfilesFile other(file.string());
        other.read();
        other.write(profiles);
        state->takeFileChanges();
    };
    launchWithProfiles({profile(onSpeaker, -6.0F), profile(onHDMI, -20.0F)});
    start();
    rewrite({profile(onSpeaker, -9.0F), profile(onHDMI, -20.0F)});
    EXPECT_NEAR(soonHears("speakers"), -9.0, 0.2);
    setLiveGain(-2.0F);
    rewrite({profile(onSpeaker, -12.0F), {.key = onHDMI, .use = Use::flat}});
    EXPECT_EQ(liveGain(), -2.0F) << "both have changed it";
    rewrite({{.key = onSpeaker, .use = Use::leaveAlone}, {.key = onHDMI, .use = Use::flat}});
    EXPECT_FALSE(state->engine().isLeavingAlone());
    wait(1.0);
    EXPECT_EQ(savedGain(onSpeaker), -2.0F);
    rewrite({{.key = onSpeaker, .use = Use::leaveAlone}, {.key = onHDMI, .use = Use::flat}});
    EXPECT_TRUE(state->engine().isLeavingAlone());
    rewrite({{.key = onHDMI, .use = Use::flat}, profile(anyOther, -15.0F)});
    clock.runPending();
    EXPECT_NEAR(soonHears("speakers"), -15.0, 0.2) << "it has no profile of its own any more";

    write(folder / "profiles.json", R"({"version":1,"profiles":[{"use":"flat"}]})");
    state->takeFileChanges();
    wait(0.9);
    EXPECT_EQ(warning(), "") << "its writer may go on";
    wait(0.2);
    EXPECT_THAT(warning(), ::testing::HasSubstr("profiles.json: profiles[0].output"));
    EXPECT_EQ(nameInUse(), "Custom");
}

TEST_F(OutputProfilesTest, ChangesBelongToTheProfileInUseAndNoneIsLost) {
    launch();
    state->engine().useDefaultOutput();
    setLiveGain(-2.0F);
    state->assignProfile(onHDMI, "HDMI", Use::preset, preset("Bass Heavy").id);
    EXPECT_EQ(nameInUse(), "Flat (modified)") << "the settings so far are for any other output";
    useOutput("hdmi");
    EXPECT_EQ(nameInUse(), "Bass Heavy");
    EXPECT_EQ(displayName(), "Bass Heavy");
    EXPECT_EQ(liveGain(), 0.0F);
    moveBand(3, 4.5F);
    EXPECT_EQ(nameInUse(), "Bass Heavy (modified)");

    useOutput("speakers"); // before any save
    EXPECT_EQ(liveGain(), -2.0F);
    EXPECT_EQ(state->engine().eq().bands().at(3).gainDB, 0.0F);
    wait(1.0);
    launch();
    state->engine().useDefaultOutput();
    EXPECT_EQ(liveGain(), -2.0F);
    useOutput("hdmi");
    EXPECT_EQ(state->engine().eq().bands().at(3).gainDB, 4.5F);
    EXPECT_EQ(nameInUse(), "Bass Heavy (modified)");
    std::vector<EQBand> sameBands = preset("Bass Heavy").bands;
    for (EQBand &band : sameBands)
        band.id = Uuid::random(); // as after every launch
    state->engine().eq().setBands(sameBands);
    EXPECT_EQ(nameInUse(), "Bass Heavy");
    setLiveGain(-1.0F);
    for (const char *uid : {"speakers", "hdmi"})
        useOutput(uid);
    EXPECT_EQ(nameInUse(), "Bass Heavy (modified)");
    EXPECT_EQ(displayName(), "Bass Heavy") << "but for the gain";
    moveBand(3, 4.5F);

    // A user preset: applied, then deleted.
    state->savePreset("Mine");
    EXPECT_EQ(nameInUse(), "Mine");
    state->assignProfile(onSpeaker, "Speakers", Use::flat);
    useOutput("speakers");
    state->deletePreset(preset("Mine"));
    for (const char *uid : {"speakers", "hdmi"}) {
        useOutput(uid);
        EXPECT_EQ(state->engine().eq().bands().at(3).gainDB, uid[0] == 'h' ? 4.5F : 0.0F);
    }

    state->forgetProfile(onHDMI);
    EXPECT_EQ(liveGain(), -2.0F) << "any other output";
    state->forgetProfile(onSpeaker);
    state->forgetProfile(anyOther);
    EXPECT_EQ(nameInUse(), "none");
    EXPECT_EQ(liveGain(), -2.0F);

    state->assignProfile(onHDMI, "HDMI", Use::flat);
    state->forgetProfile(anyOther);
    setLiveGain(-7.0F);
    state->assignProfile(onHDMI, "HDMI", Use::preset, preset("Bass Heavy").id);
    EXPECT_EQ(nameInUse(), "Bass Heavy");
    EXPECT_EQ(state->profiles().profiles().size(), 1U) << "what it replaces is for no other output";
    state->forgetProfile(onHDMI);
    launch();
    EXPECT_TRUE(state->profiles().profiles().empty());
}

} // namespace
} // namespace quorbel::testing
