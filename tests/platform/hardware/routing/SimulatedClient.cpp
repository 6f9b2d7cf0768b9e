#include "SimulatedClient.h"

#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace quorbel::desktop {
namespace {

constexpr Micros roundTripTime = 500'000;
constexpr Micros comebackTime = 1'000'000;
constexpr Micros beatTime = 250'000;
constexpr Micros cycleTime = 20'000;
constexpr std::uint64_t lastTrip = UINT64_MAX; ///< confirms all releases

Command metadataCommand(std::uint32_t subject, const char *key,
                        const std::optional<MetadataValue> &value) {
    return {.kind = value ? Command::Kind::setMetadata : Command::Kind::deleteMetadata,
            .id = subject,
            .key = key,
            .value = value.value_or(MetadataValue{})};
}

/// Watchdog's snapshot of the server, and its commands.
class Watchdog final : public ServerCommands {
  public:
    explicit Watchdog(SimulatedServer &server) : server_(server) {
        for (const Node &node : server.nodes)
            objects.putNode({node.id, node.serial, node.traits->properties, true});
        for (const auto &[where, value] : server.metadata)
            objects.putMetadata(where.first, where.second, value);
        objects.setHasMetadata(server.hasMetadata);
    }
    void setMetadata(std::uint32_t subject, const char *key, const MetadataValue &value) override {
        objects.putMetadata(subject, key, value);
        server_.fromWatchdog.push(metadataCommand(subject, key, value), server_.now,
                                  server_.random);
    }
    void deleteMetadata(std::uint32_t subject, const char *key) override {
        objects.putMetadata(subject, key, {});
        server_.fromWatchdog.push(metadataCommand(subject, key, {}), server_.now, server_.random);
    }
    void readMetadata() override {}
    [[nodiscard]] bool isDeaf() const override { return false; }
    OwnLink createLink(const LinkRequest &) override { return 0; }
    void destroyLink(OwnLink) override {}
    void removeLink(std::uint32_t) override {}
    [[nodiscard]] double seconds() const override { return 0; }

    ServerObjects objects;

  private:
    SimulatedServer &server_;
};

} // namespace

void SimulatedClient::send(Command command) {
    server_.fromClient.push(std::move(command), server_.now, server_.random);
}

void SimulatedClient::write(std::uint32_t subject, const char *key,
                            const std::optional<MetadataValue> &value) {
    objects_->putMetadata(subject, key, value);
    if (std::string_view(key) == targetObjectKey && value)
        ownTargets_[subject] = value->value;
    else if (std::string_view(key) == targetObjectKey)
        ownTargets_.erase(subject);
    send(metadataCommand(subject, key, value));
    ownWrites_[{subject, key}] = value;
}

bool SimulatedClient::isSentToTap(std::uint32_t streamID) const {
    const auto found = ownTargets_.find(streamID);
    return found != ownTargets_.end() && found->second == std::to_string(ends_.tapSerial);
}

OwnLink SimulatedClient::createLink(const LinkRequest &request) {
    const OwnLink handle = nextLink_++;
    send({.kind = Command::Kind::createLink,
          .link = {.outputNode = request.outputNodeID,
                   .inputNode = request.inputNodeID,
                   .outputPort = request.outputPortID,
                   .inputPort = request.inputPortID,
                   .owner = Owner::ours,
                   .handle = handle,
                   .isPassive = request.isPassive}});
    return handle;
}

void SimulatedClient::destroyLink(OwnLink link) {
    send({.kind = Command::Kind::destroyLink, .serial = link});
}

void SimulatedClient::removeLink(std::uint32_t linkID) {
    send({.kind = Command::Kind::removeLink, .id = linkID});
}

void SimulatedClient::toggleRule(const std::string &program) {
    if (leavesAlone(program))
        rules_.rules.clear();
    else
        rules_.rules = {{.program = {.name = program}, .isProcessed = false}};
    if (!isAlive_)
        return;
    router_->setRules(rules_);
    nextLook_ = std::min(nextLook_, server_.now);
}

