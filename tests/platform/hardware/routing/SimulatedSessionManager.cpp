#include "SimulatedSessionManager.h"

#include <algorithm>
#include <charconv>

namespace quorbel::desktop {
namespace {

std::optional<std::uint64_t> number(const std::string &text) {
    std::uint64_t result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return result;
}

} // namespace

void SimulatedSessionManager::start() {
    items_.clear();
    metadata_.clear();
    default_.clear();
    snapshot_ = server_.nodes.size();
    startTime_ = server_.now;
    configured_.clear();
    for (const Node &node : server_.nodes)
        if (node.traits->isStream() && !node.ports.empty())
            configured_.push_back(node.serial);
    server_.managerArrives();
    scheduleDefault();
}

void SimulatedSessionManager::stop() {
    server_.managerLeaves();
    defaultDue_ = INT64_MAX;
}

void SimulatedSessionManager::chooseDefault(const std::string &name) {
    configuredDefault = name;
    scheduleDefault();
}

SimulatedSessionManager::Item *SimulatedSessionManager::find(std::uint64_t serial) {
    for (Item &item : items_)
        if (item.serial == serial)
            return &item;
    return nullptr;
}

bool SimulatedSessionManager::isOld(std::uint64_t serial) const {
    return std::any_of(items_.begin(), items_.end(),
                       [&](const Item &item) { return item.serial == serial && item.isOld; });
}

void SimulatedSessionManager::send(Command command) {
    server_.fromManager.push(std::move(command), server_.now, server_.random);
}

void SimulatedSessionManager::scheduleDefault() {
    defaultDue_ = std::min(defaultDue_, server_.now + 1000 + below(random, 30000));
}

bool SimulatedSessionManager::isReady(const Item &item) const {
    return item.inputs >= (item.traits->isTap() ? 1 : item.traits->channels);
}

void SimulatedSessionManager::followDefault() {
    defaultDue_ = INT64_MAX;
    const Item *best = nullptr;
    for (const Item &item : items_)
        if (item.traits->isDevice() && isReady(item) &&
            (best == nullptr || item.traits->name == configuredDefault ||
             (best->traits->name != configuredDefault && item.traits->name < best->traits->name)))
            best = &item;
    const std::string name = best == nullptr ? "" : best->traits->name;
    if (name != default_) {
        default_ = name;
        send({.kind = name.empty() ? Command::Kind::deleteMetadata : Command::Kind::setMetadata,
              .id = 0,
              .key = "default.audio.sink",
              .value = {"Spa:String:JSON", name}});
    }
    rescan();
}

void SimulatedSessionManager::take(const Event &event) {
    using Kind = Event::Kind;
    switch (event.kind) {
    case Kind::nodeAdded: {
        const bool wasThere = snapshot_ > 0;
        snapshot_ -= wasThere ? 1 : 0;
        const bool wasConfigured =
            std::find(configured_.begin(), configured_.end(), event.serial) != configured_.end();
        items_.push_back({event.id, event.serial, event.traits, 0, 0, wasConfigured && !isNewer});
        if (wasThere && snapshot_ == 0) { // restores the initial nodes together
            const auto items = items_;
            for (const Item &item : items)
                restore(item);
        } else if (!wasThere) {
            restore(items_.back());
        }
        if (!event.traits->isDevice())
            rescan();
        break;
    }
    case Kind::nodeRemoved: {
        const auto found = std::ranges::find(items_, event.serial, &Item::serial);
        if (found == items_.end())
            break;
        const bool wasDevice = found->traits->isDevice();
        items_.erase(found);
        for (Item &item : items_)
            if (item.peer == event.serial)
                item.peer = 0;
        if (wasDevice)
            scheduleDefault();
        rescan();
        break;
    }
    case Kind::portAdded:
        if (Item *item = find(event.serial);
            item != nullptr && event.port.isInput && !event.port.isMonitor) {
            ++item->inputs;
            if (!item->traits->isStream() && isReady(*item)) {
                scheduleDefault();
                rescan();
            }
        }
        break;
    case Kind::portRemoved:
        if (Item *item = find(event.serial);
            item != nullptr && event.port.isInput && !event.port.isMonitor)
            --item->inputs;
        break;
    case Kind::metadataValue:
        put(metadata_, event.id, event.key, event.value);
        if (event.id != 0) {
            remember(event.id, event.key, event.value);
            rescan();
        }
        break;
    default:
        break;
    }
}

/// Stores the target of the latest event, for either key.
void SimulatedSessionManager::remember(std::uint32_t subject, const std::string &key,
                                       const std::optional<MetadataValue> &value) {
    const auto stream = std::find_if(items_.begin(), items_.end(), [&](const Item &item) {
        return item.id == subject && item.traits->isStream();
    });
    if (stream == items_.end() || stream->traits->application.empty())
        return;
    const Item *named = nullptr;
    if (value && value->value != "-1")
        for (const Item &item : items_)
            if ((key == targetObjectKey ? std::to_string(item.serial) : std::to_string(item.id)) ==
                value->value)
                named = &item;
    if (named == nullptr)
        remembered.erase(stream->traits->application);
    else
        remembered[stream->traits->application] = named->traits->name;
}

void SimulatedSessionManager::restore(const Item &item) {
    const auto found = remembered.find(item.traits->application);
    if (!item.traits->isStream() || found == remembered.end() || !item.traits->ownTarget.empty())
        return;
    for (const Item &target : items_)
        if (target.traits->name == found->second) {
            send({.kind = Command::Kind::setMetadata,
                  .id = item.id,
                  .key = isNewer ? targetObjectKey : targetNodeKey,
                  .value = {"Spa:Id", std::to_string(isNewer ? target.serial : target.id)}});
            return;
        }
}

/// Returns false if both belong to one link group, directly or through the node that the target's
/// group plays to.
bool SimulatedSessionManager::canLink(const Item &item, const Item &target, int hops) const {
    const std::string &group = item.traits->linkGroup;
    const std::string &other = target.traits->linkGroup;
    if (group.empty() || other.empty())
        return true;
    if (group == other || hops > 7)
        return false;
    for (const Item &half : items_)
        if (half.traits->linkGroup == other && half.serial != target.serial && half.peer != 0)
            for (const Item &peer : items_)
                if (peer.serial == half.peer && !canLink(item, peer, hops + 1))
                    return false;
    return true;
}

const SimulatedSessionManager::Item *SimulatedSessionManager::target(const Item &item) const {
    const auto isTarget = [&](const Item &other) {
        return other.serial != item.serial && !other.traits->isPlayback() &&
               (item.traits->isPlayback() ? other.traits->mediaClass != Class::recording
                                          : other.traits->isDevice()) &&
               isReady(other) && canLink(item, other);
    };
    const auto named = [&](const std::string &name) -> const Item * {
        for (const Item &other : items_)
            if (other.traits->name == name && isTarget(other))
                return &other;
        return nullptr;
    };
    std::string wanted = item.traits->ownTarget;
    bool isID = false;
    if (const MetadataValue *object = valueIn(metadata_, item.id, targetObjectKey)) {
        wanted = object->value;
    } else if (const MetadataValue *node = valueIn(metadata_, item.id, targetNodeKey)) {
        wanted = node->value;
        isID = true;
    }
    if (item.traits->fixedKey == "node.dont-move")
        wanted = item.traits->ownTarget;
    if (wanted != "-1" && !wanted.empty()) {
        if (const auto wantedNumber = number(wanted)) {
            for (const Item &other : items_)
                if ((isID ? other.id : other.serial) == *wantedNumber && isTarget(other))
                    return &other;
        } else if (const Item *found = named(wanted)) {
            return found;
        }
    }
    if (const Item *found = named(default_))
        return found;
    if (named("") == nullptr && !default_.empty())
        for (const Item &other : items_) // the default is in the stream's own link group
            if (other.traits->isDevice() && isTarget(other))
                return &other;
    return nullptr;
}

void SimulatedSessionManager::rescan() {
    if (snapshot_ > 0)
        return;
    for (Item &item : items_) {
        if (!item.traits->isStream() || !item.traits->isAutoconnected || item.isOld ||
            item.traits->isTap())
            continue;
        const Item *wanted = target(item);
        const bool stays = item.traits->fixedKey == "node.dont-reconnect" && item.peer != 0;
        if (stays || (wanted == nullptr ? 0 : wanted->serial) == item.peer)
            continue;
        if (item.peer != 0)
            send({.kind = Command::Kind::disconnect, .serial = item.serial});
        item.peer = 0;
        if (wanted == nullptr)
            continue;
        item.peer = wanted->serial;
        const bool plays = item.traits->isPlayback();
        send({.kind = Command::Kind::connect,
              .serial = plays ? item.serial : wanted->serial,
              .other = plays ? wanted->serial : item.serial});
        if (suspendsOutputs && item.traits->mediaClass == Class::outputInternal &&
            server_.now - startTime_ < 600'000 && chance(random, 40))
            send({.kind = Command::Kind::suspend, .serial = item.serial});
    }
}

} // namespace quorbel::desktop
