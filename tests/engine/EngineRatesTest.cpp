// Devices at other rates and with odd cycles: pitch and level are kept and no frame is lost.

#include "engine/EngineFixture.h"

#include <cmath>
#include <limits>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char *losses = "într-o secundă";

class EngineRatesTest : public EngineTest {
  protected:
    /// Expects a pure tone of the right pitch and level at the device and no lost frame, after one
    /// second of settling.
    void expectPureTone(double sampleRate) {
        play(1.1);
        (void)heard("speakers");
        (void)log.take();
        play(3.0);
        const auto recording = heard("speakers");
        const SineFit fit = SineFit::of(recording.left, 1000.0, sampleRate);
        EXPECT_NEAR(20.0 * std::log10(fit.amplitude / 0.25), 0.0, 0.05) << "level in dB";
        EXPECT_LT(20.0 * std::log10(fit.residual / 0.25), -80.0) << "all that is not the tone";
        EXPECT_EQ(recording.right, recording.left);
        EXPECT_THAT(log.takeWith(losses), IsEmpty());
    }
};

// Capture and playback convert independently. After one of them restarts, playback may request a
// block one frame longer than the captured one.
TEST_F(EngineRatesTest, NoFrameIsMissingAfterRestartsOfPlayback) {
    hardware.setBlockFrames("speakers", {101});
    hardware.play(sine(1000.0));
    for (const double sampleRate : {44100.0, 88200.0, 96000.0}) {
        hardware.setSampleRate("speakers", sampleRate);
        start();
        (void)log.take();
        for (int round = 0; round < 20; ++round) {
            choose("hdmi");
            choose("speakers"); // before playback moves: one restart on the old device
            play(0.2 + 0.0023 * round);
        }
        EXPECT_THAT(log.takeWith(losses), IsEmpty()) << sampleRate;
        stop();
    }
}

TEST_F(EngineRatesTest, ARateThatChangesWhileRunning) {
    hardware.play(sine(1000.0));
    start();
    expectPureTone(48000.0);
    hardware.setSampleRate("speakers", 44100.0);
    play(0.2);
    EXPECT_THAT(
        log.takeWith("rate:"),
        ElementsAre("[SystemAudioTap] rate: agregat 44100 Hz | tap declarat 44100 Hz | sursa "
                    "convertorului 44100 Hz | lanț 48000 Hz → reeșantionare"));
    expectPureTone(44100.0);
    hardware.setSampleRate("speakers", 48000.0);
    expectPureTone(48000.0);
    EXPECT_EQ(state(), "running");
}

TEST_F(EngineRatesTest, ARateBeyondTheConverterIsAnErrorUntilItIsGone) {
    hardware.play(sine(1000.0));
    start();
    for (const double rate : {768000.0, 2000.0}) {
        hardware.setSampleRate("speakers", rate);
        play(0.01);
        EXPECT_EQ(state(), "The output device runs at " + std::to_string(static_cast<int>(rate)) +
                               " Hz, which cannot be converted.");
        EXPECT_FALSE(hardware.isCapturing()) << "programs are heard unprocessed";
        EXPECT_TRUE(engine->isComingBack());
        hardware.setSampleRate("speakers", 48000.0);
        play(2.1);
        EXPECT_EQ(state(), "running");
        expectPureTone(48000.0);
    }
}

TEST_F(EngineRatesTest, LossesAreReportedOnceASecondAndSinceTheLastReport) {
    hardware.play(sine(1000.0));
    hardware.setBlockFrames("speakers", {480});
    start();
    play(5.05); // out of phase with the reports, which come every second
    EXPECT_THAT(log.takeWith(losses), IsEmpty()) << "a healthy second says nothing";

    const auto loseFiveCycles = [this] {
        hardware.setBlockFrames("speakers", {8000}); // no block fits
        play(0.9);
        hardware.setBlockFrames("speakers", {480});
    };
    loseFiveCycles();
    play(0.1);
    EXPECT_THAT(
        log.takeWith(losses),
        ElementsAre("[AudioEngine] într-o secundă: captura a scris 4800 cadre, redarea a cerut "
                    "44800; tăiate 0, tăcere 40000, 5 cicluri de captură pierdute"));
    play(1.0);
    EXPECT_THAT(log.takeWith(losses), IsEmpty());
    loseFiveCycles();
    play(0.1);
    EXPECT_THAT(log.takeWith(losses), ElementsAre(::testing::HasSubstr(", 5 cicluri")));
    EXPECT_EQ(engine->losses().lostCycles, 10);
    EXPECT_EQ(engine->losses().silentFrames, 80000);
    EXPECT_EQ(engine->losses().cutFrames, 0);
    stop();
    start();
    EXPECT_EQ(engine->losses().lostCycles, 0) << "counted from the start on";

    hardware.play([](double, std::uint32_t) { return std::numeric_limits<float>::quiet_NaN(); });
    play(1.0);
    EXPECT_THAT(log.takeWith("cadre cu eșantioane nefinite"), ::testing::SizeIs(1));
    EXPECT_GT(engine->losses().nonFiniteFrames, 40000U);
}

} // namespace
} // namespace quorbel::testing
