#include "soundserver/ServerState.h"

#include "soundserver/Waiting.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <sstream>

namespace quorbel::soundserver {
namespace {

using Json = nlohmann::json;

/// Formats a value like the server's own tools: texts bare, everything else as JSON.
std::string asText(const Json &value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

} // namespace

std::string Node::property(const std::string &key) const {
    const auto found = properties.find(key);
    return found == properties.end() ? "" : found->second;
}

ServerState ServerState::parse(const std::string &dump) {
    // One list, preceded by another for each object that vanished during the query.
    std::map<std::uint32_t, Json> objects;
    std::istringstream text(dump);
    try {
        while (text >> std::ws && text.peek() != std::char_traits<char>::eof()) {
            Json list;
            text >> list;
            for (const Json &object : list)
                objects[object.at("id")] = object;
        }
    } catch (const Json::exception &error) {
        throw ServerError(std::string("not what pw-dump prints: ") + error.what());
    }
    ServerState state;
    for (const auto &[id, object] : objects) {
        const std::string type = object.value("type", "");
        const Json info = object.value("info", Json());
        if (type == "PipeWire:Interface:Node" && info.is_object()) {
            Node node{id, info.value("state", ""), {}};
            const Json properties = info.value("props", Json::object());
            for (const auto &[key, value] : properties.items())
                node.properties[key] = asText(value);
            state.nodes.push_back(std::move(node));
        } else if (type == "PipeWire:Interface:Link" && info.is_object()) {
            state.links.push_back(
                {info.value("output-node-id", 0U), info.value("input-node-id", 0U)});
        } else if (type == "PipeWire:Interface:Metadata" &&
                   object.value("props", Json::object()).value("metadata.name", "") == "default") {
            state.hasSessionManager = true;
            for (const Json &entry : object.value("metadata", Json::array())) {
                state.metadata[{entry.value("subject", 0U), entry.value("key", "")}] =
                    asText(entry.value("value", Json()));
            }
        }
    }
    return state;
}

const Node *ServerState::node(const std::string &name) const {
    const auto found = std::ranges::find(nodes, name, [](const Node &node) { return node.name(); });
    return found == nodes.end() ? nullptr : &*found;
}

const Node *ServerState::node(std::uint32_t id) const {
    const auto found = std::ranges::find(nodes, id, &Node::id);
    return found == nodes.end() ? nullptr : &*found;
}

std::vector<std::string> ServerState::targetsOf(const std::string &nodeName) const {
    const Node *source = node(nodeName);
    std::set<std::string> targets;
    for (const Link &link : links) {
        if (source != nullptr && link.outputNode == source->id) {
            const Node *target = node(link.inputNode);
            targets.insert(target != nullptr ? target->name() : std::to_string(link.inputNode));
        }
    }
    return {targets.begin(), targets.end()};
}

std::string ServerState::defaultName(const std::string &key) const {
    const auto found = metadata.find({0, key});
    if (found == metadata.end())
        return "";
    const Json value = Json::parse(found->second, nullptr, false);
    return value.is_object() ? value.value("name", "") : found->second;
}

Metadata ServerState::routing() const {
    Metadata entries;
    for (const auto &[key, value] : metadata)
        if (key.second.starts_with("target."))
            entries[key] = value;
    return entries;
}

StoredStreams parseStoredStreams(const std::string &text) {
    StoredStreams entries;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const auto equals = line.find('=');
        if (equals == std::string::npos)
            continue;
        const std::string key = line.substr(0, equals);
        const std::string value = line.substr(equals + 1);
        const Json properties = Json::parse(value, nullptr, false);
        if (!properties.is_object()) {
            entries[key] = value;
            continue;
        }
        for (const auto &[property, stored] : properties.items())
            entries[std::string(key).append(":").append(property)] = asText(stored);
    }
    return entries;
}

} // namespace quorbel::soundserver
