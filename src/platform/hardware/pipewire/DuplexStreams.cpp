#include "platform/hardware/pipewire/DuplexStreams.h"

#include <fmt/format.h>
#include <spa/param/audio/format-utils.h>
#include <spa/param/props.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <unistd.h>
#include <utility>

namespace quorbel {
namespace {

constexpr std::uint32_t streamChannels = 2;

/// Longest block handed over, in frames: the capture code's buffer holds less than 8192 frames, the
/// server's longest cycle.
constexpr std::uint32_t longestDelivery = 4096;

/// The headers of 0.3.65 lack this flag and its library ignores it. Without it, newer servers lose
/// every other cycle of a stream that wakes another one.
constexpr auto asyncFlag = static_cast<pw_stream_flags>(1U << 10U);

constexpr pw_stream_flags operator|(pw_stream_flags a, pw_stream_flags b) {
    return static_cast<pw_stream_flags>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}

/// Returns the planes of a server buffer; lowers `frames` to the number that the buffer holds.
AudioBufferList planes(const pw_buffer &buffer, std::uint32_t &frames, bool isInput) noexcept {
    AudioBufferList list;
    const spa_buffer *data = buffer.buffer;
    list.bufferCount = std::min<std::uint32_t>(data->n_datas, streamChannels);
    for (std::uint32_t channel = 0; channel < list.bufferCount; ++channel) {
        const spa_data &plane = data->datas[channel];
        if (plane.data == nullptr) {
            frames = 0;
            continue;
        }
        const std::uint32_t offset = isInput ? std::min(plane.chunk->offset, plane.maxsize) : 0;
        const std::uint32_t bytes =
            isInput ? std::min(plane.chunk->size, plane.maxsize - offset) : plane.maxsize;
        list.data[channel] =
            reinterpret_cast<float *>(static_cast<std::byte *>(plane.data) + offset);
        frames = std::min<std::uint32_t>(frames, bytes / sizeof(float));
    }
    return list;
}

void finish(pw_stream *stream, pw_buffer *buffer, std::uint32_t frames) noexcept {
    for (std::uint32_t channel = 0; channel < buffer->buffer->n_datas; ++channel) {
        spa_chunk *chunk = buffer->buffer->datas[channel].chunk;
        chunk->offset = 0;
        chunk->stride = sizeof(float);
        chunk->size = frames * sizeof(float);
    }
    pw_stream_queue_buffer(stream, buffer);
}

/// True if any sample is louder than -100 dBFS.
bool isAudible(const AudioBufferList &list, std::uint32_t frames) noexcept {
    float peak = 0.0F;
    for (std::uint32_t channel = 0; channel < list.bufferCount; ++channel)
        for (std::uint32_t i = 0; i < frames; ++i)
            peak = std::max(peak, std::abs(list.data[channel][i]));
    return peak > 1e-5F;
}

} // namespace

std::string schedulingGroup() { return fmt::format("quorbel-{}", getpid()); }

spa_latency_info withProcessing(spa_latency_info latency, double processingSeconds) {
    const auto nanoseconds = static_cast<std::uint64_t>(processingSeconds * 1e9);
    latency.min_ns += nanoseconds;
    latency.max_ns += nanoseconds;
    return latency;
}

ServerStream::ServerStream(ServerConnection &connection, DuplexPair &pair)
    : connection_(connection), pair_(pair) {}

Status ServerStream::create(pw_direction direction, const char *nodeName, const char *mediaClass,
                            const char *mediaName, const char *targetName, bool isPassive,
                            pw_stream_flags flags) {
    const std::string group = schedulingGroup();
    pw_properties *properties = pw_properties_new(
        PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CLASS, mediaClass, PW_KEY_MEDIA_NAME, mediaName,
        PW_KEY_NODE_DESCRIPTION, mediaName, PW_KEY_APP_NAME, "Ostrafine", PW_KEY_APP_ID,
        "com.quorbel.Ostrafine", PW_KEY_NODE_GROUP, group.c_str(), PW_KEY_NODE_LINK_GROUP,
        group.c_str(), PW_KEY_NODE_VIRTUAL, "true", "state.restore-props", "false",
        "state.restore-target", "false", nullptr);
    // The name is unique per run: the session manager remembers targets by name and must not find
    // one of an earlier run.
    pw_properties_setf(properties, PW_KEY_NODE_NAME, "%s.%d", nodeName, getpid());
    if (isPassive)
        pw_properties_set(properties, PW_KEY_NODE_PASSIVE, "true");
    if (targetName != nullptr)
        pw_properties_set(properties, "target.object", targetName);
    stream_.reset(pw_stream_new(connection_.streamCore(), mediaName, properties));
    if (stream_.get() == nullptr)
        return errno > 0 ? -errno : -EIO;

    static const pw_stream_events events = [] {
        pw_stream_events table{};
        table.version = PW_VERSION_STREAM_EVENTS;
        table.state_changed = [](void *self, pw_stream_state, pw_stream_state state,
                                 const char *error) {
            static_cast<ServerStream *>(self)->stateChanged(state, error);
        };
        table.param_changed = [](void *self, std::uint32_t id, const spa_pod *parameter) {
            static_cast<ServerStream *>(self)->parameterChanged(id, parameter);
        };
        table.io_changed = [](void *self, std::uint32_t id, void *area, std::uint32_t) {
            if (id == SPA_IO_Position)
                static_cast<ServerStream *>(self)->position_ = static_cast<spa_io_position *>(area);
        };
        table.process = [](void *data) {
            auto &self = *static_cast<ServerStream *>(data);
            self.process();
            self.cycles_.fetch_add(1, std::memory_order_relaxed);
        };
        return table;
    }();
    pw_stream_add_listener(stream_.get(), &hook_, &events, this);

    // Leaves the rate to the graph, so that the server resamples nothing.
    spa_audio_info_raw info{};
    info.format = SPA_AUDIO_FORMAT_F32P;
    info.channels = streamChannels;
    info.position[0] = SPA_AUDIO_CHANNEL_FL;
    info.position[1] = SPA_AUDIO_CHANNEL_FR;
    std::array<std::uint8_t, 1024> storage{};
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(storage.data(), storage.size());
    std::array<const spa_pod *, 1> parameters{
        spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)};
    return std::min(0, pw_stream_connect(stream_.get(), direction, PW_ID_ANY, flags,
                                         parameters.data(), parameters.size()));
}

