#include "platform/hardware/pipewire/StreamRouter.h"

#include "platform/hardware/pipewire/SystemTime.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <string>

namespace quorbel {
namespace {

constexpr double handshakeSeconds = 0.5;
constexpr double linkSeconds = 2.0;
constexpr long timerNanoseconds = 50'000'000;

/// The PulseAudio server sets this on a stream in the moment in which it answers the client.
bool isAnsweredPulseClient(const NodeRecord &node) {
    return !node.property("pulse.attr.tlength").empty();
}

bool isPulseClient(const NodeRecord &node) {
    return node.property("client.api") == "pipewire-pulse";
}

bool isSink(const NodeRecord &node) {
    return node.mediaClass() == "Audio/Sink" || node.mediaClass() == "Audio/Duplex";
}

} // namespace

bool isRoutable(const NodeRecord &node) {
    if (node.mediaClass() != "Stream/Output/Audio" || node.property("node.autoconnect") != "true")
        return false;
    // Each of these says that the stream must stay where it is; some would be destroyed by a move.
    constexpr std::array fixed{"node.dont-reconnect", "node.dont-move", "node.dont-fallback",
                               "node.exclusive"};
    return std::none_of(fixed.begin(), fixed.end(),
                        [&](const char *key) { return node.property(key) == "true"; });
}

StreamRouter::StreamRouter(ServerConnection &connection, ObjectRegistry &registry,
                           RouteJournal &journal)
    : connection_(connection), registry_(registry), journal_(journal) {
    timer_ = pw_loop_add_timer(
        pw_thread_loop_get_loop(connection_.loop()),
        [](void *self, std::uint64_t) { static_cast<StreamRouter *>(self)->checkDeadlines(); },
        this);
    registry_.addObserver(*this);
}

StreamRouter::~StreamRouter() {
    registry_.removeObserver(*this);
    if (timer_ != nullptr)
        pw_loop_destroy_source(pw_thread_loop_get_loop(connection_.loop()), timer_);
}

void StreamRouter::begin(std::uint32_t tapID, std::uint32_t outputDeviceID) {
    const NodeRecord *tap = registry_.node(tapID);
    if (tap == nullptr)
        return;
    tapID_ = tapID;
    tapSerial_ = tap->serial;
    outputDeviceID_ = outputDeviceID;
    routeAll();
}

void StreamRouter::end() {
    for (auto &[id, stream] : streams_) {
        // Servers of 0.3.65 stop telling of changed values when a program has left them in the
        // middle of asking; where the sound goes says who has decided.
        if (stream.phase == Phase::captured && hasLeftTap(id))
            journal_.released(stream.route);
        else if (stream.phase == Phase::routing || stream.phase == Phase::captured)
            putBack(stream, Phase::released);
    }
    streams_.clear();
    tapID_ = 0;
}

bool StreamRouter::isAnyLinkedTo(std::uint32_t tapID) const {
    return std::any_of(registry_.links().begin(), registry_.links().end(),
                       [&](const auto &entry) { return entry.second.inputNodeID == tapID; });
}

/// True if the stream plays into something else, and no longer into the tap.
bool StreamRouter::hasLeftTap(std::uint32_t streamID) const {
    return !registry_.isLinked(streamID, tapID_) &&
           std::any_of(registry_.links().begin(), registry_.links().end(),
                       [&](const auto &entry) { return entry.second.outputNodeID == streamID; });
}

void StreamRouter::routeAll() {
    if (!isOn() || !registry_.hasMetadata())
        return;
    for (const NodeRecord *node : registry_.nodes())
        consider(*node);
}

void StreamRouter::consider(const NodeRecord &node) {
    if (!isOn() || !registry_.hasMetadata() || !node.isComplete || streams_.contains(node.id) ||
        !isRoutable(node) || isVirtualSinkOutput(node))
        return;
    route(node);
}

bool StreamRouter::isVirtualSinkOutput(const NodeRecord &node) const {
    const std::string &group = node.property("node.link-group");
    if (group.empty())
        return false;
    const auto nodes = registry_.nodes();
    return std::any_of(nodes.begin(), nodes.end(), [&](const NodeRecord *other) {
        return other->mediaClass().starts_with("Audio/Sink") &&
               other->property("node.link-group") == group;
    });
}

void StreamRouter::route(const NodeRecord &node) {
    Stream &stream = streams_[node.id];
    stream.phase = Phase::routing;
    stream.linkDeadline = 0.0;
    stream.route = {node.id, node.serial, tapSerial_, {}, {}};
    // Values that we set ourselves are an ended stream's with the same id, and no choice of
    // anybody's.
    if (!isRoutedTo(registry_, node.id, tapSerial_)) {
        stream.route.targetObject = registry_.metadata(node.id, "target.object");
        stream.route.targetNode = registry_.metadata(node.id, "target.node");
    }
    journal_.routed(stream.route);
    routeToTap(registry_, stream.route);
    if (!registry_.ports(node.id, false).empty())
        portsArrived(stream, node);
}

void StreamRouter::portsArrived(Stream &stream, const NodeRecord &node) {
    if (stream.linkDeadline == 0.0) {
        stream.linkDeadline = monotonicSeconds() + linkSeconds;
        armTimer();
    }
    if (isPulseClient(node) && !isAnsweredPulseClient(node) && !stream.handshake)
        startHandshake(stream, node);
}

// A PulseAudio client is answered only once its stream is linked to a real sink; linked to the tap
// alone it would wait for ever. So it gets a short-lived passive link to the output device beside
// the tap's.
void StreamRouter::startHandshake(Stream &stream, const NodeRecord &node) {
    const auto outputs = registry_.ports(node.id, false);
    const auto inputs = registry_.ports(outputDeviceID_, true);
    const NodeRecord *device = registry_.node(outputDeviceID_);
    if (outputs.empty() || inputs.empty() || device == nullptr || !isSink(*device))
        return;
    pw_properties *properties =
        pw_properties_new(PW_KEY_LINK_PASSIVE, "true", PW_KEY_OBJECT_LINGER, "false", nullptr);
    pw_properties_setf(properties, PW_KEY_LINK_OUTPUT_NODE, "%u", node.id);
    pw_properties_setf(properties, PW_KEY_LINK_OUTPUT_PORT, "%u", outputs.front().id);
    pw_properties_setf(properties, PW_KEY_LINK_INPUT_NODE, "%u", device->id);
    pw_properties_setf(properties, PW_KEY_LINK_INPUT_PORT, "%u", inputs.front().id);
    stream.handshake.reset(static_cast<pw_proxy *>(
        pw_core_create_object(connection_.core(), "link-factory", PW_TYPE_INTERFACE_Link,
                              PW_VERSION_LINK, &properties->dict, 0)));
    pw_properties_free(properties);
    stream.handshakeDeadline = monotonicSeconds() + handshakeSeconds;
    armTimer();
}

void StreamRouter::putBack(Stream &stream, Phase phase) {
    stream.handshake.reset();
    stream.phase = phase;
    restoreRoute(registry_, stream.route);
    journal_.released(stream.route);
}

void StreamRouter::nodeChanged(const NodeRecord &node) {
    if (!isOn())
        return;
    const auto found = streams_.find(node.id);
    if (found == streams_.end()) {
        consider(node);
        // The sink half of a virtual device may become known after its output half was routed.
        if (isSink(node) && !node.property("node.link-group").empty())
            for (auto &[id, stream] : streams_)
                if (const NodeRecord *other = registry_.node(id); other != nullptr &&
                                                                  stream.phase <= Phase::captured &&
                                                                  isVirtualSinkOutput(*other))
                    putBack(stream, Phase::refused);
        return;
    }
    Stream &stream = found->second;
    if (!isAnsweredPulseClient(node))
        return;
    stream.handshake.reset();
    if (stream.phase == Phase::waiting)
        route(node);
}

void StreamRouter::nodeRemoved(const NodeRecord &node) {
    const auto found = streams_.find(node.id);
    if (found == streams_.end())
        return;
    if (found->second.phase <= Phase::captured)
        putBack(found->second, Phase::released);
    streams_.erase(found);
}

void StreamRouter::portAdded(const PortRecord &port) {
    if (port.isInput || port.isMonitor)
        return;
    const auto found = streams_.find(port.nodeID);
    const NodeRecord *node = registry_.node(port.nodeID);
    if (found != streams_.end() && node != nullptr && found->second.phase == Phase::routing)
        portsArrived(found->second, *node);
}

void StreamRouter::linkAdded(const LinkRecord &link) {
    const auto found = streams_.find(link.outputNodeID);
    if (found != streams_.end() && link.inputNodeID == tapID_ &&
        found->second.phase == Phase::routing)
        found->second.phase = Phase::captured;
}

void StreamRouter::metadataChanged(std::uint32_t subject, std::string_view key,
                                   const std::optional<MetadataValue> &value) {
    const auto found = streams_.find(subject);
    if (key != "target.object" || found == streams_.end())
        return;
    Stream &stream = found->second;
    const bool isOurs = value && value->value == std::to_string(tapSerial_);
    if (!isOurs && stream.phase <= Phase::captured) {
        // Somebody else decides now. The value is kept: should ours turn up after it (the two were
        // sent at the same moment), the stream is with us after all and goes back to where they
        // wanted it.
        stream.handshake.reset();
        stream.phase = Phase::released;
        journal_.released(stream.route);
        stream.route.targetObject = value;
        stream.route.targetNode = registry_.metadata(subject, "target.node");
    } else if (isOurs && stream.phase == Phase::released) {
        stream.phase = Phase::captured;
        journal_.routed(stream.route);
    }
}

void StreamRouter::metadataArrived() { routeAll(); }

void StreamRouter::metadataGone() {
    // A new session manager knows nothing of what was routed, and the values went with the old one.
    for (auto &[_, stream] : streams_)
        if (stream.phase <= Phase::captured)
            journal_.released(stream.route);
    streams_.clear();
}

void StreamRouter::checkDeadlines() {
    timerArmed_ = false;
    const double now = monotonicSeconds();
    bool isAnyPending = false;
    for (auto &[id, stream] : streams_) {
        if (stream.handshake && now >= stream.handshakeDeadline) {
            putBack(stream, Phase::waiting);
        } else if (stream.phase == Phase::routing && stream.linkDeadline > 0.0 &&
                   now >= stream.linkDeadline) {
            if (registry_.isLinked(id, tapID_))
                stream.phase = Phase::captured;
            else
                putBack(stream, Phase::refused);
        }
        isAnyPending = isAnyPending || stream.handshake || stream.phase == Phase::routing;
    }
    if (isAnyPending)
        armTimer();
}

void StreamRouter::armTimer() {
    if (timerArmed_ || timer_ == nullptr)
        return;
    timespec value{0, timerNanoseconds};
    pw_loop_update_timer(pw_thread_loop_get_loop(connection_.loop()), timer_, &value, nullptr,
                         false);
    timerArmed_ = true;
}

} // namespace quorbel
