#include "LiveLevelTable.h"

#include "LevelTrace.h"
#include "devices/DeviceManager.h"
#include "effects/EffectComponents.h"
#include "engine/AudioEngine.h"
#include "engine/OutputRule.h"
#include "platform/core/Log.h"
#include "platform/hardware/simulated/SimulatedHardware.h"
#include "platform/threads/ManualClock.h"
#include "settings/presets/FactoryPresets.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel::bench {
namespace {

constexpr const char *speakers = "speakers";
constexpr const char *headset = "headset";
constexpr const char *otherRoute = "headphones";

/// The engine with the window's meters and two devices; an application plays on the default one.
/// The speakers have the first preset as their profile; their other route and the headset have the
/// second.
class LiveMachine final : private OutputRule {
  public:
    LiveMachine(const LevelSound &sound, const Preset &first, const Preset &second)
        : first_(first), second_(second) {
        hardware_.addDevice({.uid = speakers, .name = "Speakers", .blockFrames = {hopFrames}});
        hardware_.addDevice({.uid = headset, .name = "Headset", .blockFrames = {hopFrames}});
        devices_.refresh();
        engine_.setComparable(true);
        engine_.setHoldsPeaks(true);
        engine_.setOutputRule(this);
        engine_.useDefaultOutput();
        hardware_.play([&sound](double seconds, std::uint32_t channel) {
            const auto &samples = channel == 0 ? sound.left : sound.right;
            const auto frame = static_cast<std::size_t>(std::lround(seconds * 48000.0));
            return frame < samples.size() ? samples[frame] : 0.0F;
        });
    }
    ~LiveMachine() override { engine_.setOutputRule(nullptr); }
    LiveMachine(const LiveMachine &) = delete;
    LiveMachine &operator=(const LiveMachine &) = delete;

    /// Throws std::runtime_error if the engine does not start.
    void start() {
        engine_.start();
        clock_.runPending();
        if (engine_.state() != EngineLifecycle::State::running())
            throw std::runtime_error("the engine does not start: " + engine_.state().message);
    }
    void stop() { engine_.stop(); }
    void connectHeadset() { hardware_.setDefaultOutput(headset); }
    void plugIntoOtherRoute() { hardware_.setIdentity(speakers, {.route = otherRoute}); }

    /// Levels at both devices by position in the application's sound.
    struct Traces {
        LevelTrace speakers;
        LevelTrace headset;
    };
    /// Calls `change` before hop `switchHop`.
    Traces run(const std::function<void(LiveMachine &)> &change) {
        LevelSound first;
        LevelSound second;
        for (std::size_t hop = 0; hop < hopCount; ++hop) {
            if (hop == switchHop)
                change(*this);
            clock_.advance(static_cast<double>(hopFrames) / 48000.0);
            append(hardware_.takeRecording(speakers), first);
            append(hardware_.takeRecording(headset), second);
            // Pads the device without cycles with silence.
            const std::size_t frames = std::max(first.left.size(), second.left.size());
            for (LevelSound *played : {&first, &second}) {
                played->left.resize(frames);
                played->right.resize(frames);
            }
        }
        return {levelTraceOf(first), levelTraceOf(second)};
    }

  private:
    static void append(const simulated::Recording &played, LevelSound &to) {
        to.left.insert(to.left.end(), played.left.begin(), played.left.end());
        to.right.insert(to.right.end(), played.right.begin(), played.right.end());
    }

    // OutputRule
    [[nodiscard]] bool isActive() const override { return true; }
    [[nodiscard]] OutputUse useOf(const AudioDevice &) const override { return {}; }
    void adopt(const AudioDevice &device) override {
        const bool isFirst = device.uid == speakers && device.identity.route != otherRoute;
        const Preset &preset = isFirst ? first_ : second_;
        const auto change = engine_.changeSettings();
        engine_.eq().setBands(preset.bands);
        engine_.setSpatial(preset.spatial);
    }

    const Preset &first_;
    const Preset &second_;
    ManualClock clock_;
    SimulatedHardware hardware_{clock_};
    DeviceManager devices_{hardware_, clock_};
    AudioEngine engine_{hardware_,
                        devices_,
                        clock_,
                        EQBand::defaultBands(),
                        [this](AudioUnitRegistry &registry) {
                            registerEffectUnits(registry, clockedSerialQueues(clock_));
                        },
                        clockedSerialQueues(clock_)};
};

void printLiveLevelTableOf(const LevelSound &sound, const std::vector<Preset> &presets) {
    using Machine = LiveMachine;
    const auto nothing = [](Machine &) {};
    const LevelTrace dry = LiveMachine(sound, presets[0], presets[0]).run(nothing).speakers;
    const LevelTrace silence(dry.size(), -200.0);
    const auto traces = [&](std::size_t from, std::size_t to,
                            const std::function<void(Machine &)> &change) {
        LiveMachine machine(sound, presets[from], presets[to]);
        machine.start();
        return machine.run(change);
    };
    std::vector<LevelTrace> steady;
    for (std::size_t index = 0; index < presets.size(); ++index)
        steady.push_back(traces(index, index, nothing).speakers);

    fmt::print("{}, the engine: excess in dB over the louder end, per preset; the two profiles are "
               "this preset and the next\n{:<34} {:>6} {:>6} {:>12} {:>12}\n",
               sound.name, "preset", "start", "stop", "other output", "other route");
    double worst = -200.0;
    int aboveOne = 0;
    for (std::size_t from = 0; from < presets.size(); ++from) {
        const std::size_t to = (from + 1) % presets.size();
        const auto started =
            LiveMachine(sound, presets[from], presets[to]).run([](Machine &machine) {
                machine.start();
            });
        const auto stopped = traces(from, to, [](Machine &machine) { machine.stop(); });
        const auto moved = traces(from, to, [](Machine &machine) { machine.connectHeadset(); });
        const auto flipped =
            traces(from, to, [](Machine &machine) { machine.plugIntoOtherRoute(); });
        const double row[] = {excessDB(started.speakers, dry, steady[from]),
                              excessDB(stopped.speakers, dry, steady[from]),
                              std::max(excessDB(moved.speakers, steady[from], silence),
                                       excessDB(moved.headset, steady[to], silence)),
                              excessDB(flipped.speakers, steady[from], steady[to])};
        for (const double excess : row) {
            worst = std::max(worst, excess);
            aboveOne += excess > 1.0 ? 1 : 0;
        }
        fmt::print("{:<34} {:>+6.2f} {:>+6.2f} {:>+12.2f} {:>+12.2f}\n", presets[from].name, row[0],
                   row[1], row[2], row[3]);
    }
    fmt::print("worst {:+.2f} dB, {} of {} transitions above 1 dB\n\n", worst, aboveOne,
               4 * presets.size());
}

} // namespace

void printLiveLevelTable() {
    const LogSink before = setLogSink([](std::string_view) {});
    for (const LevelSound &sound : levelSounds())
        printLiveLevelTableOf(sound, factoryPresets());
    setLogSink(before);
}

} // namespace quorbel::bench