void ServerStream::stateChanged(pw_stream_state state, const char * /*error*/) {
    const bool isStreaming = state == PW_STREAM_STATE_STREAMING;
    if (!isStreaming)
        missedCycles_.pause();
    if (isStreaming_.exchange(isStreaming) != isStreaming)
        isStreaming ? resumed() : paused();
    if (state == PW_STREAM_STATE_ERROR)
        error_ = -EIO;
    isGone_ = isGone_ || state == PW_STREAM_STATE_ERROR || state == PW_STREAM_STATE_UNCONNECTED;
    if (state == PW_STREAM_STATE_STREAMING) {
        // The session manager may have restored a volume that it remembers for our name.
        std::array<float, streamChannels> unity{1.0F, 1.0F};
        float unmuted = 0.0F;
        pw_stream_set_control(stream_.get(), SPA_PROP_channelVolumes, streamChannels, unity.data(),
                              SPA_PROP_mute, 1, &unmuted, 0);
    }
    if (pair_.changed)
        pair_.changed();
    connection_.wakeWaiters();
}

void ServerStream::parameterChanged(std::uint32_t id, const spa_pod *parameter) {
    if (parameter == nullptr)
        return;
    if (id == SPA_PARAM_Format) {
        spa_audio_info_raw info{};
        if (spa_format_audio_raw_parse(parameter, &info) < 0 || info.rate == 0)
            return;
        const StreamFormat format{static_cast<double>(info.rate), info.channels};
        if (format == format_)
            return;
        format_ = format;
        formatChanged();
        connection_.wakeWaiters();
    } else if (id == SPA_PARAM_Latency) {
        // Passes the latency on through the other stream: an application receives the device's
        // latency, and a device the application's.
        spa_latency_info latency{};
        if (spa_latency_parse(parameter, &latency) < 0)
            return;
        const bool isDevices = latency.direction == SPA_DIRECTION_INPUT;
        (isDevices ? pair_.deviceLatency : pair_.applicationLatency) = latency;
        if (isDevices && pair_.tap != nullptr)
            pair_.tap->announceLatency();
        else if (OutStream *out = pair_.out.get(); !isDevices && out != nullptr)
            out->updateLatency(latency);
    }
}

