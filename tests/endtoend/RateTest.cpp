#include "endtoend/DelayProbe.h"
#include "endtoend/LiveTest.h"

#include <algorithm>

namespace quorbel {
namespace {

class Graph44100 : public LiveTest {
  protected:
    Graph44100() : LiveTest({44100, {{"speakers", "Speakers"}, {"hdmi", "HDMI"}}}) {}
};

TEST_F(Graph44100, PitchAndLevelAreRightAndNothingIsLost) {
    const double seconds = slowTestsWanted() ? 60.0 : 10.0;
    const Recorder &recorder = record("speakers", 6 * seconds);
    playTone(-20.0, {"player", "", 44100});
    LiveSettings boost = LiveSettings::flat();
    boost.bands[5].gainDB = 6.0;
    const auto live = startLive(boost);
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    ASSERT_TRUE(comesTrue(2.0, [&] { return peak(recorder.last(0.1).left) > 0.19F; }));
    recorder.skip(1.5);
    const std::size_t linesBefore = lossLines(*live).size();
    const Recording recording = recorder.nextUndisturbed(seconds);
    for (const auto *channel : {&recording.left, &recording.right}) {
        EXPECT_NEAR(toneLevelDB(*channel, 1000.0, 44100.0), -14.0, 0.1);
        // What is not the tone: a frame lost, doubled or silent anywhere would stand out by far.
        EXPECT_LT(residueDB(*channel, 1000.0, 44100.0), -80.0);
    }
    EXPECT_EQ(lossLines(*live).size(), linesBefore) << lossLines(*live).back();
    EXPECT_TRUE(live->hasLogged("→ reeșantionare"));
    EXPECT_TRUE(live->hasLogged("[AudioEngine] ATENȚIE: dispozitivul rulează la 44100"));
}

class Graph48000 : public LiveTest {};

TEST_F(Graph48000, FollowsTheGraphToAnotherRateAndBack) {
    const Recorder &recorder = record("speakers");
    playTone(-20.0);
    const auto live = startLive(LiveSettings::flat(-6.0));
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    const auto steady = [&] {
        return std::abs(toneLevelDB(recorder.last(0.2).left, 1000.0, 48000.0) + 26.0) < 0.05;
    };
    ASSERT_TRUE(comesTrue(3.0, steady));
    for (const int rate : {44100, 48000}) {
        server.forceSampleRate(rate);
        recorder.skip(1.0);
        ASSERT_TRUE(comesTrue(3.0, steady)) << rate;
        recorder.skip(1.5);
        const std::size_t linesBefore = lossLines(*live).size();
        const Recording recording = recorder.nextUndisturbed(3.0);
        EXPECT_LT(residueDB(recording.left, 1000.0, 48000.0), -70.0) << rate;
        EXPECT_EQ(lossLines(*live).size(), linesBefore) << lossLines(*live).back();
    }
}

TEST_F(Graph48000, TheDelayIsTheSameAfterAnotherRate) {
    const auto direct = DelayProbe(client, "speakers", "").delays(10);
    ASSERT_EQ(direct.size(), 1U);
    const std::set<std::int64_t> processed{*direct.begin() + limiterDelayFrames};
    const auto live = startLive(LiveSettings::flat());
    playTone(-60.0); // so that cycles of sound run on from rate to rate
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    EXPECT_EQ(DelayProbe(client, "speakers", "").delays(10), processed);
    const Recorder &recorder = record("speakers");
    for (const int rate : {44100, 48000}) {
        server.forceSampleRate(rate);
        recorder.skip(1.0);
    }
    EXPECT_EQ(DelayProbe(client, "speakers", "").delays(10), processed);
}

} // namespace
} // namespace quorbel
