#include "platform/hardware/pipewire/PipeWireOutput.h"

#include "platform/hardware/pipewire/ServerConnection.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace quorbel {
namespace {

/// Deadline of the session manager's links, in seconds; it may miss nodes older than itself.
constexpr double linkSeconds = 0.2;
/// Longest wait for the links: ports of some devices appear later than their node.
constexpr double longestLinkSeconds = 1.6;
/// Duration of inaudible output before the device may rest.
constexpr double tailSeconds = 2.0;
/// Interval at which the control side polls the real-time side's progress.
constexpr double renderLookSeconds = 0.002;
/// Interval of polls for sound while another client keeps the device running.
constexpr double soundLookSeconds = 0.25;
/// Delay that disarms the tail timer.
constexpr double never = std::numeric_limits<double>::infinity();

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

void PipeWireHardware::Output::setStaysOnDevice(bool staysOnDevice) {
    if (!hardware_.connection_)
        return;
    const LoopLock lock(hardware_.connection_->loop());
    staysOnDevice_ = staysOnDevice;
    if (stream_)
        followDevice();
}

void PipeWireHardware::Output::followDevice() {
    if (staysOnDevice_ && hardware_.registry_->objects().node(device_) == nullptr)
        stream_->silence();
}

void PipeWireHardware::Output::setProcessingDelay(double seconds) {
    const LoopLock lock(hardware_.connection_->loop());
    hardware_.pair_.processingSeconds = seconds;
    if (hardware_.tap_)
        hardware_.tap_->announceLatency();
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
    for (double waited = linkSeconds; status == -ETIMEDOUT && waited < longestLinkSeconds;
         waited += linkSeconds) {
        hardware_.dropOutputLinks();
        hardware_.linkOutput(*stream_, device_);
        status = connection.waitUntil(isDecided, linkSeconds);
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
    hardware_.output_ = this;
    hardware_.isPairSeen_ = false;
    hardware_.lookAround();
    return statusOK;
}

void PipeWireHardware::Output::rebuild() {
    stream_.reset();
    client_->renderPaused();
    stream_ = std::make_unique<OutStream>(*hardware_.connection_, hardware_.pair_, *client_);
    stream_->connect(startedOn_, {hardware_.graphRate(), 2});
    followDevice();
}

void PipeWireHardware::Output::renderUntil(const std::function<bool()> &condition, double seconds) {
    if (!stream_)
        return;
    const LoopLock lock(hardware_.connection_->loop());
    hardware_.connection_->waitUntil(
        [&] {
            return condition() || !stream_->isStreaming() || stream_->isSilenced() ||
                   stream_->error() != statusOK;
        },
        seconds, renderLookSeconds);
}

void PipeWireHardware::Output::stop() {
    if (!stream_)
        return;
    const LoopLock lock(hardware_.connection_->loop());
    hardware_.outputStopped();
    client_ = nullptr;
    if (tailTimer_ != nullptr)
        pw_loop_destroy_source(pw_thread_loop_get_loop(hardware_.connection_->loop()),
                               std::exchange(tailTimer_, nullptr));
    hold_.reset();
    wasStreaming_ = false;
    stream_.reset();
}

void PipeWireHardware::Output::setHoldsTail(bool holdsTail) {
    if (!hardware_.connection_)
        return;
    const LoopLock lock(hardware_.connection_->loop());
    holdsTail_ = holdsTail;
    if (stream_)
        followTail();
}

void PipeWireHardware::Output::followTail() {
    const double now = monotonicSeconds();
    const bool isStreaming = stream_->isStreaming();
    if (isStreaming && !std::exchange(wasStreaming_, isStreaming))
        streamingSince_ = now;
    wasStreaming_ = isStreaming;
    if (!holdsTail_) {
        hold_.reset();
        setTailTimer(never);
        return;
    }
    if (!hold_)
        hold_ = std::make_unique<DeviceHold>(*hardware_.connection_, *hardware_.registry_);
    // Holds from the first cycle on: after the last application's stop it would be too late.
    const double left = std::max(stream_->lastHeardSeconds(), streamingSince_) + tailSeconds - now;
    hold_->setHeld(isStreaming && left > 0.0);
    if (isStreaming)
        setTailTimer(left > 0.0 ? left : soundLookSeconds);
    else
        setTailTimer(never);
}

/// Arms the tail timer `seconds` from now, or disarms it if `never`.
void PipeWireHardware::Output::setTailTimer(double seconds) {
    pw_loop *loop = pw_thread_loop_get_loop(hardware_.connection_->loop());
    if (tailTimer_ == nullptr && seconds != never)
        tailTimer_ = pw_loop_add_timer(
            loop, [](void *self, std::uint64_t) { static_cast<Output *>(self)->followTail(); },
            this);
    if (tailTimer_ != nullptr)
        hardware_.connection_->setTimer(tailTimer_, seconds);
}

} // namespace quorbel