bool SimulatedClient::leavesAlone(const std::string &program) const {
    return !rules_.rules.empty() && rules_.rules.front().program.name == program;
}

/// Returns the journal as read by the watchdog and the next start.
RouteLedger SimulatedClient::written() const {
    RouteLedger result;
    for (const RoutedStream &stream : ledger_.streams())
        result.take(stream.encoded());
    return result;
}

void SimulatedClient::reset() {
    objects_ = std::make_unique<ServerObjects>();
    router_ = std::make_unique<StreamRouter>(*objects_, *this, ledger_);
    router_->setRules(rules_);
    supervisor_.reset();
    ledger_ = written();
    bound_.clear();
    outputLinks_.clear();
    ownTargets_.clear();
    ends_ = {};
    hasPair_ = tapRuns_ = outRuns_ = hadManager_ = false;
    if (std::exchange(hangs_, false))
        server_.disturbedAt = server_.now;
    tapHandle_ = outHandle_ = 0;
    tapID_ = outID_ = 0;
    binding_ = awaitedReleases_ = 0;
    stopping_ = Stopping::no;
    stopDeadline_ = comebackAt_ = nextLook_ = INT64_MAX;
}

void SimulatedClient::connect() {
    reset();
    reconnectAt_ = INT64_MAX;
    server_.clientArrives();
    leftovers_ = ledger_.streams();
}

void SimulatedClient::start() {
    if (isWatching_ || wantsOn_ || isStopping())
        return;
    wantsOn_ = true;
    published_ = Published::starting;
    isAlive_ = true;
    if (!server_.isClientThere)
        reconnectAt_ = server_.now;
    supervisor_.reset();
    router_ = std::make_unique<StreamRouter>(*objects_, *this, ledger_);
    router_->setRules(rules_);
    if (server_.isClientThere && objects_->hasMetadata())
        bindMetadata(); // changes may have been missed
    tick();
}

void SimulatedClient::hang() {
    if (!hasPair_ || hangs_)
        return;
    hungAt_ = server_.now;
    hangs_ = true;
}

void SimulatedClient::createPair() {
    isDeviceTap_ = router_->needsDeviceTap();
    tapHandle_ = nextHandle_++;
    outHandle_ = nextHandle_++;
    tapID_ = outID_ = 0;
    if (std::exchange(hangs_, false))
        server_.disturbedAt = server_.now;
    tapRuns_ = outRuns_ = false;
    hasPair_ = areFactsOld_ = true;
    outputLinks_.clear();
    NodeTraits tap;
    tap.name = "quorbel.tap";
    tap.mediaClass = isDeviceTap_ ? Class::tapDevice : Class::tapStream;
    tap.handle = tapHandle_;
    tap.isAutoconnected = false;
    tap.linkGroup = tap.client = "quorbel";
    tap.process = "quorbel";
    NodeTraits output = tap;
    output.name = "quorbel.out";
    output.mediaClass = Class::outputInternal;
    output.handle = outHandle_;
    output.isAutoconnected = true;
    output.ownTarget = chosenDevice;
    for (NodeTraits *traits : {&tap, &output}) {
        traits->fill();
        send({.kind = Command::Kind::createNode,
              .traits = std::make_shared<const NodeTraits>(*traits)});
    }
    nextLook_ = server_.now;
}

void SimulatedClient::destroyPair() {
    if (hasPair_)
        for (const int handle : {tapHandle_, outHandle_})
            send({.kind = Command::Kind::destroyNode, .id = static_cast<std::uint32_t>(handle)});
    hasPair_ = false;
    tapID_ = outID_ = 0;
}

OwnPair SimulatedClient::pair() const {
    OwnPair pair{.tap = objects_->node(tapID_),
                 .output = objects_->node(outID_),
                 .isDeviceTap = isDeviceTap_};
    for (const auto &[id, node] : objects_->nodes())
        if (isOutputDevice(node) && objects_->hasPorts(id, true) && pair.deviceID == 0)
            pair.deviceID = id;
    return pair;
}

