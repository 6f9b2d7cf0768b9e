#include "platform/hardware/AudioHardwareContract.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <mutex>
#include <numbers>
#include <set>
#include <unistd.h>
#include <utility>
#include <vector>

namespace quorbel::testing {
namespace {

constexpr AudioObjectID noSuchObject = std::numeric_limits<AudioObjectID>::max() - 7;

/// Log of the cycles of all threads, in order.
class Score {
  public:
    struct Step {
        char who = '?'; // c capture, p playback
        std::uint32_t frames = 0;
        bool willPlay = false;
    };

    void note(const Step &step) noexcept {
        const std::lock_guard guard(mutex_);
        if (count_ < steps_.size())
            steps_[count_++] = step;
    }
    [[nodiscard]] std::vector<Step> take() {
        const std::lock_guard guard(mutex_);
        return {steps_.begin(),
                steps_.begin() + static_cast<std::ptrdiff_t>(std::exchange(count_, 0))};
    }

  private:
    std::mutex mutex_;
    std::vector<Step> steps_{4096};
    std::size_t count_ = 0;
};

class Listener : public IOClient {
  public:
    explicit Listener(Score *score = nullptr) : score_(score) {}

    void ioFormatChanged(const StreamFormat &format) override { rate_ = format.sampleRate; }
    void ioCycle(const IOCycle &cycle) noexcept override {
        if (cycle.frames == 0 || cycle.format.sampleRate != rate_ || cycle.format.channelCount != 2)
            sound_ = false;
        float peak = 0.0F;
        for (std::uint32_t channel = 0; channel < cycle.input.bufferCount; ++channel)
            for (std::uint32_t frame = 0; frame < cycle.frames; ++frame)
                peak = std::max(peak, std::abs(cycle.input.data[channel][frame]));
        peak_ = std::max(peak_.load(), peak);
        ++cycles_;
        cyclesToPlay_ += cycle.willPlay ? 1 : 0;
        if (score_ != nullptr)
            score_->note({.who = 'c', .frames = cycle.frames, .willPlay = cycle.willPlay});
    }

    std::atomic<double> rate_{0.0};
    std::atomic<bool> sound_{true}; ///< true if all cycles had the announced format
    std::atomic<float> peak_{0.0F};
    std::atomic<int> cycles_{0};
    std::atomic<int> cyclesToPlay_{0};

  private:
    Score *score_;
};

/// Plays a tone of 500 Hz.
class Player : public RenderClient {
  public:
    explicit Player(Score *score = nullptr, double amplitude = 0.5)
        : score_(score), amplitude_(amplitude) {}

    void renderFormatChanged(const StreamFormat &format) override { rate_ = format.sampleRate; }
    void renderCycle(const AudioBufferList &output, std::uint32_t frames) noexcept override {
        if (frames == 0 || rate_ <= 0.0 || output.bufferCount == 0)
            sound_ = false;
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            const auto sample =
                static_cast<float>(amplitude_ * std::sin(2.0 * std::numbers::pi * 500.0 *
                                                         static_cast<double>(played_) / rate_));
            ++played_;
            for (std::uint32_t channel = 0; channel < output.bufferCount; ++channel)
                output.data[channel][frame] = sample;
        }
        ++cycles_;
        if (score_ != nullptr)
            score_->note({.who = 'p', .frames = frames, .willPlay = true});
    }

    std::atomic<double> rate_{0.0};
    std::atomic<bool> sound_{true};
    std::atomic<int> cycles_{0};

