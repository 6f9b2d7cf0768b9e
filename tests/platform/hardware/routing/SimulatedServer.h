#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorbel::desktop {

using Micros = std::int64_t;

/// SplitMix64 (Steele, Lea, Flood 2014). Seeded from seed and time at every step of a world, so
/// removing a storm event changes only what depends on it.
class Random {
  public:
    explicit Random(std::uint64_t seed, Micros now = 0)
        : state_(seed * 0x9E3779B97F4A7C15U + static_cast<std::uint64_t>(now)) {}
    std::uint64_t operator()() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15U);
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31U);
    }

  private:
    std::uint64_t state_;
};

/// Returns a number from 0 to `count` - 1.
inline int below(Random &random, int count) {
    return static_cast<int>(random() % static_cast<std::uint64_t>(count));
}
inline bool chance(Random &random, int percent) { return below(random, 100) < percent; }

enum class Class : std::uint8_t {
    sink,           ///< Audio/Sink
    playback,       ///< Stream/Output/Audio
    recording,      ///< Stream/Input/Audio
    tapStream,      ///< Stream/Input/Audio/Internal
    tapDevice,      ///< Audio/Sink/Internal
    outputInternal, ///< Stream/Output/Audio/Internal
};

/// Properties of a node, constant for its life except `isAnswered`.
struct NodeTraits {
    std::string name;
    std::string application; ///< key of the targets that the session manager remembers
    Class mediaClass = Class::playback;
    int channels = 2; ///< of the device or the application
    int slot = -1;    ///< of the application or device in the storm
    int handle = 0;   ///< of one of our own nodes
    bool isAutoconnected = true;
    bool recordsSink = false;
    bool isDuplex = false; ///< sink that also records; its outputs are not monitors
    bool isPulse = false;
    bool isAnswered = false;
    std::string fixedKey;
    std::string ownTarget; ///< property target.object
    std::string linkGroup;
    std::string client;
    std::string process;
    PropertyMap registryProperties;
    PropertyMap properties;

    [[nodiscard]] bool isStream() const {
        return mediaClass != Class::sink && mediaClass != Class::tapDevice;
    }
    [[nodiscard]] bool isDevice() const { return mediaClass == Class::sink; }
    [[nodiscard]] bool isPlayback() const {
        return mediaClass == Class::playback || mediaClass == Class::outputInternal;
    }
    [[nodiscard]] bool isTap() const {
        return mediaClass == Class::tapStream || mediaClass == Class::tapDevice;
    }
    /// Derives the properties from the other members.
    void fill();
};
using Traits = std::shared_ptr<const NodeTraits>;

const std::vector<const char *> &channelNames(int count);

struct Node {
    std::uint32_t id = 0;
    std::uint64_t serial = 0;
    Traits traits;
    std::vector<PortRecord> ports;
    bool isStuck = false; ///< suspended while the graph runs
    bool ran = false;     ///< as last reported to its owner
    Micros birth = 0;

    [[nodiscard]] int count(bool input) const {
        int result = 0;
        for (const PortRecord &port : ports)
            result += static_cast<int>(port.isInput == input && !port.isMonitor);
        return result;
    }
};

enum class Owner : std::uint8_t { manager, ours, user };

struct Link {
    std::uint32_t id = 0;
    std::uint32_t outputNode = 0, inputNode = 0, outputPort = 0, inputPort = 0;
    Owner owner = Owner::user;
    std::uint64_t handle = 0; ///< of one of our own links
    bool isPassive = false;
};

/// Values of the "default" metadata, by subject and key.
using Table = std::map<std::pair<std::uint32_t, std::string>, MetadataValue>;

/// Returns null if the table has no such value.
inline const MetadataValue *valueIn(const Table &table, std::uint32_t subject, const char *key) {
    const auto found = table.find({subject, key});
    return found == table.end() ? nullptr : &found->second;
}
/// Sets a value; erases it if `value` is empty.
inline void put(Table &table, std::uint32_t subject, const std::string &key,
                const std::optional<MetadataValue> &value) {
    if (value)
        table.insert_or_assign({subject, key}, *value);
    else
        table.erase({subject, key});
}

/// Event from the server to the session manager or our client.
struct Event {
    enum class Kind : std::uint8_t {
        nodeAdded,
        nodeInfo, ///< all properties
        nodeRemoved,
        portAdded,
        portRemoved,
        linkAdded,
        linkRemoved,
        metadataAppeared,
        metadataValue,
        metadataDone, ///< of a binding
        metadataGone,
        runs,
        stops,
        done, ///< of a round trip
    };
    Kind kind{};
    std::uint32_t id = 0;
    std::uint64_t serial = 0; ///< or number of the round trip or binding
    Traits traits{};
    PortRecord port{};
    Link link{};
    std::string key{};
    std::optional<MetadataValue> value{};
    Micros due = 0;
};

inline Event nodeEvent(Event::Kind kind, const Node &node) {
    return {.kind = kind, .id = node.id, .serial = node.serial, .traits = node.traits};
}
inline Event portEvent(Event::Kind kind, const Node &node, const PortRecord &port) {
    return {.kind = kind, .id = node.id, .serial = node.serial, .port = port};
}
inline Event linkEvent(Event::Kind kind, const Link &link) {
    return {.kind = kind, .id = link.id, .link = link};
}

inline Event metadataEvent(std::uint32_t subject, const std::string &key,
                           const std::optional<MetadataValue> &value, std::uint64_t binding = 0) {
    Event event;
    event.kind = Event::Kind::metadataValue;
    event.id = subject;
    event.serial = binding;
    event.key = key;
    event.value = value;
    return event;
}