void ServerStream::updateLatency(const spa_latency_info &neighbours) {
    const spa_latency_info latency = withProcessing(neighbours, pair_.processingSeconds);
    std::array<std::uint8_t, 512> storage{};
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(storage.data(), storage.size());
    std::array<const spa_pod *, 1> parameters{
        spa_latency_build(&builder, SPA_PARAM_Latency, &latency)};
    pw_stream_update_params(stream_.get(), parameters.data(), parameters.size());
}

std::uint32_t ServerStream::cycleFrames() const noexcept {
    const spa_io_position *position = position_.load();
    return position != nullptr ? static_cast<std::uint32_t>(std::min<std::uint64_t>(
                                     position->clock.duration, maximumBlockFrames))
                               : 0;
}

std::uint32_t ServerStream::missedCyclesSinceLastRun() noexcept {
    const spa_io_position *position = position_.load();
    return position != nullptr ? missedCycles_.since(position->clock) : 0;
}

std::uint64_t ServerStream::cycleStartNanoseconds() const noexcept {
    const spa_io_position *position = position_.load();
    return position != nullptr ? position->clock.nsec : 0;
}

TapStream::TapStream(ServerConnection &connection, DuplexPair &pair)
    : ServerStream(connection, pair) {
    pair_.tap = this;
}

TapStream::~TapStream() {
    client_.set(nullptr);
    pair_.tap = nullptr;
    stream_.reset();
}

Status TapStream::connect(bool isDevice) {
    isDevice_ = isDevice;
    const Status status = create(
        PW_DIRECTION_INPUT, "quorbel.tap",
        isDevice ? "Audio/Sink/Internal" : "Stream/Input/Audio/Internal", "Quorbel System Tap",
        nullptr, false, PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS | asyncFlag);
    if (status == statusOK)
        announceLatency();
    return status;
}

void TapStream::announceLatency() {
    spa_latency_info none{};
    none.direction = SPA_DIRECTION_INPUT;
    updateLatency(pair_.deviceLatency.value_or(none));
}

void TapStream::setClient(IOClient *client, const StreamFormat &formatUntilNegotiated) {
    client_.set(nullptr);
    if (client == nullptr)
        return;
    client->ioFormatChanged(format_.isValid() ? format_ : formatUntilNegotiated);
    client_.set(client);
}

void TapStream::formatChanged() {
    IOClient *client = client_.get();
    if (client == nullptr)
        return;
    client_.set(nullptr);
    client->ioFormatChanged(format_);
    client_.set(client);
}

void TapStream::deliver(IOClient &client, IOCycle cycle) noexcept {
    std::uint32_t left = cycle.frames;
    while (left > 0) {
        cycle.frames = std::min(left, longestDelivery);
        client.ioCycle(cycle);
        cycle.input = cycle.input.advancedBy(cycle.frames);
        cycle.hostSeconds += cycle.frames / cycle.format.sampleRate;
        // The remaining pieces belong to this cycle.
        cycle.isAllPlayed = false;
        cycle.missedCycles = 0;
        left -= cycle.frames;
    }
}

void TapStream::process() noexcept {
    pw_buffer *newest = nullptr;
    while (pw_buffer *buffer = pw_stream_dequeue_buffer(stream_.get())) {
        if (newest != nullptr)
            pw_stream_queue_buffer(stream_.get(), newest);
        newest = buffer;
    }
    const double now = secondsOn(CLOCK_BOOTTIME);
    if (hasRunInThisCycle(now)) {
        if (newest != nullptr)
            pw_stream_queue_buffer(stream_.get(), newest);
        return;
    }
    IOCycle cycle;
    cycle.missedCycles = missedCyclesSinceLastRun();
    cycle.format = format_;
    cycle.hostSeconds = now;
    cycle.frames = maximumBlockFrames;
    if (newest != nullptr)
        cycle.input = planes(*newest, cycle.frames, true);
    if (newest == nullptr || cycle.frames == 0) {
        // Delivers silence while no application plays, so that the effects' tails are heard.
        cycle.input = AudioBufferList(silence_.data(), silence_.data());
        cycle.frames = cycleFrames();
    }
    {
        const RealtimeSlot<OutStream>::Use out(pair_.out);
        const RealtimeSlot<IOClient>::Use client(client_);
        // Delivers the block before the wake-up: older servers run the output inside that call.
        cycle.willPlay = out && out->isReadyForBlock();
        cycle.isAllPlayed = cycle.willPlay;
        if (client && cycle.frames > 0)
            deliver(*client.operator->(), cycle);
        if (out)
            out->wake();
    }
    if (newest != nullptr)
        pw_stream_queue_buffer(stream_.get(), newest);
}

