// The hardware layer's view of the server: devices and programs, and reports of their changes.

#include "platform/hardware/pipewire/PipeWireHardware.h"
#include "platform/hardware/pipewire/PipeWireOutput.h"
#include "platform/hardware/routing/OutputIdentities.h"
#include "platform/hardware/routing/ProgramDecision.h"
#include "platform/hardware/routing/StreamRules.h"

#include <spa/utils/json.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

namespace quorbel {
namespace {

bool isDevice(const NodeRecord &node) {
    return node.isComplete && (isOutputDevice(node) || node.mediaClass() == "Audio/Source");
}

/// Extracts the name from {"name":"…"}, the form of the session manager's defaults.
std::string nameInJson(const std::string &text) {
    std::array<spa_json, 2> iterators{};
    std::array<char, 1024> name{};
    spa_json_init(&iterators[0], text.data(), text.size());
    if (spa_json_enter_object(&iterators[0], &iterators[1]) <= 0)
        return {};
    std::array<char, 64> key{};
    while (spa_json_get_string(&iterators[1], key.data(), key.size()) > 0) {
        if (std::string_view(key.data()) == "name")
            return spa_json_get_string(&iterators[1], name.data(), name.size()) > 0 ? name.data()
                                                                                    : "";
        const char *skipped = nullptr;
        if (spa_json_next(&iterators[1], &skipped) <= 0)
            break;
    }
    return {};
}

} // namespace

// Devices

const NodeRecord *PipeWireHardware::defaultSink() const {
    const auto value = registry_->objects().metadata(0, "default.audio.sink");
    return value ? registry_->objects().nodeNamed(nameInJson(value->value)) : nullptr;
}

Status PipeWireHardware::processObject(std::int32_t pid, AudioObjectID &process) {
    if (pid != getpid())
        return -ESRCH;
    const LoopLock lock(connection_->loop());
    if (connection_->isLost())
        return -EPIPE;
    const std::uint32_t id = pw_proxy_get_bound_id(
        reinterpret_cast<pw_proxy *>(pw_core_get_client(connection_->core())));
    if (id == SPA_ID_INVALID)
        return -ESRCH;
    process = id;
    return statusOK;
}

Status PipeWireHardware::defaultOutputDevice(AudioObjectID &device) {
    const LoopLock lock(connection_->loop());
    if (connection_->isLost())
        return -EPIPE;
    const NodeRecord *sink = defaultSink();
    if (sink == nullptr)
        return -ENOENT;
    device = sink->id;
    return statusOK;
}

Status PipeWireHardware::deviceList(std::vector<AudioObjectID> &devices) {
    const LoopLock lock(connection_->loop());
    if (connection_->isLost())
        return -EPIPE;
    devices.clear();
    for (const auto &[id, node] : registry_->objects().nodes())
        if (isDevice(node))
            devices.push_back(id);
    return statusOK;
}

std::uint64_t PipeWireHardware::deviceSerial(AudioObjectID device) {
    const LoopLock lock(connection_->loop());
    const NodeRecord *node = registry_->objects().node(device);
    return node == nullptr ? 0 : node->serial;
}

std::optional<std::string> PipeWireHardware::deviceUID(AudioObjectID device) {
    const LoopLock lock(connection_->loop());
    const NodeRecord *node = registry_->objects().node(device);
    if (node == nullptr || node->name().empty())
        return std::nullopt;
    return node->name();
}

std::optional<std::string> PipeWireHardware::deviceName(AudioObjectID device) {
    const LoopLock lock(connection_->loop());
    const NodeRecord *node = registry_->objects().node(device);
    if (node == nullptr)
        return std::nullopt;
    for (const char *key : {"node.description", "node.nick", "node.name"})
        if (const std::string &text = node->property(key); !text.empty())
            return text;
    return std::nullopt;
}

std::optional<std::string> PipeWireHardware::deviceManufacturer(AudioObjectID device) {
    const LoopLock lock(connection_->loop());
    const NodeRecord *node = registry_->objects().node(device);
    const DeviceRecord *owner = node == nullptr ? nullptr : registry_->deviceOf(*node);
    if (owner == nullptr)
        return std::nullopt;
    const std::string &vendor = propertyValue(owner->properties, "device.vendor.name");
    return vendor.empty() ? std::nullopt : std::optional(vendor);
}

OutputIdentity PipeWireHardware::outputIdentity(AudioObjectID device) {
    const LoopLock lock(connection_->loop());
    const auto known = knownDevices_.find(device);
    return known == knownDevices_.end() ? OutputIdentity{} : known->second;
}

Status PipeWireHardware::streamChannelCounts(AudioObjectID device, Scope scope,
                                             std::vector<std::uint32_t> &channelsPerBuffer) {
    const LoopLock lock(connection_->loop());
    const NodeRecord *node = registry_->objects().node(device);
    if (node == nullptr)
        return -ENODEV;
    channelsPerBuffer.clear();
    const bool isOutputScope = scope == Scope::output;
    const bool hasScope =
        node->mediaClass() == "Audio/Duplex" || isOutputDevice(*node) == isOutputScope;
    if (!hasScope)
        return statusOK;
    auto channels = static_cast<std::uint32_t>(
        std::strtoul(node->property("audio.channels").c_str(), nullptr, 10));
    if (channels == 0)
        channels =
            static_cast<std::uint32_t>(registry_->objects().ports(device, isOutputScope).size());
    if (channels > 0)
        channelsPerBuffer.push_back(channels);
    return statusOK;
}

// Programs

void PipeWireHardware::setProgramRules(const ProgramRules &rules) {
    const LoopLock lock(connection_->loop());
    programRules_ = rules;
    if (router_)
        router_->setRules(rules);
    lookSoon();
    tell(HardwareProperty::playbackStreams);
}

std::vector<PlaybackStream> PipeWireHardware::playbackStreams() {
    const LoopLock lock(connection_->loop());
    std::vector<PlaybackStream> streams;
    if (connection_->isLost())
        return streams;
    const ServerObjects &objects = registry_->objects();
    const bool isRouting = router_ && router_->isOn();
    const NodeRecord *home = isRouting ? nullptr : defaultSink();
    const bool isSurroundOutput = isRouting
                                      ? router_->isSurroundOutput()
                                      : home != nullptr && isSurroundDevice(objects, home->id);
    for (const auto &[id, node] : objects.nodes()) {
        if (node.mediaClass() != "Stream/Output/Audio" || !node.isComplete)
            continue;
        StreamTreatment treatment = StreamTreatment::ready;
        if (isRouting)
            treatment = router_->treatmentOf(node);
        else if (const StreamTreatment decided =
                     decideTreatment(objects, programRules_, node, isSurroundOutput);
                 decided != StreamTreatment::processed)
            treatment = decided;
        else if (isVirtualSinkOutput(objects, node))
            treatment = StreamTreatment::copy;
        const ProgramNames program = programNames(objects, node);
        streams.push_back({.serial = node.serial,
                           .program = program,
                           .title = node.property("media.name"),
                           .isCall = isCall(programRules_.callMarks, node, program),
                           .isSurround = isSurround(node, isSurroundOutput),
                           .treatment = treatment});
    }
    return streams;
}

// Changes

Status PipeWireHardware::addListener(HardwareProperty property, HardwareListener &listener) {
    {
        const std::lock_guard guard(listenersMutex_);
        listeners_.emplace_back(property, &listener);
    }
    // Reports a loss that preceded the first listener.
    const LoopLock lock(connection_->loop());
    if (property == HardwareProperty::connection && connection_->isLost())
        listener.hardwareLost(-EPIPE);
    return statusOK;
}

Status PipeWireHardware::removeListener(HardwareProperty property, HardwareListener &listener) {
    const std::lock_guard guard(listenersMutex_);
    std::erase(listeners_, std::pair{property, &listener});
    return statusOK;
}

void PipeWireHardware::tell(HardwareProperty property, Status status) {
    const std::lock_guard guard(listenersMutex_);
    for (const auto &[wanted, listener] : listeners_)
        if (wanted == property)
            listener->propertyChanged(property, status);
}

void PipeWireHardware::nodeChanged(const NodeRecord &node) {
    if (router_)
        router_->nodeChanged(node);
    pairMayHaveChanged();
    if (isPlayback(node))
        tell(HardwareProperty::playbackStreams);
    if (!isDevice(node))
        return;
    OutputIdentity identity = identityOf(node, registry_->deviceOf(node));
    const auto [known, isNew] = knownDevices_.try_emplace(node.id);
    if (!isNew && known->second == identity)
        return;
    known->second = std::move(identity);
    tell(HardwareProperty::deviceList);
}

void PipeWireHardware::clientChanged(std::uint32_t clientID) {
    if (router_)
        router_->clientChanged(clientID);
    tell(HardwareProperty::playbackStreams);
}

void PipeWireHardware::deviceChanged(std::uint32_t) {
    bool isTold = true;
    for (auto &[id, identity] : knownDevices_) {
        const NodeRecord &node = *registry_->objects().node(id);
        // A node outlives its device briefly and keeps its identity until then.
        const DeviceRecord *device = registry_->deviceOf(node);
        if (device == nullptr)
            continue;
        OutputIdentity now = identityOf(node, device);
        isTold = isTold && now == identity;
        identity = std::move(now);
    }
    if (!isTold)
        tell(HardwareProperty::deviceList);
}

void PipeWireHardware::nodeRemoved(const NodeRecord &node) {
    if (output_ != nullptr)
        output_->followDevice();
    if (router_)
        router_->nodeRemoved(node);
    pairMayHaveChanged();
    if (isPlayback(node))
        tell(HardwareProperty::playbackStreams);
    if (knownDevices_.erase(node.id) > 0)
        tell(HardwareProperty::deviceList);
}

void PipeWireHardware::portAdded(const PortRecord &port) {
    if (router_)
        router_->portAdded(port);
    pairMayHaveChanged();
    devicePortsChanged(port);
}

void PipeWireHardware::portRemoved(const PortRecord &port) {
    if (router_)
        router_->portRemoved(port);
    pairMayHaveChanged();
    devicePortsChanged(port);
}

/// Some devices report their channel count only through their ports, which come later.
void PipeWireHardware::devicePortsChanged(const PortRecord &port) {
    if (!port.isMonitor && knownDevices_.contains(port.nodeID))
        tell(HardwareProperty::deviceList);
}

void PipeWireHardware::linkAdded(const LinkRecord &link) {
    if (router_)
        router_->linkAdded(link);
    pairMayHaveChanged();
    tell(HardwareProperty::playbackStreams);
}

void PipeWireHardware::linkRemoved(const LinkRecord &link) {
    if (router_)
        router_->linkRemoved(link);
    pairMayHaveChanged();
    tell(HardwareProperty::playbackStreams);
}

void PipeWireHardware::metadataChanged(std::uint32_t subject, std::string_view key,
                                       const std::optional<MetadataValue> &value) {
    if (router_)
        router_->metadataChanged(subject, key, value);
    lookSoon();
    if (subject == 0 && key == "default.audio.sink") {
        isPairSeen_ = false; // its ends name the default device
        tell(HardwareProperty::defaultOutput);
    }
}

void PipeWireHardware::metadataRead() {
    if (router_)
        router_->metadataRead();
    lookSoon();
}

void PipeWireHardware::metadataArrived() {
    if (isSettled_)
        supervisor_.sessionManagerReturned();
    if (router_)
        router_->metadataArrived();
    pairMayHaveChanged();
    tell(HardwareProperty::defaultOutput);
}

void PipeWireHardware::metadataGone() {
    if (router_)
        router_->metadataGone();
}

} // namespace quorbel
