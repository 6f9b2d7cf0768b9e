#include "soundserver/ClientStream.h"

#include "soundserver/ChannelLayout.h"
#include "soundserver/Waiting.h"

#include <spa/param/audio/format-utils.h>
#include <spa/param/latency-utils.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace quorbel::soundserver {

const pw_stream_events ClientStream::events = [] {
    pw_stream_events handlers{};
    handlers.version = PW_VERSION_STREAM_EVENTS;
    handlers.io_changed = [](void *data, std::uint32_t id, void *area, std::uint32_t) {
        if (id == SPA_IO_Position)
            static_cast<ClientStream *>(data)->position_ = static_cast<spa_io_position *>(area);
    };
    handlers.param_changed = [](void *data, std::uint32_t id, const spa_pod *parameter) {
        if (id == SPA_PARAM_Latency && parameter != nullptr)
            static_cast<ClientStream *>(data)->onLatencyOf(parameter);
    };
    handlers.process = [](void *data) { static_cast<ClientStream *>(data)->onProcess(); };
    return handlers;
}();

ClientStream::~ClientStream() { disconnect(); }

void ClientStream::connect(pw_direction direction, pw_properties *properties, int sampleRate,
                           int channels) {
    direction_ = direction;
    channels_ = static_cast<std::uint32_t>(channels);
    pw_properties_set(properties, PW_KEY_MEDIA_TYPE, "Audio");
    pw_properties_set(properties, PW_KEY_NODE_NAME, name_.c_str());
    pw_properties_set(properties, PW_KEY_APP_NAME, name_.c_str());

    const bool isDevice = pw_properties_get(properties, PW_KEY_MEDIA_CLASS) != nullptr;

    std::uint8_t storage[1024];
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(storage, sizeof storage);
    spa_audio_info_raw format{};
    format.format = SPA_AUDIO_FORMAT_F32P;
    format.rate = static_cast<std::uint32_t>(sampleRate);
    format.channels = channels_;
    std::ranges::transform(channelLayout(channels), format.position, &Channel::position);
    const spa_pod *parameters[] = {
        spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format)};

    const GraphClient::Guard guard(client_);
    const bool isRecorder = direction == PW_DIRECTION_INPUT && !isDevice;
    if (isRecorder) {
        // Makes the stream look like a program of its own.
        pw_properties_set(properties, PW_KEY_APP_PROCESS_ID, name_.c_str());
    }
    stream_ = pw_stream_new(isRecorder ? client_.recordingCore() : client_.playingCore(),
                            name_.c_str(), properties);
    if (stream_ == nullptr)
        throw ServerError("no stream " + name_);
    pw_stream_add_listener(stream_, &listener_, &events, this);
    const auto flags =
        static_cast<pw_stream_flags>(PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS |
                                     (isDevice ? PW_STREAM_FLAG_NONE : PW_STREAM_FLAG_AUTOCONNECT));
    const int result = pw_stream_connect(stream_, direction, PW_ID_ANY, flags, parameters, 1);
    if (result < 0)
        throw ServerError("cannot connect " + name_ + ": " + std::strerror(-result));
}

void ClientStream::announceLatency(int frames) {
    const GraphClient::Guard guard(client_);
    latencyFrames_ = frames;
    sendLatency();
}

void ClientStream::sendLatency() {
    std::uint8_t storage[256];
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(storage, sizeof storage);
    spa_latency_info latency = SPA_LATENCY_INFO(SPA_DIRECTION_INPUT);
    latency.min_rate = latency.max_rate = static_cast<std::uint32_t>(latencyFrames_);
    const spa_pod *parameters[] = {spa_latency_build(&builder, SPA_PARAM_Latency, &latency)};
    pw_stream_update_params(stream_, parameters, 1);
}

void ClientStream::onLatencyOf(const spa_pod *parameter) {
    // The library keeps one latency; in 1.4 it is the last one received. The players' must not
    // replace the device's.
    spa_latency_info latency{};
    if (latencyFrames_ != 0 && spa_latency_parse(parameter, &latency) >= 0 &&
        latency.direction == SPA_DIRECTION_OUTPUT)
        sendLatency();
}

void ClientStream::disconnect() {
    if (stream_ != nullptr) {
        const GraphClient::Guard guard(client_);
        pw_stream_destroy(stream_);
        stream_ = nullptr;
    }
}

void ClientStream::onProcess() noexcept {
    pw_buffer *buffer = pw_stream_dequeue_buffer(stream_);
    if (buffer == nullptr)
        return;
    Cycle cycle;
    if (const spa_io_position *position = position_) {
        cycle.position = position->clock.position;
        cycle.nanoseconds = position->clock.nsec;
        cycle.frames = static_cast<std::uint32_t>(position->clock.duration);
    }
    spa_data *planes = buffer->buffer->datas;
    const std::span data(planes, std::min(buffer->buffer->n_datas, channels_));
    if (data.size() == channels_ &&
        std::ranges::all_of(data, [](const spa_data &plane) { return plane.data != nullptr; })) {
        std::uint32_t frames = 0;
        std::uint32_t offset = 0;
        if (direction_ == PW_DIRECTION_INPUT) {
            offset = planes[0].chunk->offset;
            frames = planes[0].chunk->size / sizeof(float);
        } else {
            const auto wanted = static_cast<std::uint32_t>(buffer->requested);
            frames = std::min<std::uint32_t>(wanted != 0 ? wanted : cycle.frames,
                                             planes[0].maxsize / sizeof(float));
        }
        std::array<float *, SPA_AUDIO_MAX_CHANNELS> pointers{};
        std::ranges::transform(data, pointers.begin(), [&](const spa_data &plane) {
            return reinterpret_cast<float *>(static_cast<std::uint8_t *>(plane.data) + offset);
        });
        frames = process(cycle, {pointers.data(), data.size()}, frames);
        if (direction_ == PW_DIRECTION_OUTPUT) {
            for (const spa_data &plane : data) {
                plane.chunk->offset = 0;
                plane.chunk->stride = sizeof(float);
                plane.chunk->size = frames * static_cast<std::uint32_t>(sizeof(float));
            }
        }
    }
    pw_stream_queue_buffer(stream_, buffer);
    ++cycles_;
}

std::int64_t ClientStream::reportedDelay() const {
    const GraphClient::Guard guard(client_);
    pw_time time{};
    pw_stream_get_time_n(stream_, &time, sizeof time);
    return time.delay;
}

void ClientStream::waitUntilRunning() const {
    waitFor(name_ + " takes part in the graph", 5.0, [&] { return cycles() > 0; });
}

} // namespace quorbel::soundserver