  private:
    Score *score_;
    double amplitude_;
    std::uint64_t played_ = 0;
};

/// Complete capture, set up and torn down as the program does.
class Capture {
  public:
    /// Accepts failing steps of the teardown if `mayLoseServer`.
    Capture(AudioHardware &hardware, IOClient &client, bool mayLoseServer = false)
        : hardware_(hardware), mayLoseServer_(mayLoseServer) {
        AudioObjectID process = 0;
        AudioObjectID again = 0;
        EXPECT_EQ(hardware.processObject(::getpid(), process), statusOK);
        EXPECT_EQ(hardware.processObject(::getpid(), again), statusOK);
        EXPECT_NE(process, 0U);
        EXPECT_EQ(process, again);
        EXPECT_EQ(hardware.createProcessTap(
                      {.excludedProcesses = {process},
                       .name = "Contract Tap",
                       .uuid = "6E1B2C3D-0000-4000-8000-000000000001",
                       .muteBehavior = TapDescription::MuteBehavior::mutedWhenTapped,
                       .isPrivate = true},
                      tap_),
                  statusOK);
        AudioObjectID main = 0;
        EXPECT_EQ(hardware.defaultOutputDevice(main), statusOK);
        const auto uid = hardware.deviceUID(main).value_or("");
        EXPECT_EQ(hardware.createAggregateDevice(
                      {.name = "Contract Capture",
                       .uid = "com.quorbel.aggregate.contract",
                       .mainDeviceUID = uid,
                       .isPrivate = true,
                       .isStacked = false,
                       .tapAutoStart = true,
                       .subdeviceUIDs = {uid},
                       .taps = {{.uuid = "6E1B2C3D-0000-4000-8000-000000000001",
                                 .driftCompensation = true}}},
                      aggregate_),
                  statusOK);
        EXPECT_EQ(hardware.createIOProc(aggregate_, client, proc_), statusOK);
        EXPECT_NE(tap_, 0U);
        EXPECT_NE(aggregate_, 0U);
        EXPECT_NE(proc_, 0U);
    }
    ~Capture() {
        hardware_.stopDevice(aggregate_, proc_);
        const bool unmade = hardware_.destroyIOProc(aggregate_, proc_) == statusOK &&
                            hardware_.destroyAggregateDevice(aggregate_) == statusOK &&
                            hardware_.destroyProcessTap(tap_) == statusOK;
        EXPECT_TRUE(unmade || mayLoseServer_);
    }
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;

    void start() { EXPECT_EQ(hardware_.startDevice(aggregate_, proc_), statusOK); }
    void stop() { EXPECT_EQ(hardware_.stopDevice(aggregate_, proc_), statusOK); }
    [[nodiscard]] AudioObjectID tap() const { return tap_; }
    [[nodiscard]] AudioObjectID aggregate() const { return aggregate_; }

  private:
    AudioHardware &hardware_;
    bool mayLoseServer_;
    AudioObjectID tap_ = 0;
    AudioObjectID aggregate_ = 0;
    IOProcID proc_ = 0;
};

/// Capture and playback, both started by the constructor.
struct Processing {
    Processing(AudioHardware &hardware, AudioObjectID device, Score *score = nullptr,
               bool mayLoseServer = false)
        : listener(score), player(score), capture(hardware, listener, mayLoseServer),
          output(hardware.makeOutput()) {
        EXPECT_EQ(output->setDevice(device), statusOK);
        capture.start();
        EXPECT_EQ(output->start(player), statusOK);
    }

    Listener listener;
    Player player;
    Capture capture;
    std::unique_ptr<HardwareOutput> output;
};

class News : public HardwareListener {
  public:
    void deviceListChanged() override { ++lists_; }
    void defaultOutputChanged() override { ++defaults_; }
    void hardwareLost(Status status) override { lost_ = status; }

    std::atomic<int> lists_{0};
    std::atomic<int> defaults_{0};
    std::atomic<Status> lost_{statusOK};
};

} // namespace

AudioObjectID AudioHardwareContract::device(const std::string &uid) {
    std::vector<AudioObjectID> devices;
    EXPECT_EQ(hardware.deviceList(devices), statusOK);
    for (const AudioObjectID id : devices)
        if (hardware.deviceUID(id) == uid)
            return id;
    return 0;
}

TEST_P(AudioHardwareContract, ListsItsDevices) {
    std::vector<AudioObjectID> devices{noSuchObject};
    ASSERT_EQ(hardware.deviceList(devices), statusOK);
    EXPECT_EQ(std::ranges::count(devices, noSuchObject), 0) << "the list replaces what was there";
    std::set<std::string> uids;
    for (const AudioObjectID id : devices) {
        EXPECT_NE(id, 0U);
        const auto uid = hardware.deviceUID(id);
        ASSERT_TRUE(uid);
        EXPECT_TRUE(uids.insert(*uid).second) << *uid << " is listed twice";
    }
    for (const char *uid : {"speakers", "hdmi"}) {
        const AudioObjectID id = device(uid);
        ASSERT_NE(id, 0U) << uid;
        EXPECT_TRUE(hardware.deviceName(id));
        std::vector<std::uint32_t> channels;
        ASSERT_EQ(hardware.streamChannelCounts(id, Scope::output, channels), statusOK);
        ASSERT_FALSE(channels.empty());
        EXPECT_EQ(channels.front(), 2U);
    }
    AudioObjectID main = 0;
    ASSERT_EQ(hardware.defaultOutputDevice(main), statusOK);
    EXPECT_EQ(main, device("speakers"));
}

