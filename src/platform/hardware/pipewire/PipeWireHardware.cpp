#include "platform/hardware/pipewire/PipeWireHardware.h"

#include "platform/hardware/SystemHardware.h"
#include "platform/hardware/pipewire/PipeWireOutput.h"

#include <cerrno>
#include <utility>

namespace quorbel {
namespace {

// Deadlines of the server's answers before and after routing, which take milliseconds.
constexpr double restoreSeconds = 0.5;
constexpr double unlinkSeconds = 0.3;

// Deadline of a server that has just come back; the next attempt follows soon.
constexpr double reconnectSeconds = 0.2;

/// Id of the capture device, which the server does not know: the group of tap and output.
constexpr AudioObjectID captureDeviceID = 0xC0000001;
constexpr IOProcID theIOProc = 1;

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
            return settle(reconnectSeconds); // a slow server may answer by now
    }
    return open(reconnectSeconds);
}

double PipeWireHardware::graphRate() const {
    if (tap_ && tap_->format().isValid())
        return tap_->format().sampleRate;
    const double forced = registry_->setting("clock.force-rate");
    return forced > 0.0 ? forced : registry_->setting("clock.rate");
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
    // Leaves streams that could not be restored to the watchdog.
    if (isRestored_)
        journal_->allRestored();
    journal_.reset();
    return statusOK;
}

Status PipeWireHardware::tapFormat(AudioObjectID tap, StreamFormat &format) {
    const LoopLock lock(connection_->loop());
    if (!tap_ || tapHandle_ != tap)
        return -ENOENT;
    // The tap has no format before its first stream, and then takes the graph's rate.
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
