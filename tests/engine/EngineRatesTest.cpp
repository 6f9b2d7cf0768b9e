// Devices at other rates and with odd cycles: pitch, level and every frame are kept.

#include "engine/EngineFixture.h"

#include <cmath>
#include <utility>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char *losses = "într-o secundă";

class EngineRatesTest : public EngineTest {
  protected:
    /// After the first second, in which capture and playback settle: a pure tone of the right pitch
    /// and level at the device, and not one frame lost.
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

TEST_F(EngineRatesTest, At44100And96000) {
    hardware.play(sine(1000.0));
    for (const auto &[rate, blockFrames] : {std::pair{96000.0, 1024U}, {44100.0, 512U}}) {
        hardware.setSampleRate("speakers", rate);
        hardware.setBlockFrames("speakers", {blockFrames});
        (void)log.take();
        start();
        const auto lines = log.take();
        expectPureTone(rate);
        stop();
        if (rate == 44100.0) {
            EXPECT_THAT(
                lines,
                ElementsAre(
                    "[AudioEngine] playback: output='Speakers' 44100 Hz, 2 canale",
                    "[AudioEngine] ATENȚIE: dispozitivul rulează la 44100 Hz. Conversia cade pe "
                    "mixerul principal; orice dezechilibru se va vedea în contoarele tamponului "
                    "de mai jos.",
                    "[SystemAudioTap] rate: agregat 44100 Hz | tap declarat 44100 Hz | sursa "
                    "convertorului 44100 Hz | lanț 48000 Hz → reeșantionare",
                    ::testing::StartsWith("[SystemAudioTap] running: tap=")));
        }
    }
}

// Capture and playback convert each on its own. After a restart of one of
// them, playback may ask for a block that is a frame longer than the captured one.
TEST_F(EngineRatesTest, NoFrameIsMissingAfterRestartsOfPlayback) {
    hardware.setBlockFrames("speakers", {101});
    hardware.play(sine(1000.0));
    for (const double sampleRate : {44100.0, 88200.0, 96000.0}) {
        hardware.setSampleRate("speakers", sampleRate);
        start();
        (void)log.take();
        for (int round = 0; round < 20; ++round) {
            choose("hdmi");
            choose("speakers"); // before playback has moved: one restart where it was
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

TEST_F(EngineRatesTest, CyclesOfAnyLength) {
    hardware.play(countedFrames());
    start();
    hardware.setBlockFrames("speakers", {1, 7936, 64, 3, 8192, 1023});
    // A cycle beyond the longest that fits, 7936 frames, is lost as a whole and counted; the others
    // are whole and in order.
    (void)heard("speakers");
    (void)log.take();
    play(1.0);
    const auto recording = heard("speakers");
    std::size_t silent = 0;
    float last = 0.0F;
    for (const float frame : recording.left) {
        if (frame == 0.0F) {
            ++silent;
            continue;
        }
        ASSERT_GT(frame, last);
        last = frame;
    }
    EXPECT_EQ(silent % 8192, 0U);
    EXPECT_GT(silent, 0U);

    (void)log.take();
    hardware.setBlockFrames("speakers", {1, 7936, 64});
    play(2.0); // the second in which it changed, and one more
    (void)log.take();
    play(10.0);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(EngineRatesTest, LossesAreReportedOnceASecondAndSinceTheLastReport) {
    hardware.play(sine(1000.0));
    hardware.setBlockFrames("speakers", {480});
    start();
    play(5.05); // out of step with the reports, which come on the second
    EXPECT_THAT(log.takeWith(losses), IsEmpty()) << "a healthy second says nothing";

    const auto loseFiveCycles = [this] {
        hardware.setBlockFrames("speakers", {8000}); // none of them fits
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
}

} // namespace
} // namespace quorbel::testing
