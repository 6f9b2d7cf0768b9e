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

/// The sound of an application: its sample by channel (0 left, 1 right) and time since its start.
using Sound = std::function<float(double seconds, std::uint32_t channel)>;

/// An application's sound and its play position.
struct Playing {
    Sound sound;
    double seconds = 0.0;
};

/// The frames that a device has played.
struct Recording {
    std::vector<float> left;
    std::vector<float> right;
};

/// Called before and after every call to a client, on its thread, to count forbidden operations in
/// between.
class CallbackWatch {
  public:
    virtual ~CallbackWatch() = default;
    virtual void enter() noexcept = 0;
    virtual void leave() noexcept = 0;
};

/// Participants of one device's cycles. Constant while cycles run.
struct CyclePlan {
    double sampleRate = 48000.0;
    std::vector<std::uint32_t> blockFrames{512};    ///< used in turn
    std::vector<std::shared_ptr<Playing>> captured; ///< their sound goes to the IO clients
    std::vector<std::shared_ptr<Playing>> heard;    ///< their sound goes to the device directly
    std::vector<IOClient *> captures;
    std::vector<RenderClient *> renders;
    bool willPlay = true;           ///< as reported to the IO clients
    CallbackWatch *watch = nullptr; ///< may be null

    [[nodiscard]] bool isIdle() const {
        return captures.empty() && renders.empty() && heard.empty();
    }
};

/// Speed of a simulated machine's devices.
enum class Pace {
    clock,  ///< in the program's time, on the clock's thread: deterministic
    threads ///< as fast as possible, each device on a thread of its own, without recording
};

/// The clock of one device: each cycle captures, then plays, then records the output. All calls
/// [main].
class DeviceCycles {
  public:
    DeviceCycles(Clock &clock, Pace pace);
    ~DeviceCycles();
    DeviceCycles(const DeviceCycles &) = delete;
    DeviceCycles &operator=(const DeviceCycles &) = delete;

    /// Stops the cycles: after it returns, no cycle is under way or comes before `resume`.
    void pause();
    /// Continues with `plan`, in step with the earlier cycles if rate and blocks are equal. An idle
    /// plan has no cycles.
    void resume(CyclePlan plan);

    /// Runs one cycle in addition to those of the clock (`Pace::clock` only). Returns its length in
    /// seconds; 0 without cycles.
    double extraCycle();

    [[nodiscard]] Recording &recording() { return recording_; }

  private:
    void armTimer();
    void cycle() noexcept;
    template <typename Call> void callOut(const Call &call) noexcept;
    [[nodiscard]] std::uint32_t nextBlock() const;
    /// Sums one block of the sounds into the scratch buffers.
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