bool TapStream::hasRunInThisCycle(double now) noexcept {
    const double sinceLastRun = now - std::exchange(lastRunSeconds_, now);
    const std::uint64_t start = cycleStartNanoseconds();
    // Cycles take time even if their driver reports no clock.
    return std::exchange(lastCycleStart_, start) == start && start != 0 &&
           sinceLastRun * format_.sampleRate < 0.5 * cycleFrames();
}

OutStream::OutStream(ServerConnection &connection, DuplexPair &pair, RenderClient &client)
    : ServerStream(connection, pair) {
    client_.set(&client);
}

OutStream::~OutStream() {
    if (pair_.out.get() == this)
        pair_.out.set(nullptr);
    client_.set(nullptr);
    stream_.reset();
}

Status OutStream::connect(const std::string &deviceName,
                          const StreamFormat &formatUntilNegotiated) {
    client_.get()->renderFormatChanged(formatUntilNegotiated);
    const Status status = create(PW_DIRECTION_OUTPUT, "quorbel.out", "Stream/Output/Audio/Internal",
                                 "Ostrafine", deviceName.c_str(), true,
                                 PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS |
                                     PW_STREAM_FLAG_RT_PROCESS | PW_STREAM_FLAG_TRIGGER);
    if (status == statusOK)
        pair_.out.set(this);
    if (status == statusOK && pair_.applicationLatency)
        updateLatency(*pair_.applicationLatency);
    return status;
}

void OutStream::formatChanged() {
    RenderClient *client = client_.get();
    if (client == nullptr)
        return;
    client_.set(nullptr);
    client->renderFormatChanged(format_);
    client_.set(client);
}

void OutStream::paused() {
    RenderClient *client = client_.get();
    if (client == nullptr)
        return;
    client_.set(nullptr);
    client->renderPaused();
    client_.set(client);
}

void OutStream::resumed() {
    if (RenderClient *client = client_.get())
        client->renderResumed();
}

void OutStream::nudge() {
    pw_stream_set_active(stream_.get(), false);
    pw_stream_set_active(stream_.get(), true);
}

bool OutStream::isReadyForBlock() const noexcept { return isStreaming_ && !isBlockUnplayed_; }

void OutStream::wake() noexcept {
    if (!isStreaming_)
        return;
    // Stays set if the wake-up fails or comes too late for this cycle. The next cycle then plays
    // this block and drops its own, so that the latency never grows.
    isBlockUnplayed_ = true;
    pw_stream_trigger_process(stream_.get());
}

void OutStream::process() noexcept {
    const RealtimeSlot<RenderClient>::Use client(client_);
    pw_buffer *buffer = pw_stream_dequeue_buffer(stream_.get());
    if (buffer == nullptr)
        return;
    // Renders the cycle's length: the buffer requests the previous cycle's. After a change, one
    // cycle of the old length would put playback ahead of capture for good.
    std::uint32_t frames = cycleFrames();
    if (frames == 0)
        frames = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(buffer->requested, maximumBlockFrames));
    const AudioBufferList list = planes(*buffer, frames, false);
    if (frames > 0) {
        if (client) {
            client->renderCycle(list, frames);
            if (isAudible(list, frames))
                lastHeardSeconds_ = monotonicSeconds();
        } else {
            for (std::uint32_t channel = 0; channel < list.bufferCount; ++channel)
                std::fill_n(list.data[channel], frames, 0.0F);
        }
    }
    finish(stream_.get(), buffer, frames);
    isBlockUnplayed_ = false;
}

} // namespace quorbel
