#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorbel::soundserver {

using Properties = std::map<std::string, std::string>;

struct Node {
    std::uint32_t id = 0;
    std::string state; ///< "running", "idle", "suspended", ...
    Properties properties;

    [[nodiscard]] std::string name() const { return property("node.name"); }
    [[nodiscard]] std::string property(const std::string &key) const;
};

/// One connection between two ports.
struct Link {
    std::uint32_t outputNode = 0;
    std::uint32_t inputNode = 0;
    friend bool operator==(const Link &, const Link &) = default;
};

/// One entry of the metadata object "default": values by subject (a node's id, 0 for the whole) and
/// key.
using MetadataKey = std::pair<std::uint32_t, std::string>;
using Metadata = std::map<MetadataKey, std::string>;

/// Snapshot of the sound server's graph.
struct ServerState {
    std::vector<Node> nodes;
    std::vector<Link> links;
    Metadata metadata;
    bool hasSessionManager = false; ///< the metadata object exists

    /// Parses the output of pw-dump. Throws `ServerError` for any other text.
    static ServerState parse(const std::string &dump);

    [[nodiscard]] const Node *node(const std::string &name) const;
    [[nodiscard]] const Node *node(std::uint32_t id) const;

    /// Names of the nodes that a node plays into, sorted, without duplicates.
    [[nodiscard]] std::vector<std::string> targetsOf(const std::string &nodeName) const;

    /// The name in an entry such as `default.audio.sink`; empty without one.
    [[nodiscard]] std::string defaultName(const std::string &key) const;

    /// The entries that route streams: `target.object` and `target.node`.
    [[nodiscard]] Metadata routing() const;
};

/// Properties by "stream:property", such as "Output/Audio:application.name:player:target".
using StoredStreams = std::map<std::string, std::string>;

/// Parses WirePlumber's stored values of streams: "key=value" lines below a section line. Version
/// 0.4 writes one line per property, 0.5 one JSON object per stream; both give the same keys.
StoredStreams parseStoredStreams(const std::string &text);

} // namespace quorbel::soundserver
