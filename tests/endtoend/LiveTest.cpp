#include "endtoend/LiveTest.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>

namespace quorbel {

std::ostream &operator<<(std::ostream &out, Heard heard) {
    constexpr const char *names[] = {"silence", "the dry sound", "the processed sound",
                                     "something else"};
    return out << names[static_cast<int>(heard)];
}

Heard heardIn(const Recording &recording) {
    constexpr float gain = 0.251189F; // -12 dB
    constexpr float highest = Sequence::first + Sequence::step * Sequence::length;
    const auto allWithin = [&](float low, float high) {
        return recording.frames() > 0 && std::ranges::all_of(recording.left, [=](float sample) {
                   return sample >= low && sample <= high;
               });
    };
    if (allWithin(0.0F, 0.0F)) {
        return Heard::silence;
    }
    if (allWithin(Sequence::first, highest)) {
        return Heard::dry;
    }
    return allWithin(Sequence::first * gain * 0.99F, highest * gain * 1.01F) ? Heard::processed
                                                                             : Heard::other;
}

bool slowTestsWanted() { return std::getenv("QUORBEL_SLOW_TESTS") != nullptr; }

Player &LiveTest::playSequence(const Player::Options &options) {
    sounds_.push_back(std::make_unique<Sequence>());
    players_.push_back(std::make_unique<Player>(client, *sounds_.back(), options));
    players_.back()->waitUntilRunning();
    return *players_.back();
}

Player &LiveTest::playTone(double levelDB, const Player::Options &options, bool onRight) {
    sounds_.push_back(std::make_unique<Tone>(1000.0, levelDB, options.sampleRate, onRight));
    players_.push_back(std::make_unique<Player>(client, *sounds_.back(), options));
    players_.back()->waitUntilRunning();
    return *players_.back();
}

std::unique_ptr<ChildProcess> LiveTest::playWith(const std::string &program, double seconds) {
    const auto file = server.folder() / ("sequence-" + std::to_string(seconds) + ".wav");
    if (!exists(file)) {
        Sequence sequence;
        writeSoundFile(file, rendered(sequence, seconds));
    }
    return server.start({program, file.string()});
}

Recorder &LiveTest::record(const std::string &device, double maxSeconds) {
    recorders_.push_back(std::make_unique<Recorder>(client, device, maxSeconds, sampleRate));
    return *recorders_.back();
}

std::unique_ptr<LiveProcess> LiveTest::startLive(const LiveSettings &settings,
                                                 std::vector<std::string> arguments) {
    auto live = std::make_unique<LiveProcess>(server, settings, std::move(arguments));
    live->waitUntilRunning();
    return live;
}

void LiveTest::stopLive(std::unique_ptr<LiveProcess> &live) {
    EXPECT_EQ(live->process().stop(5.0, SIGINT), 0) << live->process().errors();
    live.reset();
}

testing::AssertionResult LiveTest::soonHears(const Recorder &recorder, Heard wanted,
                                             double deadlineSeconds, double windowSeconds) {
    // What is heard must have begun after this call: sound of before would prove nothing.
    const std::size_t start = recorder.frames();
    const bool came = comesTrue(deadlineSeconds + windowSeconds, [&] {
        const Recording window = recorder.last(windowSeconds);
        return recorder.frames() - start >= window.frames() && heardIn(window) == wanted;
    });
    if (came) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << "the device plays " << heardIn(recorder.last(windowSeconds)) << " instead of "
           << wanted;
}

testing::AssertionResult LiveTest::soonPlaysInto(const std::string &application,
                                                 const std::vector<std::string> &targets,
                                                 double deadlineSeconds) const {
    std::vector<std::string> seen;
    if (comesTrue(deadlineSeconds, [&] {
            seen = server.state().targetsOf(application);
            return seen == targets;
        })) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << application << " plays into " << testing::PrintToString(seen) << " instead of "
           << testing::PrintToString(targets);
}

std::vector<std::string> LiveTest::lossLines(const LiveProcess &live) {
    std::vector<std::string> lines = live.logLines();
    std::erase_if(lines, [](const std::string &line) {
        return line.find("într-o secundă") == std::string::npos;
    });
    return lines;
}

bool remembersTarget(const StoredStreams &stored, const std::string &application,
                     const std::string &device) {
    return std::ranges::any_of(stored, [&](const auto &entry) {
        return entry.first.ends_with(":" + application + ":target") && entry.second == device;
    });
}

std::string tapName(LiveProcess &live) {
    return "quorbel.tap." + std::to_string(live.process().pid());
}

} // namespace quorbel