void SimulatedClient::look() {
    nextLook_ = INT64_MAX;
    if (!isAlive_ || !server_.isClientThere || !wantsOn_ || !hasPair_ || !objects_->hasMetadata())
        return;
    for (int i = 0; i < 10; ++i) {
        if (std::exchange(areFactsOld_, false)) {
            facts_ = pair().facts(*objects_, router_->needsDeviceTap());
            facts_.tapRuns = tapRuns_;
            facts_.outputRuns = outRuns_;
        }
        facts_.driverCycles = static_cast<std::uint64_t>(server_.now / cycleTime);
        facts_.tapCycles = facts_.outputCycles =
            static_cast<std::uint64_t>((hangs_ ? hungAt_ : server_.now) / cycleTime);
        const PairStep step = supervisor_.look(facts_, seconds());
        if (step == PairStep::none)
            break;
        switch (step) {
        case PairStep::route:
            router_->begin(ends_ = findEnds());
            published_ = Published::running;
            break;
        case PairStep::release:
            router_->end();
            published_ = Published::starting;
            break;
        case PairStep::rebuild:
            destroyPair();
            createPair();
            break;
        case PairStep::link:
            for (const OwnLink link : std::exchange(outputLinks_, {}))
                destroyLink(link);
            for (const LinkRequest &link : pair().deviceLinks(*objects_))
                outputLinks_.push_back(createLink(link));
            break;
        case PairStep::nudge:
            send({.kind = Command::Kind::nudge, .serial = outSerial_});
            break;
        case PairStep::giveUp:
            router_->end();
            destroyPair();
            published_ = Published::error;
            comebackAt_ = server_.now + comebackTime;
            break;
        case PairStep::none:
            break;
        }
        areFactsOld_ = true;
        if (!hasPair_)
            break;
    }
    if (hasPair_ && supervisor_.isHealthy() && router_->isOn()) {
        const RoutingEnds now = findEnds();
        if (now != ends_)
            router_->begin(ends_ = now);
    }
    const double next = supervisor_.nextLook(seconds());
    nextLook_ = hasPair_ && std::isfinite(next) ? static_cast<Micros>(next * 1e6) + 1 : INT64_MAX;
    if (hasPair_ && ledger_.size() > 0) // together with the watchdog's heartbeats
        nextLook_ = std::min(nextLook_, server_.now - server_.now % beatTime + beatTime);
}

void SimulatedClient::readMetadata() {
    if (objects_->hasMetadata())
        bindMetadata();
}

void SimulatedClient::bindMetadata() {
    bound_.clear();
    ownWrites_.clear();
    send({.kind = Command::Kind::bindMetadata, .serial = ++binding_});
}

/// Reports values of the new binding that arrived in no event.
void SimulatedClient::tellDifferences() {
    const auto found = [&](const Table::key_type &where) {
        const MetadataValue *value = valueIn(bound_, where.first, where.second.c_str());
        return value == nullptr ? std::nullopt : std::optional(*value);
    };
    std::set<Table::key_type> keys;
    for (const auto &[where, _] : bound_)
        keys.insert(where);
    for (const std::uint32_t subject : objects_->metadataSubjects())
        for (const char *key : {targetObjectKey, targetNodeKey, "default.audio.sink"})
            keys.insert({subject, key});
    std::erase_if(keys, [&](const auto &where) {
        return ownWrites_.contains(where) ||
               objects_->metadata(where.first, where.second) == found(where);
    });
    for (const auto &[subject, key] : keys) {
        const auto value = found({subject, key});
        objects_->putMetadata(subject, key, value);
        router_->metadataChanged(subject, key, value);
    }
}

