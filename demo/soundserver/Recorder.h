#pragma once

#include "soundserver/ClientStream.h"

#include <mutex>
#include <optional>
#include <vector>

namespace quorbel::soundserver {

/// The frames that a device received.
struct Recording {
    /// The frames of one cycle: `frames` from `start` on, at `position` on the graph's clock. The
    /// cycle began at `nanoseconds` of the monotonic clock.
    struct Segment {
        std::size_t start = 0;
        std::uint32_t frames = 0;
        std::uint64_t position = 0;
        std::uint64_t nanoseconds = 0;
    };

    std::vector<float> left;
    std::vector<float> right;
    std::vector<Segment> segments;

    [[nodiscard]] std::size_t frames() const { return left.size(); }

    /// The clock position of a recorded frame, and the time at which its cycle began.
    [[nodiscard]] std::uint64_t positionOf(std::size_t frame) const;
    [[nodiscard]] std::uint64_t nanosecondsOf(std::size_t frame) const;

    /// The first frames after the cycles that the recorder itself missed: gaps between the
    /// segments' clock positions.
    [[nodiscard]] std::vector<std::size_t> framesAfterGaps() const;

    /// `count` frames from `start` on.
    [[nodiscard]] Recording excerpt(std::size_t start, std::size_t count) const;

  private:
    [[nodiscard]] const Segment &segmentOf(std::size_t frame) const;
};

/// Records what a device plays, from its monitor.
class Recorder : public ClientStream {
  public:
    /// Records until `maxSeconds` are full. A passive recorder does not keep the device running.
    Recorder(GraphClient &client, const std::string &device, double maxSeconds,
             int sampleRate = 48000, bool isPassive = false);
    ~Recorder() override { disconnect(); }

    [[nodiscard]] std::size_t frames() const { return frames_; }

    /// The frames from `start` on, complete up to the call.
    [[nodiscard]] Recording recording(std::size_t start = 0) const;

    /// The last `seconds` of the recording.
    [[nodiscard]] Recording last(double seconds) const;

    /// Waits for another `seconds` of recorded frames. Throws `ServerError` if they do not arrive,
    /// with a margin for a slow machine.
    void skip(double seconds) const;

    /// As `skip`, and returns just these frames.
    [[nodiscard]] Recording next(double seconds) const;

  private:
    std::uint32_t process(const Cycle &cycle, std::span<float *const> channels,
                          std::uint32_t frames) noexcept override;

    int sampleRate_;
    // Written by the data thread up to the published counts, which only grow.
    std::vector<float> left_;
    std::vector<float> right_;
    std::vector<Recording::Segment> segments_;
    std::atomic<std::size_t> frames_{0};
    std::atomic<std::size_t> segmentCount_{0};
};

} // namespace quorbel::soundserver
