#include "support/soundserver/Levels.h"
#include "support/soundserver/Player.h"
#include "support/soundserver/PrivateSoundServer.h"
#include "support/soundserver/Recorder.h"
#include "support/soundserver/SequenceReport.h"

#include <gtest/gtest.h>

namespace quorbel::soundserver {
namespace {

/// What the server does without us. Everything that the other tests measure is a difference to
/// this.
TEST(DirectSound, ASequenceArrivesUntouched) {
    const PrivateSoundServer server;
    GraphClient client(server);
    const Recorder recorder(client, "speakers", 20.0);
    Sequence sequence;
    const Player player(client, sequence);
    player.waitUntilRunning();
    const Recording recording = recorder.next(5.0);
    const auto report = SequenceReport::of(recording);
    EXPECT_TRUE(report.intact()) << report;
    std::cout << report << " missed " << recording.missedFrames() << "\n";
}

} // namespace
} // namespace quorbel::soundserver