TEST_P(AudioHardwareContract, RefusesUnknownObjects) {
    EXPECT_EQ(hardware.deviceUID(noSuchObject), std::nullopt);
    EXPECT_EQ(hardware.deviceName(noSuchObject), std::nullopt);
    EXPECT_EQ(hardware.deviceManufacturer(noSuchObject), std::nullopt);
    std::vector<std::uint32_t> channels{7};
    EXPECT_NE(hardware.streamChannelCounts(noSuchObject, Scope::output, channels), statusOK);
    EXPECT_EQ(channels, std::vector<std::uint32_t>{7}) << "set on success only";
    double rate = -1.0;
    EXPECT_NE(hardware.nominalSampleRate(noSuchObject, rate), statusOK);
    EXPECT_EQ(rate, -1.0);
    StreamFormat format;
    EXPECT_NE(hardware.tapFormat(noSuchObject, format), statusOK);
    EXPECT_NE(hardware.destroyProcessTap(noSuchObject), statusOK);
    EXPECT_NE(hardware.destroyAggregateDevice(noSuchObject), statusOK);
    Listener listener;
    IOProcID proc = 0;
    EXPECT_NE(hardware.createIOProc(noSuchObject, listener, proc), statusOK);
    EXPECT_EQ(proc, 0U);
    EXPECT_NE(hardware.startDevice(noSuchObject, 1), statusOK);
    EXPECT_NE(hardware.stopDevice(noSuchObject, 1), statusOK);
    EXPECT_NE(hardware.destroyIOProc(noSuchObject, 1), statusOK);

    const auto output = hardware.makeOutput();
    ASSERT_NE(output, nullptr);
    EXPECT_NE(output->setDevice(noSuchObject), statusOK);
    EXPECT_FALSE(output->nativeFormat().isValid());
    Player player;
    EXPECT_NE(output->start(player), statusOK) << "it is bound to nothing";
    output->stop();
    EXPECT_EQ(player.cycles_, 0);
}

TEST_P(AudioHardwareContract, CapturesAndMutesApplications) {
    world().playTone();
    EXPECT_NEAR(world().listen("speakers"), 0.25F, 0.02F) << "before";
    {
        Listener listener;
        Capture capture(hardware, listener);
        StreamFormat format;
        ASSERT_EQ(hardware.tapFormat(capture.tap(), format), statusOK);
        EXPECT_TRUE(format.isValid());
        double rate = 0.0;
        ASSERT_EQ(hardware.nominalSampleRate(capture.aggregate(), rate), statusOK);
        EXPECT_GT(rate, 0.0);

        // Applications are muted only while an output plays.
        Player silence(nullptr, 0.0);
        const auto output = hardware.makeOutput();
        ASSERT_EQ(output->setDevice(device("speakers")), statusOK);
        capture.start();
        ASSERT_EQ(output->start(silence), statusOK);
        ASSERT_TRUE(world().waitUntil([&] { return listener.peak_ > 0.2F; }));
        EXPECT_NEAR(listener.peak_, 0.25F, 0.02F);
        EXPECT_EQ(listener.rate_, rate);
        EXPECT_TRUE(world().waitUntil([&] { return world().listen("speakers") == 0.0F; }))
            << "heard only through what we play";

        capture.stop();
        const int cycles = listener.cycles_;
        world().letCyclesPass();
        EXPECT_EQ(listener.cycles_, cycles) << "no cycle after the stop";
        EXPECT_TRUE(listener.sound_);
        EXPECT_TRUE(world().waitUntil([&] { return world().listen("speakers") > 0.2F; }));
    }
    EXPECT_TRUE(world().waitUntil([&] { return world().listen("speakers") > 0.2F; }));
    EXPECT_NEAR(world().listen("speakers"), 0.25F, 0.02F) << "after";
}

