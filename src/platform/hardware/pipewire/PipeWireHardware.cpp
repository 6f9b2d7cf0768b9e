#include "platform/hardware/pipewire/PipeWireHardware.h"

#include "platform/hardware/SystemHardware.h"
#include "platform/hardware/pipewire/PipeWireOutput.h"
#include "platform/hardware/routing/OutputIdentities.h"
#include "platform/hardware/routing/StreamRules.h"

#include <spa/utils/json.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

namespace quorbel {
namespace {

// Deadlines of the server's answers around a routing; both take milliseconds.
constexpr double restoreSeconds = 0.5;
constexpr double unlinkSeconds = 0.3;

// Deadline of a server that has just come back; after it the next attempt follows soon.
constexpr double reconnectSeconds = 0.2;

/// Not an object of the server: the capture device is the scheduling group of tap and output.
constexpr AudioObjectID captureDeviceID = 0xC0000001;
constexpr IOProcID theIOProc = 1;

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

std::unique_ptr<AudioHardware> makeSystemHardware(Status &status) {
    return PipeWireHardware::connect(status);
}

std::string systemHardwareLibrary() { return std::string("PipeWire ") + pw_get_library_version(); }

std::unique_ptr<PipeWireHardware> PipeWireHardware::connect(Status &status) {
    std::unique_ptr<PipeWireHardware> hardware(new PipeWireHardware);
    status = hardware->open(answerSeconds);
    if (status != statusOK)
        return nullptr;
    return hardware;
}

Status PipeWireHardware::open(double seconds) {
    Status status = statusOK;
    auto connection = ServerConnection::open(status);
    if (!connection)
        return status;
    close();
    connection_ = std::move(connection);
    const LoopLock lock(connection_->loop());
    registry_ = std::make_unique<ObjectRegistry>(*connection_);
    registry_->setObserver(this);
    connection_->setLostHandler([this](Status lost) { tell(HardwareProperty::connection, lost); });
    pw_loop *loop = pw_thread_loop_get_loop(connection_->loop());
    lookEvent_ = pw_loop_add_event(
        loop,
        [](void *self, std::uint64_t) { static_cast<PipeWireHardware *>(self)->lookAround(); },
        this);
    timer_ = pw_loop_add_timer(
        loop,
        [](void *self, std::uint64_t) { static_cast<PipeWireHardware *>(self)->lookAround(); },
        this);
    pair_.changed = [this] { pairMayHaveChanged(); };
    return settle(seconds);
}

/// Waits until the server has reported its objects.
Status PipeWireHardware::settle(double seconds) {
    // The first answer names every object, the second brings their properties.
    Status status = connection_->roundTrip(seconds);
    if (status == statusOK)
        status = connection_->roundTrip(seconds);
    isSettled_ = status == statusOK;
    return status;
}

PipeWireHardware::~PipeWireHardware() { close(); }

void PipeWireHardware::close() {
    if (!connection_)
        return;
    isSettled_ = false;
    {
        const LoopLock lock(connection_->loop());
        connection_->setLostHandler(nullptr);
        stopRouting();
        pair_.changed = nullptr;
        pw_loop *loop = pw_thread_loop_get_loop(connection_->loop());
        for (spa_source **source : {&lookEvent_, &timer_})
            if (*source != nullptr)
                pw_loop_destroy_source(loop, std::exchange(*source, nullptr));
        tap_.reset();
        router_.reset();
        if (registry_)
            registry_->setObserver(nullptr);
        registry_.reset();
    }
    connection_.reset();
    knownDevices_.clear();
}

Status PipeWireHardware::reconnect() {
    {
        const LoopLock lock(connection_->loop());
        if (!connection_->isLost() && isSettled_)
            return statusOK;
        if (tap_ || captureDevice_ != 0 || output_ != nullptr)
            return -EBUSY;
        if (!connection_->isLost())
            return settle(reconnectSeconds); // a slow server, which has had more time since
    }
    return open(reconnectSeconds);
}

double PipeWireHardware::graphRate() const {
    if (tap_ && tap_->format().isValid())
        return tap_->format().sampleRate;
    const double forced = registry_->setting("clock.force-rate");
    return forced > 0.0 ? forced : registry_->setting("clock.rate");
}

const NodeRecord *PipeWireHardware::defaultSink() const {
    const auto value = registry_->objects().metadata(0, "default.audio.sink");
    return value ? registry_->objects().nodeNamed(nameInJson(value->value)) : nullptr;
}

// Devices

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

Status PipeWireHardware::addListener(HardwareProperty property, HardwareListener &listener) {
    {
        const std::lock_guard guard(listenersMutex_);
        listeners_.emplace_back(property, &listener);
    }
    // A loss before the first listener is reported here.
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
    for (const auto &[wanted, listener] : listeners_) {
        if (wanted != property)
            continue;
        switch (property) {
        case HardwareProperty::deviceList:
            listener->deviceListChanged();
            break;
        case HardwareProperty::defaultOutput:
            listener->defaultOutputChanged();
            break;
        case HardwareProperty::connection:
            listener->hardwareLost(status);
            break;
        case HardwareProperty::playbackStreams:
            listener->playbackStreamsChanged();
            break;
        }
    }
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

void PipeWireHardware::deviceChanged(std::uint32_t) {
    bool isTold = true;
    for (auto &[id, identity] : knownDevices_) {
        const NodeRecord &node = *registry_->objects().node(id);
        // A node whose device has gone goes too, and keeps its identity until then.
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

// Capture

Status PipeWireHardware::createProcessTap(const TapDescription &description, AudioObjectID &tap) {
    using enum TapDescription::MuteBehavior;
    // Routing mutes, so no other behaviour is possible.
    if (description.muteBehavior != mutedWhenTapped || !description.isPrivate)
        return -ENOTSUP;
    const LoopLock lock(connection_->loop());
    if (connection_->isLost())
        return -EPIPE;
    if (tap_)
        return -EBUSY;
    journal_ = std::make_shared<RouteJournal>(connection_->serverCookie());
    router_ = std::make_unique<StreamRouter>(registry_->objects(), *registry_, *journal_);
    router_->setRules(programRules_);
    registry_->refreshMetadata(restoreSeconds);
    router_->restore(journal_->leftovers());
    isRestored_ = true;
    awaitedReleases_ = 0;
    mustBeDevice_ = router_->needsDeviceTap();
    tap_ = std::make_unique<TapStream>(*connection_, pair_);
    Status status = tap_->connect(mustBeDevice_);
    if (status == statusOK)
        status = connection_->waitUntil(
            [&] {
                return tap_->error() != statusOK ||
                       (registry_->objects().node(tap_->nodeID()) != nullptr &&
                        registry_->objects().ports(tap_->nodeID(), true).size() >= 2);
            },
            answerSeconds);
    if (status == statusOK)
        status = tap_->error();
    if (status != statusOK) {
        tap_.reset();
        router_.reset();
        journal_->allRestored();
        journal_.reset();
        return status;
    }
    tapHandle_ = tap_->nodeID();
    tap = tapHandle_;
    return statusOK;
}

Status PipeWireHardware::destroyProcessTap(AudioObjectID tap) {
    const LoopLock lock(connection_->loop());
    if (!tap_ || tapHandle_ != tap)
        return -ENOENT;
    stopRouting();
    tap_.reset();
    router_.reset();
    // Streams that could not be restored are left to the watchdog.
    if (isRestored_)
        journal_->allRestored();
    journal_.reset();
    return statusOK;
}

Status PipeWireHardware::tapFormat(AudioObjectID tap, StreamFormat &format) {
    const LoopLock lock(connection_->loop());
    if (!tap_ || tapHandle_ != tap)
        return -ENOENT;
    // Before the first stream is routed to the tap, its format will be the graph's rate.
    format = tap_->format().isValid() ? tap_->format() : StreamFormat{graphRate(), 2};
    return statusOK;
}

Status PipeWireHardware::createAggregateDevice(const AggregateDescription &description,
                                               AudioObjectID &device) {
    const LoopLock lock(connection_->loop());
    if (connection_->isLost())
        return -EPIPE;
    if (!tap_ || captureDevice_ != 0)
        return -EBUSY;
    if (registry_->objects().nodeNamed(description.mainDeviceUID) == nullptr)
        return -ENODEV;
    captureDevice_ = captureDeviceID;
    device = captureDevice_;
    return statusOK;
}

Status PipeWireHardware::destroyAggregateDevice(AudioObjectID device) {
    if (device != captureDevice_)
        return -ENOENT;
    captureDevice_ = 0;
    return statusOK;
}

Status PipeWireHardware::nominalSampleRate(AudioObjectID device, double &rate) {
    if (device != captureDevice_)
        return -ENOENT;
    const LoopLock lock(connection_->loop());
    rate = graphRate();
    return statusOK;
}

Status PipeWireHardware::createIOProc(AudioObjectID device, IOClient &client, IOProcID &proc) {
    if (device != captureDevice_ || ioClient_ != nullptr)
        return -EBUSY;
    ioClient_ = &client;
    proc = theIOProc;
    return statusOK;
}

Status PipeWireHardware::destroyIOProc(AudioObjectID device, IOProcID proc) {
    if (device != captureDevice_ || proc != theIOProc)
        return -ENOENT;
    ioClient_ = nullptr;
    return statusOK;
}

Status PipeWireHardware::startDevice(AudioObjectID device, IOProcID proc) {
    if (device != captureDevice_ || proc != theIOProc || ioClient_ == nullptr)
        return -ENOENT;
    const LoopLock lock(connection_->loop());
    if (connection_->isLost() || !tap_)
        return -EPIPE;
    tap_->setClient(ioClient_, {graphRate(), 2});
    isIORunning_ = true;
    isPairSeen_ = false;
    lookAround();
    return statusOK;
}

Status PipeWireHardware::stopDevice(AudioObjectID device, IOProcID proc) {
    if (device != captureDevice_ || proc != theIOProc)
        return -ENOENT;
    const LoopLock lock(connection_->loop());
    isIORunning_ = false; // first, so that the watch does not begin routing again
    stopRouting();
    if (tap_)
        tap_->setClient(nullptr, {});
    return statusOK;
}

void PipeWireHardware::stopRouting() {
    supervisor_.reset();
    dropOutputLinks();
    if (!router_ || !tap_ || (!router_->isOn() && !journal_->hasUnconfirmed()))
        return;
    const std::uint32_t tapID = tap_->nodeID();
    if (!connection_->isLost())
        registry_->refreshMetadata(restoreSeconds);
    router_->end();
    if (connection_->isLost())
        return;
    // The processed sound continues until every application plays on its own device again.
    isRestored_ = connection_->roundTrip(restoreSeconds) == statusOK;
    if (!isRestored_)
        return;
    journal_->confirmReleases(journal_->releases());
    connection_->waitUntil([&] { return !router_->isAnyLinkedTo(tapID); }, unlinkSeconds);
}

// Playback

std::unique_ptr<HardwareOutput> PipeWireHardware::makeOutput() {
    return std::make_unique<Output>(*this);
}

} // namespace quorbel