void SimulatedClient::take(const Event &event) {
    using Kind = Event::Kind;
    ServerObserver &observer = *router_;
    areFactsOld_ |= event.kind != Kind::metadataValue && event.kind != Kind::done;
    switch (event.kind) {
    case Kind::nodeAdded: {
        NodeRecord node{event.id, event.serial, event.traits->registryProperties, false};
        if (event.traits->handle != 0 && event.traits->handle == tapHandle_) {
            tapID_ = event.id;
            tapSerial_ = event.serial;
        } else if (event.traits->handle != 0 && event.traits->handle == outHandle_) {
            outID_ = event.id;
            outSerial_ = event.serial;
        }
        observer.nodeChanged(objects_->putNode(std::move(node)));
        send({.kind = Command::Kind::bindNode, .id = event.id, .serial = event.serial});
        break;
    }
    case Kind::nodeInfo:
        if (const NodeRecord *node = objects_->node(event.id);
            node != nullptr && node->serial == event.serial)
            observer.nodeChanged(
                objects_->putNode({event.id, event.serial, event.traits->properties, true}));
        break;
    case Kind::nodeRemoved:
        if (event.id == tapID_ && event.serial == tapSerial_)
            tapID_ = 0;
        if (event.id == outID_ && event.serial == outSerial_)
            outID_ = 0;
        if (const auto node = objects_->takeNode(event.id))
            observer.nodeRemoved(*node);
        break;
    case Kind::portAdded:
        objects_->putPort(event.port);
        observer.portAdded(event.port);
        break;
    case Kind::portRemoved:
        if (const auto port = objects_->takePort(event.port.id))
            observer.portRemoved(*port);
        break;
    case Kind::linkAdded: {
        const LinkRecord link{event.link.id, event.link.outputNode, event.link.inputNode,
                              event.link.outputPort, event.link.inputPort};
        objects_->putLink(link);
        observer.linkAdded(link);
        break;
    }
    case Kind::linkRemoved:
        if (const auto link = objects_->takeLink(event.link.id))
            observer.linkRemoved(*link);
        break;
    case Kind::metadataAppeared:
        bindMetadata();
        break;
    case Kind::metadataValue:
        if (event.serial != 0 ? event.serial == binding_ : !objects_->hasMetadata()) {
            put(bound_, event.id, event.key, event.value);
        } else if (event.serial == 0) {
            objects_->putMetadata(event.id, event.key, event.value);
            observer.metadataChanged(event.id, event.key, event.value);
        }
        break;
    case Kind::metadataDone: {
        if (event.serial != binding_)
            break;
        for (const auto &[where, value] : ownWrites_)
            put(bound_, where.first, where.second, value);
        if (objects_->hasMetadata()) {
            tellDifferences();
            observer.metadataRead();
        } else {
            for (const auto &[where, value] : bound_)
                objects_->putMetadata(where.first, where.second, value);
            objects_->setHasMetadata(true);
            router_->restore(std::exchange(leftovers_, {}));
            wasWatchdogLost_ = false;
            if (hadManager_)
                supervisor_.sessionManagerReturned();
            hadManager_ = true;
            observer.metadataArrived();
        }
        if (stopping_ == Stopping::binding)
            stopNow();
        break;
    }
    case Kind::metadataGone:
        objects_->setHasMetadata(false);
        objects_->clearMetadata();
        bound_.clear();
        ++binding_;
        observer.metadataGone();
        break;
    case Kind::runs:
    case Kind::stops:
        if (event.serial == tapSerial_)
            tapRuns_ = event.kind == Kind::runs;
        else if (event.serial == outSerial_)
            outRuns_ = event.kind == Kind::runs;
        break;
    case Kind::done:
        ledger_.confirm(event.serial);
        if (stopping_ == Stopping::restoring && event.serial == lastTrip)
            finishStop();
        break;
    }
    if (server_.toClient.due() > server_.now) // after the last event of a batch
        tick();
}

