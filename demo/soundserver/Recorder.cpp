#include "soundserver/Recorder.h"

#include "soundserver/Waiting.h"

#include <span>

#include <algorithm>

namespace quorbel::soundserver {
namespace {

/// Returns the parts of the segments from frame `start` to `end`, with positions relative to
/// `start`.
std::vector<Recording::Segment> cutSegments(std::span<const Recording::Segment> segments,
                                            std::size_t start, std::size_t end) {
    std::vector<Recording::Segment> part;
    for (const Recording::Segment &segment : segments) {
        const std::size_t from = std::max(segment.start, start);
        const std::size_t to = std::min(segment.start + segment.frames, end);
        if (from < to) {
            part.push_back({from - start, static_cast<std::uint32_t>(to - from),
                            segment.position + (from - segment.start), segment.nanoseconds});
        }
    }
    return part;
}

} // namespace

const Recording::Segment &Recording::segmentOf(std::size_t frame) const {
    const auto after = std::ranges::upper_bound(segments, frame, {}, &Segment::start);
    return *std::prev(after);
}

std::uint64_t Recording::positionOf(std::size_t frame) const {
    const Segment &segment = segmentOf(frame);
    return segment.position + (frame - segment.start);
}

std::uint64_t Recording::nanosecondsOf(std::size_t frame) const {
    return segmentOf(frame).nanoseconds;
}

std::vector<std::size_t> Recording::framesAfterGaps() const {
    std::vector<std::size_t> frames;
    for (std::size_t index = 1; index < segments.size(); ++index) {
        const Segment &before = segments[index - 1];
        if (segments[index].position > before.position + before.frames)
            frames.push_back(segments[index].start);
    }
    return frames;
}

Recording Recording::excerpt(std::size_t start, std::size_t count) const {
    Recording part;
    const std::size_t end = std::min(start + count, frames());
    start = std::min(start, end);
    const auto cut = [&](const std::vector<float> &channel) {
        return std::vector<float>(channel.begin() + static_cast<std::ptrdiff_t>(start),
                                  channel.begin() + static_cast<std::ptrdiff_t>(end));
    };
    part.left = cut(left);
    part.right = cut(right);
    part.segments = cutSegments(segments, start, end);
    return part;
}

Recorder::Recorder(GraphClient &client, const std::string &device, double maxSeconds,
                   int sampleRate, bool isPassive)
    : ClientStream(client, "recorder-" + device), sampleRate_(sampleRate),
      left_(static_cast<std::size_t>(maxSeconds * sampleRate)), right_(left_.size()),
      segments_(left_.size() / 16 + 1) {
    pw_properties *properties =
        pw_properties_new(PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_STREAM_CAPTURE_SINK, "true",
                          PW_KEY_TARGET_OBJECT, device.c_str(), nullptr);
    if (isPassive)
        pw_properties_set(properties, PW_KEY_NODE_PASSIVE, "true");
    connect(PW_DIRECTION_INPUT, properties, sampleRate);
    waitUntilRunning();
}

std::uint32_t Recorder::process(const Cycle &cycle, std::span<float *const> channels,
                                std::uint32_t frames) noexcept {
    const std::size_t start = frames_;
    const std::size_t segment = segmentCount_;
    const std::size_t count = std::min<std::size_t>(frames, left_.size() - start);
    if (count == 0 || segment == segments_.size())
        return frames;
    std::copy_n(channels[0], count, left_.begin() + static_cast<std::ptrdiff_t>(start));
    std::copy_n(channels[1], count, right_.begin() + static_cast<std::ptrdiff_t>(start));
    segments_[segment] = {start, static_cast<std::uint32_t>(count), cycle.position,
                          cycle.nanoseconds};
    segmentCount_ = segment + 1;
    frames_ = start + count;
    return frames;
}

Recording Recorder::recording(std::size_t start) const {
    Recording part;
    const std::size_t end = frames_;
    start = std::min(start, end);
    part.left.assign(left_.begin() + static_cast<std::ptrdiff_t>(start),
                     left_.begin() + static_cast<std::ptrdiff_t>(end));
    part.right.assign(right_.begin() + static_cast<std::ptrdiff_t>(start),
                      right_.begin() + static_cast<std::ptrdiff_t>(end));
    part.segments = cutSegments({segments_.data(), segmentCount_.load()}, start, end);
    return part;
}

Recording Recorder::last(double seconds) const {
    const std::size_t frames = frames_;
    return recording(frames - std::min(frames, static_cast<std::size_t>(seconds * sampleRate_)));
}

void Recorder::skip(double seconds) const {
    const std::size_t end = frames_ + static_cast<std::size_t>(seconds * sampleRate_);
    if (end > left_.size())
        throw ServerError("the recorder was made for less sound than that");
    waitFor("the recorder hears the device", seconds * 1.5 + 5.0, [&] { return frames_ >= end; });
}

Recording Recorder::next(double seconds) const {
    const std::size_t start = frames_;
    skip(seconds);
    return recording(start).excerpt(0, static_cast<std::size_t>(seconds * sampleRate_));
}

} // namespace quorbel::soundserver
