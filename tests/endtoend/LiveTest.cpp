#include "endtoend/LiveTest.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iterator>

namespace quorbel {

std::ostream &operator<<(std::ostream &out, Heard heard) {
    constexpr const char *names[] = {"silence", "the dry sound", "the processed sound",
                                     "something else"};
    return out << names[static_cast<int>(heard)];
}

Heard heardAs(float sample) {
    constexpr float gain = 0.251189F; // -12 dB
    constexpr float highest = Sequence::first + Sequence::step * Sequence::length;
    if (sample == 0.0F)
        return Heard::silence;
    if (sample >= Sequence::first && sample <= highest)
        return Heard::dry;
    const bool isProcessed =
        sample >= Sequence::first * gain * 0.99F && sample <= highest * gain * 1.01F;
    return isProcessed ? Heard::processed : Heard::other;
}

namespace {

/// Entries of applications and any target of ours; our other entries hold only a volume of 1.
StoredStreams applicationsOf(StoredStreams stored) {
    std::erase_if(stored, [](const auto &entry) {
        return entry.first.find("Ostrafine") != std::string::npos &&
               !entry.first.ends_with(":target");
    });
    return stored;
}

/// The entries of `one` that `other` lacks, as text.
std::string differenceOf(const SessionMemory &one, const SessionMemory &other) {
    Metadata routing;
    std::ranges::set_difference(one.routing, other.routing, std::inserter(routing, routing.end()));
    StoredStreams stored;
    std::ranges::set_difference(one.stored, other.stored, std::inserter(stored, stored.end()));
    return (one.defaultDevice != other.defaultDevice ? "default " + one.defaultDevice + ", " : "") +
           "routed " + testing::PrintToString(routing) + ", stored " +
           testing::PrintToString(stored);
}

} // namespace

Heard heardIn(const Recording &recording) {
    if (recording.frames() == 0)
        return Heard::other;
    const Heard first = heardAs(recording.left.front());
    const bool isAllOfOneKind =
        std::ranges::all_of(recording.left, [=](float sample) { return heardAs(sample) == first; });
    return isAllOfOneKind ? first : Heard::other;
}

double longestSeconds(const Recording &recording, Heard kind) {
    std::size_t longest = 0;
    std::size_t current = 0;
    for (const float sample : recording.left) {
        current = heardAs(sample) == kind ? current + 1 : 0;
        longest = std::max(longest, current);
    }
    return static_cast<double>(longest) / 48000.0;
}

bool slowTestsWanted() { return std::getenv("QUORBEL_SLOW_TESTS") != nullptr; }

Player &LiveTest::playSequence(const Player::Options &options) {
    return play(std::make_unique<Sequence>(), options);
}

Player &LiveTest::playTone(double levelDB) {
    return play(std::make_unique<Tone>(1000.0, levelDB, 48000.0), {});
}

Player &LiveTest::play(std::unique_ptr<Sound> sound, const Player::Options &options) {
    sounds_.push_back(std::move(sound));
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
    // Ignores sound from before this call, which would prove nothing.
    const std::size_t start = recorder.frames();
    const bool came = comesTrue(deadlineSeconds + windowSeconds, [&] {
        const Recording window = recorder.last(windowSeconds);
        return recorder.frames() - start >= window.frames() && heardIn(window) == wanted;
    });
    if (came)
        return testing::AssertionSuccess();
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
        }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << application << " plays into " << testing::PrintToString(seen) << " instead of "
           << testing::PrintToString(targets);
}

SessionMemory LiveTest::settledMemory() const {
    SessionMemory memory;
    auto lastChange = SteadyClock::now();
    waitFor("the session manager's memory rests", 20.0, [&] {
        const ServerState state = server.state();
        SessionMemory now = {state.routing(), state.defaultName("default.audio.sink"),
                             applicationsOf(server.storedStreams())};
        if (now != memory) {
            memory = std::move(now);
            lastChange = SteadyClock::now();
        }
        return SteadyClock::now() - lastChange > std::chrono::milliseconds(1500);
    });
    return memory;
}

testing::AssertionResult LiveTest::soonIsAsBefore(const SessionMemory &before) const {
    const SessionMemory now = settledMemory();
    if (now == before && ourNodes().empty())
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "gone: " << differenceOf(before, now) << "\nnew: " << differenceOf(now, before)
           << "\nour nodes: " << testing::PrintToString(ourNodes());
}

std::vector<std::string> LiveTest::ourNodes() const {
    std::vector<std::string> names;
    for (const Node &node : server.state().nodes)
        if (node.name().starts_with("quorbel."))
            names.push_back(node.name());
    return names;
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

bool saysItRuns(const LiveProcess &live) {
    const auto count = [lines = live.logLines()](const char *part) {
        return std::ranges::count_if(
            lines, [=](const std::string &line) { return line.find(part) != std::string::npos; });
    };
    return count("procesarea s-a oprit") == count("procesarea a revenit");
}

std::string saidDevice(const LiveProcess &live) {
    std::string device;
    const std::string before = "playback: output='";
    for (const std::string &line : live.logLines()) {
        if (const auto found = line.find(before); found != std::string::npos) {
            const auto start = found + before.size();
            device = line.substr(start, line.find('\'', start) - start);
        }
    }
    return device;
}

std::string tapName(LiveProcess &live) {
    return "quorbel.tap." + std::to_string(live.process().pid());
}

} // namespace quorbel
