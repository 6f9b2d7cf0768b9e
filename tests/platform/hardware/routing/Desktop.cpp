#include "Desktop.h"

#include "Invariants.h"

#include <algorithm>
#include <set>

namespace quorbel::desktop {

namespace {

/// Time until our standstill is detected: one second plus the check interval of 0.25 s.
constexpr Micros standstillTime = 1'250'000;

} // namespace

Desktop::Desktop(const Storm &storm, bool hasUs)
    : server(storm.seed * 2 + 1), manager(server, storm.seed * 3 + 1), client(server),
      hasUs_(hasUs), seed_(storm.seed) {
    Random random(storm.seed);
    manager.isNewer = chance(random, 50);
    manager.suspendsOutputs = chance(random, 50);
    server.keepsValues = chance(random, 40);
    server.losesTapLinks = chance(random, 30);
    ownsDevices_ = chance(random, 30);
    const bool isPlain = chance(random, 40);
    static constexpr int counts[] = {2, 2, 2, 1, 4, 6, 8};
    for (int &count : channels)
        count = isPlain ? 2 : counts[below(random, 7)];
    for (int slot = 0; slot < applicationCount; ++slot) {
        Application &application = applications[static_cast<std::size_t>(slot)];
        const std::string name = "program" + std::to_string(slot);
        NodeTraits traits;
        traits.name = traits.application = name;
        traits.slot = slot;
        traits.client = "c" + name;
        traits.process = "p" + name;
        const int kind = slot < 4 ? 0 : below(random, 6);
        const std::string device = "device" + std::to_string(below(random, deviceCount));
        const std::string other = "device" + std::to_string(below(random, deviceCount));
        if (kind <= 1) {
            traits.isPulse = chance(random, 50);
            if (!isPlain)
                traits.channels = counts[below(random, 6)];
            static constexpr const char *fixed[] = {"node.dont-reconnect", "node.dont-move",
                                                    "node.exclusive"};
            if (chance(random, 15))
                traits.fixedKey = fixed[below(random, 3)];
            if (chance(random, 20))
                traits.ownTarget = device;
            application.halves = {traits};
        } else if (kind == 5) {
            application.kind = Kind::meter;
            traits.mediaClass = Class::recording;
            traits.recordsSink = true;
            traits.ownTarget = device;
            application.halves = {traits};
        } else {
            NodeTraits input = traits;
            input.name = name + ".in";
            traits.name = name + ".out";
            // Each half of a group has an application name of its own.
            input.application.clear();
            input.mediaClass = Class::recording;
            input.recordsSink = true;
            input.ownTarget = device;
            if (chance(random, 70))
                traits.ownTarget = other;
            if (kind == 4) {
                application.kind = Kind::split;
                input.client += "recorder";
            } else {
                input.linkGroup = traits.linkGroup = "g" + name;
                application.kind = kind == 2 ? Kind::loopback : Kind::virtualSink;
                if (kind == 3) {
                    input.mediaClass = Class::sink;
                    input.ownTarget.clear();
                    input.name = "virtual" + std::to_string(slot);
                }
            }
            application.halves = {input, traits};
        }
    }
    if (chance(random, 60)) // two streams of one program
        applications[1].halves[0].application = applications[0].halves[0].application;
    if (chance(random, 40))
        client.chosenDevice = "device" + std::to_string(below(random, deviceCount));
    duplexDevice_ = chance(random, 30) ? below(random, deviceCount) : -1;
    for (int slot = 0; slot < 2; ++slot) {
        isPlugged[static_cast<std::size_t>(slot)] = true;
        plugNode(slot, 100);
    }
    manager.start();
}

void Desktop::fail(std::string text) {
    if (violation_.empty())
        violation_ = std::to_string(server.now / 1000) + " ms: " + std::move(text);
}

const Node *Desktop::playback(const Application &application) const {
    return application.serials.empty() ? nullptr : server.find(application.serials.back());
}

bool Desktop::hasReadyDevice() const {
    return std::any_of(server.nodes.begin(), server.nodes.end(), [](const Node &node) {
        return node.traits->isDevice() && node.traits->linkGroup.empty() &&
               node.count(true) == node.traits->channels;
    });
}

void Desktop::startNodes(Application &application) {
    application.started = server.now;
    application.movedAt = -1;
    application.hasObject = manager.isNewer; // the session manager may restore it
    application.silentSince = server.now;
    application.wasMovedByLinks = false;
    application.serials.clear();
    application.isPinUncertain |= server.isDeaf; // restored values are reported to no client
    for (const NodeTraits &traits : application.halves) {
        const std::uint64_t serial = server.addNode(traits);
        application.serials.push_back(serial);
        Node *node = server.find(serial);
        if (traits.isDevice())
            server.addAllPorts(*node);
        if (server.value(node->id, targetObjectKey) || server.value(node->id, targetNodeKey))
            application.isPinUncertain = true; // values inherited with the id
    }
}

void Desktop::stopNodes(Application &application) {
    for (const std::uint64_t serial : application.serials)
        server.removeNode(serial);
    application.serials.clear();
}

void Desktop::plugNode(int slot, Micros interval) {
    NodeTraits traits;
    traits.name = "device" + std::to_string(slot);
    traits.mediaClass = Class::sink;
    traits.channels = channels[static_cast<std::size_t>(slot)];
    traits.isDuplex = slot == duplexDevice_;
    traits.slot = slot;
    traits.isAutoconnected = false;
    server.addNode(traits);
    timers_.push_back({Timer::Kind::port, slot, server.now + interval, interval});
}

void Desktop::fire(const Timer &timer) {
    const auto slot = static_cast<std::size_t>(timer.slot);
    switch (timer.kind) {
    case Timer::Kind::port: {
        const Node *found = server.findName("device" + std::to_string(timer.slot));
        if (found == nullptr)
            break;
        Node &node = *server.find(found->serial);
        const int index = node.count(true);
        if (index >= node.traits->channels)
            break;
        const char *channel = channelNames(node.traits->channels)[static_cast<std::size_t>(index)];
        server.addPort(node, index, true, false, channel);
        server.addPort(node, index, false, !node.traits->isDuplex, channel);
        timers_.push_back(
            {Timer::Kind::port, timer.slot, server.now + timer.interval, timer.interval});
        break;
    }
    case Timer::Kind::plug:
        if (isServerUp && isPlugged[slot] &&
            server.findName("device" + std::to_string(timer.slot)) == nullptr)
            plugNode(timer.slot, 300);
        break;
    case Timer::Kind::managerReturns:
        if (!isServerUp || manager.isThere())
            break;
        manager.start();
        for (Application &each : applications) // targets are restored before their devices appear
            if ((ownsDevices_ || server.isDeaf) && !each.serials.empty() &&
                manager.remembered.contains(each.halves.back().application))
                each.isPinUncertain = true;
        for (int i = 0; i < deviceCount; ++i)
            timers_.push_back({Timer::Kind::plug, i, server.now + 2000 * (i + 1), 0});
        break;
    case Timer::Kind::serverReturns:
        if (isServerUp)
            break;
        isServerUp = true;
        timers_.push_back({Timer::Kind::managerReturns, 0, server.now + 20'000, 0});
        for (int i = 0; i < deviceCount; ++i)
            timers_.push_back({Timer::Kind::plug, i, server.now + 1000 * (i + 1), 0});
        for (int i = 0; i < applicationCount; ++i)
            timers_.push_back({Timer::Kind::application, i, server.now + 17'000 * (i + 1), 0});
        break;
    case Timer::Kind::application:
        if (isServerUp && applications[slot].isAlive && applications[slot].serials.empty())
            startNodes(applications[slot]);
        break;
    }
}

bool Desktop::isPinUncertain(const std::string &program) const {
    return std::any_of(applications.begin(), applications.end(), [&](const Application &each) {
        return each.isPinUncertain && each.halves.back().application == program;
    });
}

bool Desktop::sharesName(const Application &application) const {
    return std::any_of(applications.begin(), applications.end(), [&](const Application &other) {
        return &other != &application &&
               other.halves.back().application == application.halves.back().application;
    });
}

void Desktop::noteUnknownPins() {
    for (Application &application : applications) {
        std::set<std::string> pins;
        for (const Application &other : applications)
            if (const Node *node = playback(other);
                node != nullptr &&
                node->traits->application == application.halves.back().application)
                if (std::string pin = chosenTarget(server, *node); !pin.empty())
                    pins.insert(std::move(pin));
        const auto found = manager.remembered.find(application.halves.back().application);
        const std::string remembered = found == manager.remembered.end() ? "" : found->second;
        const bool isKnown =
            pins.empty() ? remembered.empty() : pins == std::set<std::string>{remembered};
        if (application.wasMovedByLinks || !isKnown)
            application.isPinUncertain = true;
    }
}

/// Users act only after they have seen a change, so not in its first moments.
bool Desktop::canUserMove(const Application &application) const {
    return !application.serials.empty() && manager.isThere() &&
           server.now - application.started > 100'000 &&
           server.now - killedAt_ > 100'000 && // a dead program's commands may arrive late,
           // as may those of a program that stops during a stall
           (server.now > stalledUntil_ || server.now - stoppedAt_ > 1'000'000) &&
           server.now - manager.startTime() > 150'000 && application.halves.back().isPlayback();
}

void Desktop::carryOut(const StormEvent &event) {
    using EventKind = StormEvent::Kind;
    Application &application = applications[static_cast<std::size_t>(event.a % applicationCount)];
    const int slot = event.b % deviceCount;
    const Node *device = server.findName("device" + std::to_string(slot));
    beginStep();
    switch (event.kind) {
    case EventKind::startApplication:
        if (!application.isAlive) {
            application.isAlive = true;
            if (isServerUp)
                startNodes(application);
        }
        break;
    case EventKind::stopApplication:
        application.isAlive = false;
        stopNodes(application);
        break;
    case EventKind::pin: {
        if (!canUserMove(application))
            break;
        const std::uint32_t id = playback(application)->id;
        int how = event.c % 5;
        // "target.object" overrides "target.node": users of the latter alone have not set it.
        if (application.hasObject && (how == 1 || how == 4))
            how = how == 1 ? 2 : 3;
        // The server does not report a user's write of the value that we wrote.
        const bool isOneOfTwo = sharesName(application);
        if (how == 4 && (isOneOfTwo || !application.halves.back().ownTarget.empty()))
            how = 3;
        if (how == 1 && isOneOfTwo)
            how = 2;
        if (device == nullptr && how < 3)
            break;
        application.movedAt = server.now;
        application.isPinUncertain |= server.isDeaf;
        application.hasObject = how == 0 || how == 2;
        if (how == 0 || how == 2)
            server.setMetadata(id, targetObjectKey,
                               MetadataValue{"Spa:Id", std::to_string(device->serial)});
        if (how == 1 || how == 2)
            server.setMetadata(id, targetNodeKey,
                               MetadataValue{"Spa:Id", std::to_string(device->id)});
        if (how == 3) {
            server.setMetadata(id, targetObjectKey, {});
            server.setMetadata(id, targetNodeKey, {});
        }
        if (how == 4)
            server.setMetadata(id, targetNodeKey, MetadataValue{"Spa:Id", "-1"});
        break;
    }
    case EventKind::moveByLinks: {
        if (!canUserMove(application) || device == nullptr ||
            device->count(true) != device->traits->channels)
            break;
        const Node *node = playback(application);
        if (node->count(false) == 0)
            break;
        application.wasMovedByLinks = true;
        application.movedAt = server.now;
        server.removeLinksOf(node->id);
        server.connectByChannel(*server.find(node->serial), *device, Owner::user);
        break;
    }
    case EventKind::plug:
        if (!isPlugged[static_cast<std::size_t>(slot)]) {
            isPlugged[static_cast<std::size_t>(slot)] = true;
            if (isServerUp && (manager.isThere() || !ownsDevices_))
                plugNode(slot, 50 + event.c * 7);
        }
        break;
    case EventKind::unplug:
        isPlugged[static_cast<std::size_t>(slot)] = false;
        if (device != nullptr)
            server.removeNode(device->serial);
        break;
    case EventKind::chooseDefault:
        if (manager.isThere())
            manager.chooseDefault("device" + std::to_string(slot));
        break;
    case EventKind::start:
        if (hasUs_)
            client.start();
        break;
    case EventKind::stop:
        stoppedAt_ = server.now;
        if (hasUs_)
            client.stop();
        break;
    case EventKind::kill:
    case EventKind::killWithWatchdog:
        killedAt_ = server.now;
        if (hasUs_)
            client.die(static_cast<std::size_t>(event.c % 8),
                       event.kind == EventKind::killWithWatchdog);
        break;
    case EventKind::destroyOurs:
        if (const Node *node = server.ours(event.c % 2 == 0))
            server.removeNode(node->serial);
        server.disturbedAt = server.now;
        break;
    case EventKind::suspendOutput:
        if (const Node *node = server.ours(false))
            server.carryOut({.kind = Command::Kind::suspend, .serial = node->serial});
        break;
    case EventKind::killManager:
        if (!manager.isThere())
            break;
        manager.stop();
        if (ownsDevices_)
            for (int i = 0; i < deviceCount; ++i)
                if (const Node *node = server.findName("device" + std::to_string(i)))
                    server.removeNode(node->serial);
        timers_.push_back(
            {Timer::Kind::managerReturns, 0, server.now + 3000 + event.c * 10'000, 0});
        break;
    case EventKind::killServer:
        if (!isServerUp)
            break;
        isServerUp = false;
        if (manager.isThere())
            manager.stop();
        server.die();
        for (Application &each : applications)
            each.serials.clear();
        client.serverDied();
        timers_.push_back({Timer::Kind::serverReturns, 0, server.now + 3000 + event.c * 10'000, 0});
        break;
    case EventKind::deafen:
        server.isDeaf = isServerUp;
        for (Application &each : applications) // restored values are reported to no client
            each.isPinUncertain |= each.isAlive && server.now - each.started < 100'000;
        break;
    case EventKind::stall:
        stalledUntil_ = std::max(stalledUntil_, server.now + 1000 + event.c * 10'000);
        server.fromClient.hold(stalledUntil_);
        server.toClient.hold(stalledUntil_);
        break;
    case EventKind::hang:
        if (hasUs_)
            client.hang();
        break;
    case EventKind::leaveAlone:
        if (hasUs_ && !application.halves.back().application.empty())
            client.toggleRule(application.halves.back().application);
        break;
    case EventKind::count:
        break;
    }
    server.hasChanged = true;
    afterStep();
}

void Desktop::calm() {
    if (!isServerUp)
        timers_.push_back({Timer::Kind::serverReturns, 0, server.now + 1000, 0});
    else if (!manager.isThere())
        timers_.push_back({Timer::Kind::managerReturns, 0, server.now + 1000, 0});
}

void Desktop::runUntil(Micros time) {
    while (violation_.empty()) {
        const auto timer =
            std::min_element(timers_.begin(), timers_.end(),
                             [](const Timer &a, const Timer &b) { return a.due < b.due; });
        const Micros timerDue = timer == timers_.end() ? INT64_MAX : timer->due;
        Micros answerDue = INT64_MAX;
        for (const auto &answer : server.answers)
            answerDue = std::min(answerDue, answer.due);
        const Micros clientDue = hasUs_ ? client.due() : INT64_MAX;
        const Micros next =
            std::min({server.toManager.due(), server.fromManager.due(), server.toClient.due(),
                      server.fromClient.due(), server.fromWatchdog.due(), timerDue, answerDue,
                      clientDue, manager.due()});
        if (next > time)
            break;
        if (next <= server.now && ++stepsAtOnce_ > 10'000)
            fail("a deadline is not met by what is done at it");
        if (next > server.now)
            stepsAtOnce_ = 0;
        server.now = std::max(server.now, next);
        beginStep();
        if (next == timerDue) {
            const Timer fired = *timer;
            timers_.erase(timer);
            fire(fired);
        } else if (next == answerDue) {
            server.answer();
        } else if (next == server.toManager.due()) {
            manager.take(server.toManager.pop());
        } else if (next == manager.due()) {
            manager.followDefault();
        } else if (next == server.fromManager.due()) {
            server.carryOut(server.fromManager.pop());
        } else if (next == server.toClient.due()) {
            client.take(server.toClient.pop());
            clientActed_ = true;
        } else if (next == server.fromClient.due()) {
            const Command command = server.fromClient.pop();
            server.carryOut(command);
            if (command.kind == Command::Kind::leave)
                client.watch();
        } else if (next == server.fromWatchdog.due()) {
            const Command command = server.fromWatchdog.pop();
            server.carryOut(command, true);
            // The next client takes a dying watchdog's last writes for a user's move.
            if (client.isAlive())
                for (Application &application : applications)
                    if (const Node *node = playback(application);
                        node != nullptr && node->id == command.id)
                        application.movedAt = server.now;
            // A watchdog that dies between two writes leaves a pin half restored.
            if (client.wasWatchdogLost())
                for (Application &application : applications)
                    application.isPinUncertain |= application.isAlive;
            if (server.hasWatchdogFinished)
                client.watchdogFinished();
            server.hasWatchdogFinished = false;
        } else {
            client.tick();
            clientActed_ = true;
        }
        afterStep();
    }
    server.now = std::max(server.now, time);
    server.hasChanged = true;
    if (violation_.empty())
        afterStep();
}

void Desktop::beginStep() {
    server.random = Random(seed_, server.now);
    manager.random = Random(seed_ + 1, server.now);
    noteGoodTimes();
}

void Desktop::noteGoodTimes() {
    if (!manager.isThere() || !isDeviceReady_ || server.now < stalledUntil_)
        goodSince_ = server.now;
}

void Desktop::afterStep() {
    if (!hasUs_) {
        server.hasChanged = false;
        return;
    }
    if (clientActed_)
        lookAtView();
    clientActed_ = false;
    if (server.hasChanged) {
        isDeviceReady_ = hasReadyDevice();
        noteUncertainPins();
        lookForFeedback();
        noteSilence();
    }
    server.hasChanged = false;
    noteGoodTimes();
    lookForSilence();
}

/// True if the application's sound reaches a device.
bool Desktop::hasWay(const Application &application) const {
    const Node *node = playback(application);
    if (node == nullptr || (node->traits->isPulse && !node->traits->isAnswered))
        return false;
    const Node *tap = server.ours(true);
    const Node *output = server.ours(false);
    for (const Link &link : server.links) {
        if (link.outputNode != node->id || link.isPassive)
            continue;
        if (tap == nullptr || link.inputNode != tap->id)
            return true;
        if (output != nullptr && !output->isStuck && client.isAlive() && !client.hangs() &&
            std::any_of(server.links.begin(), server.links.end(),
                        [&](const Link &other) { return other.outputNode == output->id; }))
            return true;
    }
    return false;
}

void Desktop::noteSilence() {
    for (Application &application : applications) {
        const Node *node = playback(application);
        if (application.kind != Kind::player || node == nullptr || application.wasMovedByLinks ||
            !node->traits->fixedKey.empty() || hasWay(application) ||
            (manager.isOld(node->serial) &&
             (application.movedAt >= 0 || client.published() != Published::running ||
              client.leavesAlone(node->traits->application))))
            application.silentSince = -1;
        else if (application.silentSince < 0)
            application.silentSince = server.now;
    }
}

void Desktop::lookForSilence() {
    const Micros longest = 500'000 + (client.hangs() ? standstillTime : 0);
    const Micros good = std::max({goodSince_, stalledUntil_, server.disturbedAt});
    for (const Application &application : applications)
        if (application.silentSince >= 0 &&
            server.now - std::max(application.silentSince, good) > longest)
            fail(application.halves.back().name + " has been silent for half a second");
}

void Desktop::lookForFeedback() {
    constexpr Micros longest = 120'000;
    const Node *tap = server.ours(true);
    const Node *output = server.ours(false);
    const bool isFed = tap != nullptr && output != nullptr && hears(server, output->id, tap->id);
    if (!isFed || server.now < stalledUntil_)
        feedbackSince_ = -1;
    else if (feedbackSince_ < 0)
        feedbackSince_ = server.now;
    else if (server.now - feedbackSince_ > longest)
        fail("feedback");
}

/// Requires that the client has handled all events that it has received.
void Desktop::lookAtView() {
    if (!client.isAlive() || client.router() == nullptr || !client.router()->isOn())
        return;
    const std::string found = fedBack(client);
    if (!found.empty())
        fail(found + " is sent to the tap and hears it");
}

void Desktop::noteUncertainPins() {
    for (Application &application : applications) {
        const Node *node = playback(application);
        if (application.isPinUncertain || node == nullptr)
            continue;
        const auto pin = manager.remembered.find(node->traits->application);
        if (pin != manager.remembered.end() && pin->second != "quorbel.tap" &&
            server.findName(pin->second) == nullptr)
            application.isPinUncertain = true;
    }
}

} // namespace quorbel::desktop