void SimulatedClient::tick() {
    if (isWatching_ && server_.now >= watchAt_) {
        watchAt_ = INT64_MAX;
        Watchdog watchdog(server_);
        for (const RoutedStream &stream : inOrderOfUndoing(watchdog.objects, written().streams()))
            restoreRoute(watchdog.objects, watchdog, stream);
        if (isWatchdogMortal_ && !server_.fromWatchdog.empty()) {
            server_.fromWatchdog.cut(static_cast<std::size_t>(
                below(server_.random, 1 + static_cast<int>(server_.fromWatchdog.size()))));
            isWatching_ = false;
            wasWatchdogLost_ = true;
        } else {
            server_.fromWatchdog.push({.kind = Command::Kind::sync}, server_.now, server_.random);
        }
    }
    if (!isAlive_)
        return;
    if (server_.now >= reconnectAt_) {
        reconnectAt_ = server_.now + 300'000;
        if (server_.isManagerThere || server_.hasMetadata || !server_.nodes.empty())
            connect();
    }
    if (!server_.isClientThere)
        return;
    if (server_.now >= stopDeadline_) {
        if (stopping_ == Stopping::binding) {
            stopNow();
        } else {
            die(server_.fromClient.size(), false);
            return;
        }
    }
    if (server_.now >= comebackAt_) {
        comebackAt_ = INT64_MAX;
        supervisor_.reset();
    }
    // With the metadata, all objects and thus the required kind of tap are known.
    if (wantsOn_ && !hasPair_ && comebackAt_ == INT64_MAX && objects_->hasMetadata())
        createPair();
    router_->checkDeadlines();
    look();
    if (ledger_.hasUnconfirmed() && ledger_.releases() != awaitedReleases_) {
        awaitedReleases_ = ledger_.releases();
        send({.kind = Command::Kind::sync, .serial = awaitedReleases_});
    }
}

Micros SimulatedClient::due() const {
    Micros result = std::min({reconnectAt_, watchAt_});
    if (!isAlive_ || !server_.isClientThere)
        return result;
    result = std::min({result, stopDeadline_, comebackAt_, nextLook_});
    const double next = router_->nextDeadline();
    if (std::isfinite(next))
        result = std::min(result, static_cast<Micros>(std::ceil(next * 1e6)) + 1);
    return result;
}

void SimulatedClient::stop() {
    if (!isAlive_ || !wantsOn_)
        return;
    wantsOn_ = false;
    comebackAt_ = nextLook_ = INT64_MAX;
    published_ = Published::off;
    if (!server_.isClientThere) {
        reconnectAt_ = INT64_MAX;
        return;
    }
    if (router_->isOn() && objects_->hasMetadata()) {
        stopping_ = Stopping::binding;
        stopDeadline_ = server_.now + roundTripTime;
        bindMetadata();
    } else {
        stopNow();
    }
}

void SimulatedClient::stopNow() {
    router_->end();
    stopping_ = Stopping::restoring;
    stopDeadline_ = server_.now + roundTripTime;
    awaitedReleases_ = ledger_.releases();
    send({.kind = Command::Kind::sync, .serial = lastTrip});
}

void SimulatedClient::finishStop() {
    stopping_ = Stopping::no;
    stopDeadline_ = INT64_MAX;
    destroyPair();
    ends_ = {};
}

void SimulatedClient::die(std::size_t kept, bool withWatchdog) {
    if (!isAlive_)
        return;
    isAlive_ = wantsOn_ = false;
    published_ = Published::off;
    isWatchdogMortal_ = withWatchdog;
    reconnectAt_ = INT64_MAX;
    if (!server_.isClientThere) {
        if (!server_.hasMetadata && server_.nodes.empty())
            ledger_.clear();
        return;
    }
    server_.toClient.clear();
    server_.fromClient.cut(kept);
    send({.kind = Command::Kind::leave});
    isWatching_ = true;
}

void SimulatedClient::watch() {
    server_.fromClient.clear();
    reset();
    watchAt_ = server_.now + 1000 + below(server_.random, 30000);
}

void SimulatedClient::watchdogFinished() {
    isWatching_ = false;
    ledger_.clear();
}

void SimulatedClient::serverDied() {
    wasWatchdogLost_ = false;
    // Lines of the journal name a run of the server and are invalid in the next run.
    ledger_.clear();
    watchAt_ = INT64_MAX;
    isWatching_ = false;
    server_.hasWatchdogFinished = false;
    const bool wanted = wantsOn_;
    reset();
    if (isAlive_ && wanted) {
        published_ = Published::error;
        reconnectAt_ = server_.now + 300'000;
    }
}

} // namespace quorbel::desktop