TEST_P(AudioHardwareContract, PlaysOnTheDeviceThatItIsBoundTo) {
    world().playTone();
    Listener listener;
    Capture capture(hardware, listener);
    capture.start();
    const auto output = hardware.makeOutput();
    ASSERT_EQ(output->setDevice(device("hdmi")), statusOK);
    const StreamFormat native = output->nativeFormat();
    EXPECT_GT(native.sampleRate, 0.0);
    EXPECT_EQ(native.channelCount, 2U);

    Player player;
    ASSERT_EQ(output->start(player), statusOK);
    ASSERT_TRUE(world().waitUntil([&] { return player.cycles_ > 3; }));
    EXPECT_TRUE(world().waitUntil([&] { return world().listen("hdmi") > 0.4F; }));
    EXPECT_NEAR(world().listen("hdmi"), 0.5F, 0.02F);
    EXPECT_EQ(world().listen("speakers"), 0.0F);
    output->stop();
    const int cycles = player.cycles_;
    world().letCyclesPass();
    EXPECT_EQ(player.cycles_, cycles) << "no cycle after the stop";
    EXPECT_TRUE(player.sound_);
    output->stop(); // has no effect

    // A new device takes effect at the next start.
    ASSERT_EQ(output->setDevice(device("speakers")), statusOK);
    ASSERT_EQ(output->start(player), statusOK);
    EXPECT_TRUE(world().waitUntil([&] { return world().listen("speakers") > 0.4F; }));
    EXPECT_NEAR(world().listen("speakers"), 0.5F, 0.02F);
}

TEST_P(AudioHardwareContract, ACycleCapturesThenPlaysOrAnnouncesThatItWillNot) {
    world().playTone();
    Score score;
    Processing both(hardware, device("speakers"), &score);
    ASSERT_TRUE(world().waitUntil([&] { return both.player.cycles_ > 8; }));
    (void)score.take(); // drops the startup cycles
    ASSERT_TRUE(world().waitUntil(
        [&, from = both.player.cycles_.load()] { return both.player.cycles_ > from + 20; }));
    auto steps = score.take();
    const Listener &listener = both.listener;
    ASSERT_GT(listener.cyclesToPlay_, 3);
    both.output->stop();
    const int cyclesToPlay = listener.cyclesToPlay_;
    const int cycles = listener.cycles_;
    ASSERT_TRUE(world().waitUntil([&] { return listener.cycles_ > cycles + 5; }));
    EXPECT_EQ(listener.cyclesToPlay_, cyclesToPlay);

    if (!steps.empty() && steps.front().who == 'p')
        steps.erase(steps.begin());
    int pairs = 0;
    for (std::size_t at = 0; at + 1 < steps.size() && steps[at].willPlay; at += 2, ++pairs) {
        ASSERT_EQ(steps[at].who, 'c') << "step " << at;
        ASSERT_EQ(steps[at + 1].who, 'p') << "step " << at;
        ASSERT_EQ(steps[at].frames, steps[at + 1].frames) << "step " << at;
    }
    EXPECT_GE(pairs, 15);
}

TEST_P(AudioHardwareContract, RepeatedUseLeavesNothingBehind) {
    world().playTone();
    // Most rounds stop while the session manager still prepares the streams.
    for (int round = 0; round < 100; ++round) {
        const Processing both(hardware, device("speakers"));
        if (round % 10 == 0) {
            ASSERT_TRUE(world().waitUntil([&] { return both.player.cycles_ > 0; }));
        }
    }
    std::vector<AudioObjectID> devices;
    ASSERT_EQ(hardware.deviceList(devices), statusOK);
    EXPECT_EQ(devices.size(), 2U) << "none of ours is listed";
    ASSERT_TRUE(world().waitUntil([&] { return world().listen("speakers") > 0.2F; }));
    EXPECT_NEAR(world().listen("speakers"), 0.25F, 0.02F);
}

