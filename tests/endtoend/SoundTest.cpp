#include "endtoend/DelayProbe.h"
#include "endtoend/LiveTest.h"
#include "support/soundserver/LateDevice.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <tuple>

namespace quorbel {
namespace {

constexpr std::int64_t limiterDelayFrames = 62;

/// A device and a quantum; what is heard there must not depend on either.
class Sound : public LiveTest, public testing::WithParamInterface<std::tuple<std::string, int>> {
  protected:
    Sound() { server.forceQuantum(quantum()); }
    static std::string device() { return std::get<0>(GetParam()); }
    static int quantum() { return std::get<1>(GetParam()); }
    static std::vector<std::string> onDevice() { return {"--device", device()}; }
};

/// When the machine stood still, in nanoseconds: a recorder missed a cycle, or sound on the other
/// device, which does not pass through us, was hurt.
std::vector<std::uint64_t> stallsIn(const Recording &heard, const Recording &control) {
    std::vector<std::uint64_t> stalls;
    for (const std::size_t frame : heard.framesAfterGaps()) {
        stalls.push_back(heard.nanosecondsOf(frame));
    }
    for (const std::size_t frame : control.framesAfterGaps()) {
        stalls.push_back(control.nanosecondsOf(frame));
    }
    for (const std::size_t frame : SequenceReport::of(control).faults) {
        stalls.push_back(control.nanosecondsOf(frame));
    }
    return stalls;
}

/// Whether everything that went wrong went wrong within 50 ms of a stall.
bool allFaultsAreIn(const std::vector<std::uint64_t> &stalls, const Recording &heard,
                    const SequenceReport &report) {
    return std::ranges::all_of(report.faults, [&](std::size_t frame) {
        const auto when = static_cast<double>(heard.nanosecondsOf(frame));
        return std::ranges::any_of(stalls, [&](std::uint64_t stall) {
            return std::abs(static_cast<double>(stall) - when) < 50e6;
        });
    });
}

INSTANTIATE_TEST_SUITE_P(OnDeviceAtQuantum, Sound,
                         testing::Combine(testing::Values("speakers", "hdmi"),
                                          testing::Values(1024, 256, 64)),
                         [](const auto &value) {
                             return std::get<0>(value.param) +
                                    std::to_string(std::get<1>(value.param));
                         });

TEST_P(Sound, NoFrameIsLostDoubledOrChangedByAFlatSetting) {
    const double seconds = slowTestsWanted() ? 300.0 : 30.0;
    const int attempts = quantum() == 64 ? 2 : 3;
    const Recorder &recorder = record(device(), attempts * seconds + 30.0);
    playSequence();
    // A virtual machine stands still now and then. What happens to sound that does not pass through
    // us, on the other device, tells such a moment from a fault of ours.
    const std::string otherDevice = device() == "hdmi" ? "speakers" : "hdmi";
    const Recorder &control = record(otherDevice, attempts * seconds + 30.0);
    Player::Options untouched("control", otherDevice);
    untouched.mayBeMoved = false;
    playSequence(untouched);

    const auto live = startLive(LiveSettings::flat(), onDevice());
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    ASSERT_TRUE(soonHears(recorder, Heard::dry)); // flat: what is heard is the sequence itself
    recorder.skip(1.5);
    std::string story;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        const std::size_t linesBefore = lossLines(*live).size();
        const std::size_t controlStart = control.frames();
        const Recording heard = recorder.next(seconds);
        const auto report = SequenceReport::of(heard);
        ASSERT_EQ(report.leadingSilence, 0U);
        ASSERT_EQ(report.frames, heard.frames());
        if (report.intact() && lossLines(*live).size() == linesBefore) {
            return;
        }
        const Recording other = control.recording(controlStart);
        const auto stalls = stallsIn(heard, other);
        story += fmt::format("{} ({} stalls of the machine)\n", testing::PrintToString(report),
                             stalls.size());
        ASSERT_FALSE(stalls.empty()) << story << testing::PrintToString(lossLines(*live));
        if (allFaultsAreIn(stalls, heard, report)) {
            std::cout << story;
            return;
        }
    }
    // Cycles of 1.3 ms are beyond some machines: the control lost frames in every attempt, too.
    if (quantum() == 64) {
        GTEST_SKIP() << "this machine stands still too often for quantum 64:\n" << story;
    }
    FAIL() << story;
}

TEST_P(Sound, TheLimiterLooksAheadAndNothingElseAddsToTheDelay) {
    const auto direct = DelayProbe(client, device(), device()).delays(20);
    const auto live = startLive(LiveSettings::flat(), onDevice());
    DelayProbe probe(client, device(), "");
    ASSERT_TRUE(soonPlaysInto("probe", {tapName(*live)}));
    ASSERT_EQ(direct.size(), 1U);
    EXPECT_EQ(probe.delays(20), std::set{*direct.begin() + limiterDelayFrames});
}

class Delay : public LiveTest {};

TEST_F(Delay, ApplicationsAreToldTheLatencyOfTheDeviceBehindUs) {
    const LateDevice wireless(client, "wireless", 9600);
    const Player &player = playSequence();
    const auto live = startLive(LiveSettings::flat(), {"--device", "wireless"});
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    // The limiter's own delay may be counted in or not: it is shorter than any picture.
    EXPECT_TRUE(comesTrue(2.0, [&] {
        const auto added = player.reportedDelay() - 9600;
        return added >= -1 && added <= limiterDelayFrames + 1;
    })) << player.reportedDelay();
}

class Level : public LiveTest {};

TEST_F(Level, ABandRaisesAToneByItsGainOnceOnBothChannels) {
    const Recorder &recorder = record("speakers");
    playTone(-20.0);
    LiveSettings boost = LiveSettings::flat();
    boost.bands[5].gainDB = 6.0;
    const auto before = recorder.nextUndisturbed(1.0);
    EXPECT_NEAR(toneLevelDB(before.left, 1000.0, 48000.0), -20.0, 0.01);

    const auto live = startLive(boost);
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    ASSERT_TRUE(comesTrue(2.0, [&] { return peak(recorder.last(0.1).left) > 0.19F; }));
    const auto after = recorder.nextUndisturbed(1.0);
    // Had the unprocessed sound been heard beside it, the level would be up to 3.5 dB off.
    EXPECT_NEAR(toneLevelDB(after.left, 1000.0, 48000.0), -14.0, 0.1);
    EXPECT_NEAR(toneLevelDB(after.right, 1000.0, 48000.0), -14.0, 0.1);
}

TEST_F(Level, TheChannelsStayApartAndInTheirPlaces) {
    const Recorder &recorder = record("speakers");
    playTone(-20.0, {}, false);
    const auto live = startLive(LiveSettings::flat(-6.0));
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    recorder.skip(0.5);
    const auto heard = recorder.nextUndisturbed(1.0);
    EXPECT_NEAR(toneLevelDB(heard.left, 1000.0, 48000.0), -26.0, 0.1);
    EXPECT_LT(toneLevelDB(heard.right, 1000.0, 48000.0), -120.0);
}

TEST_F(Level, TheUnprocessedSoundOfNewApplicationsIsNeverHeard) {
    const auto live = startLive(LiveSettings::flat(-96.0));
    const Recorder &recorder = record("speakers", 120.0);
    const auto leakedFrames = [&](const std::string &program) {
        const std::size_t start = recorder.frames();
        const auto application = playWith(program, 0.3);
        EXPECT_EQ(application->exitStatusWithin(5.0), 0) << application->errors();
        const Recording heard = recorder.recording(start);
        return std::ranges::count_if(heard.left, [](float sample) { return sample > 0.01F; });
    };
    for (int run = 0; run < 10; ++run) {
        EXPECT_EQ(leakedFrames("pw-play"), 0);
    }
    // A PulseAudio client must be linked to a real device for a moment before it says it can play.
    int leaks = 0;
    for (int run = 0; run < 30; ++run) {
        const auto frames = leakedFrames("paplay");
        leaks += frames > 0 ? 1 : 0;
        EXPECT_LE(frames, 1024);
    }
    EXPECT_LE(leaks, 2);
}

class Load : public LiveTest {};

TEST_F(Load, StartsQuicklyAndRunsOnLittle) {
    server.forceQuantum(1024);
    const Recorder &recorder = record("speakers");
    playSequence();
    ASSERT_TRUE(soonHears(recorder, Heard::dry));
    LiveSettings settings = twelveDBLower();
    for (auto &band : settings.bands) {
        band.gainDB = 0.5;
    }
    const auto live = startLive(settings);

    const auto firstProcessed = [&](const Recording &recording) {
        std::size_t frame = 0;
        while (frame < recording.frames() &&
               !(recording.left[frame] > 0.05F && recording.left[frame] < 0.24F)) {
            ++frame;
        }
        return frame;
    };
    Recording start;
    ASSERT_TRUE(comesTrue(3.0, [&] {
        start = recorder.last(3.0);
        return firstProcessed(start) < start.frames();
    }));
    const auto startNanoseconds = static_cast<double>(start.nanosecondsOf(firstProcessed(start)) -
                                                      live->startedNanoseconds());
    RecordProperty("milliseconds_to_first_sound", static_cast<int>(startNanoseconds * 1e-6));
    EXPECT_LT(startNanoseconds * 1e-9, 0.15);

    // What else the machine does only adds to it, through cold caches: the least of some is ours.
    recorder.skip(1.0);
    const double seconds = slowTestsWanted() ? 20.0 : 7.0;
    double load = 1.0;
    for (int attempt = 0; attempt < 4; ++attempt) {
        const double before = live->processorSeconds();
        recorder.skip(seconds);
        load = std::min(load, (live->processorSeconds() - before) / seconds);
    }
    std::cout << "first sound after " << startNanoseconds * 1e-6 << " ms, load " << load * 100
              << " % of a core, memory " << live->memoryMiB() << " MiB\n";
    EXPECT_LT(live->memoryMiB(), 25.0);
    // The goal is 0.6 %. Two otherwise idle virtual cores took 0.47 to 0.66 % from one minute to
    // the next, a tenth of it for the chain's arithmetic: the bound leaves room for that and
    // catches a load that has grown.
    EXPECT_LT(load, 0.012);
}

} // namespace
} // namespace quorbel
