#pragma once

#include "engine/CaptureConversion.h"
#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"
#include "platform/hardware/AudioHardware.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quorbel {

class AudioRingBuffer;

/// Captures the sound of all other programs, mutes their direct playback, converts the sound to the
/// chain format and writes it into the ring buffer. Every activation makes a new tap and a new
/// capture device around the current default output.
///
/// Threads: activate and cleanup [main]; the hardware calls on [control] and [capture].
class SystemAudioTap final : private IOClient {
  public:
    /// A failure, with the text that is shown to the user verbatim.
    class Error : public std::runtime_error {
      public:
        static Error osStatus(std::string_view step, Status status);
        static Error captureStartFailed(Status status);
        static Error invalidTapFormat();

      private:
        using std::runtime_error::runtime_error;
    };

    /// The hardware must outlive the tap.
    explicit SystemAudioTap(AudioHardware &hardware);
    ~SystemAudioTap() override;
    SystemAudioTap(const SystemAudioTap &) = delete;
    SystemAudioTap &operator=(const SystemAudioTap &) = delete;

    /// Builds and starts the capture. Throws Error and leaves the objects made so far to `cleanup`.
    /// `ring` must outlive the activation.
    void activate(AudioRingBuffer &ring, const StreamFormat &chain);

    /// Stops and destroys all objects; may be called at any time, repeatedly.
    void cleanup();

    /// True from a successful activation until the owner marks it stopped.
    [[nodiscard]] bool isRunning() const { return isRunning_; }
    void markStopped();

    /// True if the running capture must be rebuilt for `uid` as the default output.
    [[nodiscard]] bool isOutdatedBy(const std::string &uid) const {
        return isRunning_ && hardware_.isCaptureOutdated(builtWithDefaultUID_ != uid);
    }

    /// The default output that the running capture was built around.
    [[nodiscard]] const std::optional<std::string> &builtWithDefaultUID() const {
        return builtWithDefaultUID_;
    }

    /// Called when the running capture's rate changes to one that cannot be converted. [control]
    std::function<void(double sampleRate)> onRateRefused;

    /// Logs a format change since the last call; the thread that receives it must not block. [main]
    void logFormatChange();

    /// Total capture cycles that wrote no frame into the ring. [any]
    [[nodiscard]] std::int32_t droppedCycles() const noexcept {
        return droppedCycles_.load(std::memory_order_relaxed);
    }

    /// The converter's source format: the tap's, at the rate of the aggregate's clock if that is
    /// known and differs.
    [[nodiscard]] static StreamFormat formatSursa(const StreamFormat &tap,
                                                  std::optional<double> rataAgregat);

  private:
    AudioObjectID translatePIDToProcessObject(std::int32_t pid);
    std::string defaultOutputDeviceUID();
    void createTap(const std::string &uuid);
    void createAggregate(const std::string &tapUUID);
    [[nodiscard]] std::optional<double> aggregateRate();
    void install(std::unique_ptr<CaptureConversion> conversion);
    [[nodiscard]] std::string ratesLine(std::optional<double> aggregate, double tap,
                                        const CaptureConversion &conversion) const;

    void ioFormatChanged(const StreamFormat &format) override;
    void ioCycle(const IOCycle &cycle) noexcept override;

    AudioHardware &hardware_;

    // Main only.
    AudioObjectID tapID = 0;
    AudioObjectID aggregateID = 0;
    IOProcID ioProcID = 0;
    bool isRunning_ = false;
    std::optional<std::string> builtWithDefaultUID_;

    // Constant while an IO procedure exists.
    AudioRingBuffer *ring_ = nullptr;
    StreamFormat chainFormat_;

    // Replaced by the thread that changes the format; [capture] reads only `active_`. The previous
    // conversion lives until the next change, because a cycle may still use it.
    std::unique_ptr<CaptureConversion> conversion_;
    std::unique_ptr<CaptureConversion> retired_;
    std::atomic<CaptureConversion *> active_{nullptr};
    std::atomic<std::uint32_t> conversions_{0}; ///< number of conversions so far
    std::mutex changeMutex_;
    std::string formatChange_; ///< a pending log line; guarded by the mutex

    // Capture only, while an IO procedure exists.
    std::uint32_t lastConversion_ = 0;
    bool leadWritten_ = false;
    double lastCycleEnd_ = 0.0; ///< seconds on the cycles' own clock
    std::atomic<std::int32_t> droppedCycles_{0};
};

} // namespace quorbel