TEST_P(AudioHardwareContract, ReportsChanges) {
    News news;
    ASSERT_EQ(hardware.addListener(HardwareProperty::deviceList, news), statusOK);
    ASSERT_EQ(hardware.addListener(HardwareProperty::defaultOutput, news), statusOK);

    world().setDefaultOutput("hdmi");
    EXPECT_TRUE(world().waitUntil([&] { return news.defaults_ > 0; }));
    AudioObjectID main = 0;
    EXPECT_EQ(hardware.defaultOutputDevice(main), statusOK);
    EXPECT_EQ(main, device("hdmi"));

    world().plugIn("usb");
    EXPECT_TRUE(world().waitUntil([&] { return news.lists_ > 0 && device("usb") != 0; }));
    const int lists = news.lists_;
    world().unplug("usb");
    EXPECT_TRUE(world().waitUntil([&] { return news.lists_ > lists && device("usb") == 0; }));

    EXPECT_EQ(hardware.removeListener(HardwareProperty::deviceList, news), statusOK);
    EXPECT_EQ(hardware.removeListener(HardwareProperty::defaultOutput, news), statusOK);
    const int before = news.lists_ + news.defaults_;
    world().plugIn("usb");
    EXPECT_TRUE(world().waitUntil([&] { return device("usb") != 0; }));
    EXPECT_EQ(news.lists_ + news.defaults_, before);
}

TEST_P(AudioHardwareContract, ReportsRoutesAndTheirChangesButNoVolumes) {
    const OutputIdentity speakers = hardware.outputIdentity(device("speakers"));
    EXPECT_EQ(speakers, (OutputIdentity{.node = "speakers"})) << "belongs to no card";
    EXPECT_EQ(hardware.outputIdentity(noSuchObject), OutputIdentity{});

    News news;
    ASSERT_EQ(hardware.addListener(HardwareProperty::deviceList, news), statusOK);
    const auto identity = [&] { return hardware.outputIdentity(device("desk")); };
    world().plugInCard("desk");
    OutputIdentity desk{.card = "card", .node = "desk", .isAwaited = true};
    ASSERT_TRUE(world().waitUntil([&] { return news.lists_ > 0 && identity() == desk; }));

    desk.isAwaited = false;
    for (const char *route : {"analog-output-speaker", "analog-output-headphones"}) {
        const int lists = news.lists_;
        world().setRoute("desk", route);
        desk.route = route;
        EXPECT_TRUE(world().waitUntil([&] { return news.lists_ > lists && identity() == desk; }))
            << route;
    }

    // Volume changes are not reported; the route change after them is.
    const int lists = news.lists_;
    for (int press = 0; press < 20; ++press)
        world().changeVolume("desk");
    world().setRoute("desk", "analog-output-speaker");
    ASSERT_TRUE(world().waitUntil([&] { return identity().route == "analog-output-speaker"; }));
    EXPECT_EQ(news.lists_, lists + 1);
    EXPECT_EQ(hardware.removeListener(HardwareProperty::deviceList, news), statusOK);
}

TEST_P(AudioHardwareContract, SurvivesTheDeviceThatIsPlaying) {
    world().playTone();
    world().plugIn("usb");
    ASSERT_TRUE(world().waitUntil([&] { return device("usb") != 0; }));
    Processing both(hardware, device("usb"));
    ASSERT_TRUE(world().waitUntil([&] { return both.player.cycles_ > 3; }));
    world().unplug("usb");
    ASSERT_TRUE(world().waitUntil([&] { return device("usb") == 0; }));
    both.output->stop();

    const int cycles = both.player.cycles_;
    ASSERT_EQ(both.output->setDevice(device("hdmi")), statusOK);
    ASSERT_EQ(both.output->start(both.player), statusOK);
    EXPECT_TRUE(world().waitUntil([&] { return both.player.cycles_ > cycles; }));
}

TEST_P(AudioHardwareContract, ALostServerFailsEveryCallAndBlocksNone) {
    News news;
    ASSERT_EQ(hardware.addListener(HardwareProperty::connection, news), statusOK);
    world().playTone();
    Processing both(hardware, device("speakers"), nullptr, true);
    Player &player = both.player;
    ASSERT_TRUE(world().waitUntil([&] { return player.cycles_ > 3; }));

    world().loseServer();
    ASSERT_TRUE(world().waitUntil([&] { return news.lost_ != statusOK; }));
    AudioObjectID id = 0;
    EXPECT_NE(hardware.defaultOutputDevice(id), statusOK);
    EXPECT_NE(hardware.createProcessTap({}, id), statusOK);
    EXPECT_EQ(id, 0U);
    both.output->stop();
    EXPECT_NE(both.output->start(player), statusOK);
    const int cycles = player.cycles_;
    world().letCyclesPass();
    EXPECT_EQ(player.cycles_, cycles);
    EXPECT_EQ(hardware.removeListener(HardwareProperty::connection, news), statusOK);
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(AudioHardwareContract);

} // namespace quorbel::testing
