#include "engine/SystemAudioTap.h"

#include "engine/AudioRingBuffer.h"
#include "engine/CapturedLog.h"
#include "engine/ChainFormat.h"
#include "platform/hardware/simulated/SimulatedHardware.h"
#include "platform/threads/ManualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <unistd.h>
#include <vector>

namespace quorbel::testing {
namespace {

using Operation = SimulatedHardware::Operation;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class SystemAudioTapTest : public ::testing::Test {
  protected:
    SystemAudioTapTest() { hardware.addDevice({.uid = "speakers", .blockFrames = {480}}); }

    [[nodiscard]] AudioRingBuffer::Pierderi passed(double seconds) {
        (void)ring.preiaPierderi();
        clock.advance(seconds);
        return ring.preiaPierderi();
    }

    CapturedLog log;
    ManualClock clock;
    SimulatedHardware hardware{clock};
    AudioRingBuffer ring{48000};
    SystemAudioTap tap{hardware};
};

/// Makes the hardware report that an application plays.
class SilentPlayback final : public RenderClient {
  public:
    explicit SilentPlayback(SimulatedHardware &hardware) : output_(hardware.makeOutput()) {
        AudioObjectID device = 0;
        hardware.defaultOutputDevice(device);
        output_->setDevice(device);
        output_->start(*this);
    }
    void renderFormatChanged(const StreamFormat &) override {}
    void renderCycle(const AudioBufferList &, std::uint32_t) noexcept override {}

  private:
    std::unique_ptr<HardwareOutput> output_;
};

TEST_F(SystemAudioTapTest, EmptiesTheRingAfterAPauseOfMoreThanAQuarterSecond) {
    const SilentPlayback playback(hardware);
    hardware.play([](double, std::uint32_t) { return 0.5F; });
    tap.activate(ring, chainFormat);
    const auto waiting = [&] {
        std::vector<float> left(48000);
        ring.read(AudioBufferList(left.data(), left.data()), 48000);
        return std::ranges::count(left, 0.5F);
    };
    const auto sleep = [&](double seconds) {
        hardware.setAsleep(true);
        clock.advance(seconds);
        hardware.setAsleep(false);
    };
    clock.advance(0.1);
    sleep(0.2);
    clock.advance(0.1);
    EXPECT_NEAR(waiting(), 2 * 4800, 2 * 480) << "a hiccup loses nothing";

    clock.advance(0.1);
    sleep(0.3);
    clock.advance(0.1);
    EXPECT_NEAR(waiting(), 4800, 480)
        << "what was captured before the sleep is not played after it";
}

TEST(SystemAudioTapFormat, IsTheTapsUnlessTheClockDiffers) {
    const StreamFormat tap{.sampleRate = 48000.0, .channelCount = 2};
    EXPECT_EQ(SystemAudioTap::formatSursa(tap, std::nullopt), tap);
    EXPECT_EQ(SystemAudioTap::formatSursa(tap, 48000.5), tap);
    EXPECT_EQ(SystemAudioTap::formatSursa(tap, 47999.0),
              (StreamFormat{.sampleRate = 47999.0, .channelCount = 2}));
}

TEST_F(SystemAudioTapTest, TheRateOfTheCyclesReplacesTheAnnouncedOne) {
    const SilentPlayback playback(hardware);
    hardware.setSampleRate("speakers", 96000.0);
    hardware.setDeclaredTapRate(48000.0);
    hardware.operations().fail(Operation::nominalSampleRate, -1);
    tap.activate(ring, chainFormat);
    tap.logFormatChange();
    const auto lines = log.takeWith("rate:");
    ASSERT_THAT(lines, SizeIs(2)) << "as read, and as announced with the first cycle";
    EXPECT_THAT(lines[0], EndsWith("→ copiere"));
    EXPECT_THAT(lines[1], EndsWith("sursa convertorului 96000 Hz | lanț 48000 Hz → reeșantionare"));
    (void)passed(1.0);
    EXPECT_NEAR(static_cast<double>(passed(10.0).scrise), 480000.0, 300.0);
}

} // namespace
} // namespace quorbel::testing
