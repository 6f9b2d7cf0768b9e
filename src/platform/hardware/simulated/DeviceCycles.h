#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/hardware/AudioHardware.h"
#include "platform/threads/Timer.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace quorbel::simulated {

/// The sound of an application: its sample on a channel (0 left, 1 right) at a time since it began.
using Sound = std::function<float(double seconds, std::uint32_t channel)>;

/// An application's sound and how far it has been played.
struct Playing {
    Sound sound;
    double seconds = 0.0;
};

/// What a device has played, frame by frame.
struct Recording {
    std::vector<float> left;
    std::vector<float> right;
};

/// Stands around every call to a client, on its thread: a place to count what is not allowed there.
class CallbackWatch {
  public:
    virtual ~CallbackWatch() = default;
    virtual void enter() noexcept = 0;
    virtual void leave() noexcept = 0;
};

/// Who takes part in the cycles of one device. Constant while cycles run.
struct CyclePlan {
    double sampleRate = 48000.0;
    std::vector<std::uint32_t> blockFrames{512};    ///< taken in turn
    std::vector<std::shared_ptr<Playing>> captured; ///< their sound goes to the IO clients
    std::vector<std::shared_ptr<Playing>> heard;    ///< their sound goes to the device directly
    std::vector<IOClient *> captures;
    std::vector<RenderClient *> renders;
    bool willPlay = true;           ///< what the IO clients are told
    CallbackWatch *watch = nullptr; ///< may be null

    [[nodiscard]] bool isIdle() const {
        return captures.empty() && renders.empty() && heard.empty();
    }
};

/// How fast the devices of a simulated machine run.
enum class Pace {
    clock,  ///< in the program's time, on the clock's thread: every run is the same
    threads ///< as fast as they can, each device on a thread of its own; nothing is recorded
};

/// The heartbeat of one device: in every cycle first the captures, then the playback, then the
/// recording of what comes out. All calls [main].
class DeviceCycles {
  public:
    DeviceCycles(Clock &clock, Pace pace);
    ~DeviceCycles();
    DeviceCycles(const DeviceCycles &) = delete;
    DeviceCycles &operator=(const DeviceCycles &) = delete;

    /// When this returns no cycle is under way and none comes before `resume`.
    void pause();
    /// Goes on with `plan`, in step with the cycles before if rate and blocks are the same. An idle
    /// plan has no cycles.
    void resume(CyclePlan plan);

    /// On the clock, if there are cycles: one beside those that the clock brings. Returns the
    /// seconds that it covers; 0 without cycles.
    double extraCycle();

    [[nodiscard]] Recording &recording() { return recording_; }

  private:
    void armTimer();
    void cycle() noexcept;
    template <typename Call> void callOut(const Call &call) noexcept;
    [[nodiscard]] std::uint32_t nextBlock() const;
    /// Lets the sounds play on for one block, summed into the scratch buffers.
    void mix(const std::vector<std::shared_ptr<Playing>> &sounds, std::uint32_t frames);

    Clock &clock_;
    const Pace pace_;
    CyclePlan plan_;
    std::size_t block_ = 0;
    std::array<std::vector<float>, 2> scratch_;
    Recording recording_;
    Timer timer_;
    std::thread thread_;
    std::atomic<bool> leave_{false};
};

} // namespace quorbel::simulated
