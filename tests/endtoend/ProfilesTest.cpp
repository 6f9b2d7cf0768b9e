#include "endtoend/LiveTest.h"
#include "settings/state/OutputProfilesFile.h"
#include "support/soundserver/ControlProgram.h"
#include "support/soundserver/SoundCard.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace quorbel {
namespace {

using Use = OutputProfile::Use;

constexpr double toneDB = -12.0;

/// `live` with the user's own settings and output profiles. Each profile has its own gain in dB,
/// measured on an application's tone.
class Profiles : public LiveTest {
  protected:
    Profiles() {
        create_directories(server.settingsFolder());
        std::ofstream(server.settingsFolder() / "state.json") << LiveSettings::flat().json();
    }

    [[nodiscard]] static OutputProfile profile(const OutputKey &key, float gainDB) {
        return {.key = key,
                .own = OutputSound{.bands = EQBand::defaultBands(), .presetGainDB = gainDB}};
    }
    [[nodiscard]] static OutputKey onRoute(const std::string &route) {
        return {.card = "card", .route = route};
    }
    void write(const std::vector<OutputProfile> &profiles) const {
        OutputProfilesFile(server.settingsFolder() / "state.json").write(profiles);
    }
    [[nodiscard]] std::unique_ptr<ChildProcess> startOwn() const {
        return server.start({LiveProcess::program(), "live"});
    }
    /// Waits until remote control reports this preset, `isModified` ("yes" or "no") and profile.
    [[nodiscard]] testing::AssertionResult soonTells(const std::string &preset,
                                                     const std::string &isModified,
                                                     const std::string &profile) const {
        const std::string told =
            "Preset    " + preset + "\nModified  " + isModified + "\nProfile   " + profile + "\n";
        ControlOutcome status;
        if (comesTrue(3.0, [&] {
                status = control(server, {"status"});
                return status.output.find(told) != std::string::npos;
            }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << status;
    }
    static void end(std::unique_ptr<ChildProcess> &live) {
        EXPECT_EQ(live->stop(5.0, SIGINT), 0) << live->errors();
        live.reset();
    }

    /// Returns the largest sample since the last call, in dB relative to the tone.
    [[nodiscard]] static double loudest(CardOutput &output) {
        return 20.0 * std::log10(std::max(static_cast<double>(output.takePeak()), 1e-9)) - toneDB;
    }
    /// Waits until an output plays at a gain for at least two periods of the tone.
    [[nodiscard]] static bool soonPlays(CardOutput &output, double gainDB, double seconds = 3.0) {
        return comesTrue(seconds, [&] {
            (void)loudest(output);
            const auto from = output.cycles();
            return comesTrue(0.5, [&] { return output.cycles() > from + 2; }) &&
                   std::abs(loudest(output) - gainDB) < 0.3;
        });
    }
};

TEST_F(Profiles, FollowTheRoutesOfACardAndItsOtherOutputs) {
    SoundCard card(client, "card", "alsa",
                   {"analog-output-speaker", "analog-output-headphones", "hdmi-output-0"});
    card.setRoute(0, "analog-output-speaker");
    card.setRoute(1, "hdmi-output-0");
    CardOutput analog(client, card, 0, "analog");
    CardOutput hdmi(client, card, 1, "card-hdmi");
    OutputProfile bassy = profile(onRoute("hdmi-output-0"), -30.0F);
    bassy.presetName = "Bass Heavy";
    write({profile(onRoute("analog-output-speaker"), -6.0F),
           profile(onRoute("analog-output-headphones"), -20.0F), bassy, profile({}, -3.0F)});
    server.setDefaultDevice("analog");
    playTone(toneDB);
    ASSERT_TRUE(soonPlays(analog, 0.0)) << "unprocessed at first";
    auto live = startOwn();
    EXPECT_TRUE(soonPlays(analog, -6.0));

    double slowest = 0.0;
    for (int flip = 1; flip <= 100; ++flip) {
        const bool isPlugged = flip % 2 == 1;
        const auto flipped = SteadyClock::now();
        card.setRoute(0, isPlugged ? "analog-output-headphones" : "analog-output-speaker");
        card.changeVolume();
        ASSERT_TRUE(soonPlays(analog, isPlugged ? -20.0 : -6.0)) << flip;
        const std::chrono::duration<double> took = SteadyClock::now() - flipped;
        slowest = std::max(slowest, took.count());
    }
    std::cout << "heard with the other profile after " << slowest << " s at most\n";

    (void)loudest(hdmi);
    server.setDefaultDevice("card-hdmi");
    ASSERT_TRUE(soonPlays(hdmi, -30.0));
    EXPECT_TRUE(soonTells("Bass Heavy", "yes", "Bass Heavy (modified)"));
    EXPECT_EQ(control(server, {"preset", "bass heavy"}).status, 0);
    EXPECT_TRUE(soonTells("Bass Heavy", "no", "Bass Heavy"));
    server.setDefaultDevice("analog");
    ASSERT_TRUE(soonPlays(analog, -6.0));
    EXPECT_TRUE(soonTells("none", "no", "Custom"));
    server.setDefaultDevice("card-hdmi");
    EXPECT_TRUE(soonTells("Bass Heavy", "no", "Bass Heavy")) << "until it ends";
    end(live);
    server.setDefaultDevice("analog");
    EXPECT_TRUE(soonPlays(analog, 0.0));
}

TEST_F(Profiles, NothingLouderThanItsProfileIsEverHeardOnTheNextOutput) {
    SoundCard card(client, "card", "alsa", {"analog-output-speaker"});
    card.setRoute(0, "analog-output-speaker");
    CardOutput quiet(client, card, 0, "quiet");
    auto loud = std::make_unique<CardOutput>(client, card, 1, "loud");
    write({profile(onRoute("analog-output-speaker"), -30.0F), profile({.node = "loud"}, 0.0F),
           profile({}, -3.0F)});
    server.setDefaultDevice("quiet");
    server.setDefaultDevice("loud"); // the earlier default is the fallback
    playTone(toneDB);
    ASSERT_TRUE(soonPlays(*loud, 0.0));
    auto live = startOwn();
    waitFor("it is captured", 5.0, [&] {
        return soonPlaysInto("player", {"quorbel.tap." + std::to_string(live->pid())}, 0.1);
    });
    (void)loudest(quiet);
    loud.reset();
    double worst = -200.0;
    EXPECT_FALSE(comesTrue(1.0,
                           [&] {
                               worst = std::max(worst, loudest(quiet));
                               return worst > -29.5;
                           }))
        << "heard at " << worst << " dB";
    EXPECT_NEAR(worst, -30.0, 0.5);
    end(live);
}

TEST_F(Profiles, KnowABluetoothHeadsetByItsCardAndLeaveItsCallsAlone) {
    SoundCard card(client, "bluez_card.00_11", "bluez5", {"headset-output"});
    card.setRoute(0, "headset-output");
    write({profile({.card = "bluez_card.00_11", .bluetooth = OutputIdentity::Bluetooth::music},
                   -20.0F),
           profile({}, -6.0F)});
    auto headset =
        std::make_unique<CardOutput>(client, card, 0, "bluez_output.a2dp-sink", "a2dp-sink");
    server.setDefaultDevice("bluez_output.a2dp-sink");
    playTone(toneDB);
    ASSERT_TRUE(soonPlays(*headset, 0.0));
    auto live = startOwn();
    EXPECT_TRUE(soonPlays(*headset, -20.0));

    const auto turnsInto = [&](const std::string &node, const std::string &profile) {
        headset.reset();
        headset = std::make_unique<CardOutput>(client, card, 0, node, profile);
        server.setDefaultDevice(node);
    };
    turnsInto("bluez_output.1", "a2dp-sink");
    EXPECT_TRUE(soonPlays(*headset, -20.0)) << "under another name";
    turnsInto("bluez_output.2", "headset-head-unit");
    EXPECT_TRUE(soonPlays(*headset, 0.0)) << "in a call";
    EXPECT_TRUE(comesTrue(2.0, [&] { return ourNodes().empty(); }));
    turnsInto("bluez_output.1", "a2dp-sink");
    EXPECT_TRUE(soonPlays(*headset, -20.0));
    end(live);
}

} // namespace
} // namespace quorbel
