#include "endtoend/DelayProbe.h"
#include "endtoend/LiveTest.h"
#include "support/soundserver/LateDevice.h"

namespace quorbel {
namespace {

/// What the server does without us: every other test measures a difference to this.
class DirectSound : public LiveTest {};

TEST_F(DirectSound, ASequenceArrivesUntouchedOnTheDefaultDeviceAlone) {
    const Recorder &speakers = record("speakers");
    const Recorder &hdmi = record("hdmi");
    playSequence();
    ASSERT_TRUE(soonHears(speakers, Heard::dry));
    const auto report = SequenceReport::of(speakers.nextUndisturbed(2.0));
    EXPECT_TRUE(report.intact()) << report;
    EXPECT_EQ(heardIn(hdmi.last(1.0)), Heard::silence);
}

TEST_F(DirectSound, ApplicationsOfBothInterfacesAreHeard) {
    const Recorder &speakers = record("speakers");
    for (const char *program : {"pw-play", "paplay"}) {
        const auto application = playWith(program, 1.0);
        EXPECT_TRUE(soonHears(speakers, Heard::dry)) << program;
        EXPECT_EQ(application->exitStatusWithin(5.0), 0) << program;
    }
}

TEST_F(DirectSound, TheDelayIsOneCycleAndTheSameForEveryImpulse) {
    for (const int quantum : {1024, 256, 64}) {
        server.forceQuantum(quantum);
        EXPECT_EQ(DelayProbe(client, "speakers", "").delays(20), std::set{std::int64_t{quantum}});
    }
}

TEST_F(DirectSound, ApplicationsAreToldTheLatencyOfTheirDevice) {
    const LateDevice wireless(client, "wireless", 9600);
    const Player &player = playSequence({"player", "wireless"});
    EXPECT_TRUE(comesTrue(2.0, [&] { return player.reportedDelay() == 9600; }))
        << player.reportedDelay();
}

} // namespace
} // namespace quorbel
