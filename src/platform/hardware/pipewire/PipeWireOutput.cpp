#include "platform/hardware/pipewire/PipeWireOutput.h"

#include <cerrno>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

namespace quorbel {
namespace {

/// The session manager links within milliseconds; some of its starts forget what was there before.
constexpr double linkSeconds = 0.5;
/// After this much inaudible output the device may rest.
constexpr double tailSeconds = 2.0;
/// How often the control side looks at what the real-time side has done.
constexpr double renderLookSeconds = 0.002;
constexpr long tailCheckNanoseconds = 200'000'000;

} // namespace

Status PipeWireHardware::Output::setDevice(AudioObjectID device) {
    const LoopLock lock(hardware_.connection_->loop());
    const NodeRecord *node = hardware_.registry_->objects().node(device);
    if (node == nullptr || !isOutputDevice(*node))
        return -ENODEV;
    device_ = device;
    return statusOK;
}

StreamFormat PipeWireHardware::Output::nativeFormat() const {
    if (device_ == 0)
        return {};
    std::vector<std::uint32_t> channels;
    if (hardware_.streamChannelCounts(device_, Scope::output, channels) != statusOK ||
        channels.empty())
        return {};
    const LoopLock lock(hardware_.connection_->loop());
    return {hardware_.graphRate(), channels.front()};
}

Status PipeWireHardware::Output::start(RenderClient &client) {
    ServerConnection &connection = *hardware_.connection_;
    const ServerObjects &objects = hardware_.registry_->objects();
    const LoopLock lock(connection.loop());
    if (connection.isLost())
        return -EPIPE;
    const NodeRecord *device = objects.node(device_);
    if (device == nullptr)
        return -ENODEV;
    startedOn_ = device->name(); // the device itself may go while we wait
    stream_ = std::make_unique<OutStream>(connection, hardware_.pair_, client);
    Status status = stream_->connect(startedOn_, {hardware_.graphRate(), 2});
    const auto isDecided = [&] {
        return stream_->error() != statusOK || objects.node(device_) == nullptr ||
               objects.isLinked(stream_->nodeID(), device_);
    };
    if (status == statusOK)
        status = connection.waitUntil(isDecided, linkSeconds);
    if (status == -ETIMEDOUT) {
        hardware_.linkOutput(*stream_, device_);
        status = connection.waitUntil(isDecided, answerSeconds);
    }
    if (status == statusOK)
        status = stream_->error();
    if (status == statusOK && objects.node(device_) == nullptr)
        status = -ENODEV;
    if (status != statusOK) {
        stream_.reset();
        return status;
    }
    client_ = &client;
    startKeeping();
    hardware_.output_ = this;
    hardware_.lookAround();
    return statusOK;
}

void PipeWireHardware::Output::startKeeping() {
    keep_ = std::make_unique<KeepStream>(*hardware_.connection_, hardware_.pair_);
    if (keep_->connect(startedOn_) == statusOK && tailTimer_ == nullptr)
        watchTail();
}

void PipeWireHardware::Output::rebuild() {
    keep_.reset();
    stream_.reset();
    client_->renderPaused();
    stream_ = std::make_unique<OutStream>(*hardware_.connection_, hardware_.pair_, *client_);
    stream_->connect(startedOn_, {hardware_.graphRate(), 2});
    startKeeping();
}

void PipeWireHardware::Output::renderUntil(const std::function<bool()> &condition, double seconds) {
    if (!stream_)
        return;
    const LoopLock lock(hardware_.connection_->loop());
    hardware_.connection_->waitUntil(
        [&] { return condition() || !stream_->isStreaming() || stream_->error() != statusOK; },
        seconds, renderLookSeconds);
}

void PipeWireHardware::Output::stop() {
    if (!stream_)
        return;
    const LoopLock lock(hardware_.connection_->loop());
    hardware_.output_ = nullptr;
    client_ = nullptr;
    if (tailTimer_ != nullptr)
        pw_loop_destroy_source(pw_thread_loop_get_loop(hardware_.connection_->loop()),
                               std::exchange(tailTimer_, nullptr));
    keep_.reset();
    stream_.reset();
}

/// Looks now and then whether something is still to be heard out.
void PipeWireHardware::Output::watchTail() {
    pw_loop *loop = pw_thread_loop_get_loop(hardware_.connection_->loop());
    tailTimer_ = pw_loop_add_timer(
        loop,
        [](void *self, std::uint64_t) {
            auto &output = *static_cast<Output *>(self);
            if (output.keep_->isGone())
                output.startKeeping();
            output.keep_->setActive(output.holdsTail_ &&
                                    output.stream_->wasHeardWithin(tailSeconds));
        },
        this);
    timespec interval{0, tailCheckNanoseconds};
    if (tailTimer_ != nullptr)
        pw_loop_update_timer(loop, tailTimer_, &interval, &interval, false);
}

} // namespace quorbel