/// Command from the session manager, our client or the watchdog.
struct Command {
    enum class Kind : std::uint8_t {
        setMetadata,
        deleteMetadata,
        createNode,
        destroyNode,
        connect,    ///< sets the ports of two nodes and links them, as the session manager does
        disconnect, ///< removes the session manager's links of a stream
        createLink,
        destroyLink,
        removeLink, ///< by its id
        suspend,
        nudge,
        sync,
        bindNode,
        bindMetadata,
        leave, ///< ends the connection
    };
    Kind kind{};
    std::uint32_t id = 0;
    std::uint64_t serial = 0;
    std::uint64_t other = 0;
    Traits traits{};
    Link link{};
    std::string key{};
    MetadataValue value{};
    Micros due = 0;
};

/// FIFO queue for one direction between the server and a party; each message has its own latency.
template <typename Message> class Line {
  public:
    void push(Message message, Micros now, Random &random) {
        const int kind = below(random, 20);
        const Micros latency = kind == 0   ? 1000 + below(random, 15000)
                               : kind < 12 ? 20 + below(random, 300)
                                           : 200 + below(random, 2500);
        // Messages sent at the same time arrive together.
        message.due = pushed_ == now && !messages_.empty() ? messages_.back().due : now + latency;
        pushed_ = now;
        if (!messages_.empty() && messages_.back().due > message.due)
            message.due = messages_.back().due;
        if (message.due < heldUntil_)
            message.due = heldUntil_;
        messages_.push_back(std::move(message));
    }
    [[nodiscard]] bool empty() const { return messages_.empty(); }
    [[nodiscard]] Micros due() const {
        return messages_.empty() ? INT64_MAX : messages_.front().due;
    }
    [[nodiscard]] const Message &front() const { return messages_.front(); }
    Message pop() {
        Message message = std::move(messages_.front());
        messages_.pop_front();
        return message;
    }
    void clear() { messages_.clear(); }
    /// Keeps only the first `kept` messages in transit.
    void cut(std::size_t kept) {
        if (kept < messages_.size())
            messages_.resize(kept);
    }
    [[nodiscard]] std::size_t size() const { return messages_.size(); }
    /// Delivers nothing before `time`.
    void hold(Micros time) {
        heldUntil_ = time;
        for (Message &message : messages_)
            if (message.due < time)
                message.due = time;
    }

  private:
    std::deque<Message> messages_;
    Micros heldUntil_ = 0, pushed_ = -1;
};

/// The sound server: the true state of nodes, ports, links and the "default" metadata.
class SimulatedServer {
  public:
    explicit SimulatedServer(std::uint64_t seed) : random(seed) {}

    Random random; ///< of latencies
    Micros now = 0;
    Micros disturbedAt = 0; ///< last time another client suspended or removed our stream
    bool hasMetadata = false;
    bool keepsValues = false; ///< keeps the values of removed nodes
    bool isDeaf = false;      ///< reports changed metadata only to the session manager
    bool losesTapLinks = false;
    bool hasChanged = true; ///< since the last check of the invariants
    std::vector<Node> nodes;
    std::vector<Link> links;
    Table metadata;
    Line<Event> toManager, toClient;
    Line<Command> fromManager, fromClient, fromWatchdog;
    bool isManagerThere = false, isClientThere = false;
    bool hasWatchdogFinished = false;
    struct Answer {
        Micros due;
        std::uint64_t serial;
    };
    std::vector<Answer> answers; ///< to PulseAudio clients

    [[nodiscard]] Node *find(std::uint64_t serial);
    [[nodiscard]] const Node *find(std::uint64_t serial) const;
    [[nodiscard]] Node *findID(std::uint32_t id);
    [[nodiscard]] const Node *findName(const std::string &name) const;
    [[nodiscard]] const Node *ours(bool tap) const;
    [[nodiscard]] const MetadataValue *value(std::uint32_t subject, const char *key) const {
        return valueIn(metadata, subject, key);
    }
    /// True if a value names our current tap or an earlier one.
    [[nodiscard]] bool wasTap(const std::string &value) const;
    [[nodiscard]] bool isLinked(std::uint32_t output, std::uint32_t input) const;

    std::uint64_t addNode(NodeTraits traits);
    void removeNode(std::uint64_t serial);
    void addPort(Node &node, int index, bool input, bool monitor, const char *channel);
    void addAllPorts(Node &node);
    void setPorts(Node &node, int channels);
    void addLink(Link link);
    void removeLinks(Owner owner);
    void removeLinksOf(std::uint32_t outputNode);
    void connectByChannel(const Node &output, const Node &input, Owner owner);
    void setMetadata(std::uint32_t subject, const std::string &key,
                     const std::optional<MetadataValue> &value);

    void carryOut(const Command &command, bool isWatchdog = false);
    void answer(); ///< answers the PulseAudio clients that are due
    void managerArrives();
    void managerLeaves();
    void clientArrives();
    void clientLeaves();
    /// Ends the server with all its objects.
    void die();

  private:
    void tell(const Event &event);
    void tellClient(const Event &event);
    template <typename Predicate> void removeLinksIf(const Predicate &predicate);
    void removeLinksAt(std::uint32_t node);
    void snapshot(Line<Event> &line);
    void lookAtStates();
    std::uint32_t freeNodeID(bool isOurs) const;

    std::vector<std::uint64_t> taps_; ///< serials of all taps so far
    std::uint64_t nextSerial_ = 100;
    std::uint32_t nextPort_ = 1000, nextLink_ = 5000;
};

} // namespace quorbel::desktop
