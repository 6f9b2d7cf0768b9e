#include "platform/hardware/routing/RoutedStream.h"

#include "platform/hardware/routing/StreamRules.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <vector>

namespace quorbel {
namespace {

constexpr std::string_view routedWord = "routed";
constexpr std::string_view releasedWord = "released";
constexpr std::string_view absent = "-";
constexpr const char *followDefault = "-1"; ///< as a target: none

/// Writes blanks (the field separators), control characters and per cent signs as %xx.
std::string escaped(std::string_view text) {
    std::string result = "=";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= 0x20 || byte == 0x7F || c == '%')
            result += fmt::format("%{:02x}", byte);
        else
            result += c;
    }
    return result;
}

template <typename Number> bool parse(std::string_view text, Number &number, int base = 10) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc{} && end == text.data() + text.size();
}

std::optional<std::string> unescaped(std::string_view text) {
    if (text.empty() || text.front() != '=')
        return std::nullopt;
    std::string result;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        unsigned byte = 0;
        if (i + 2 >= text.size() || !parse(text.substr(i + 1, 2), byte, 16))
            return std::nullopt;
        result += static_cast<char>(byte);
        i += 2;
    }
    return result;
}

std::vector<std::string_view> fields(std::string_view line) {
    std::vector<std::string_view> result;
    while (!line.empty()) {
        const std::size_t blank = line.find(' ');
        result.push_back(line.substr(0, blank));
        line = blank == std::string_view::npos ? std::string_view{} : line.substr(blank + 1);
    }
    return result;
}

std::string encoded(const std::optional<MetadataValue> &value) {
    if (!value)
        return fmt::format("{} {}", absent, absent);
    return fmt::format("{} {}", escaped(value->type), escaped(value->value));
}

bool decodeValue(std::string_view type, std::string_view value,
                 std::optional<MetadataValue> &result) {
    if (type == absent && value == absent) {
        result.reset();
        return true;
    }
    const auto plainType = unescaped(type);
    const auto plainValue = unescaped(value);
    if (!plainType || !plainValue)
        return false;
    result = MetadataValue{*plainType, *plainValue};
    return true;
}

void setOrDelete(ServerCommands &commands, std::uint32_t subject, const char *key,
                 const std::optional<MetadataValue> &value) {
    if (value)
        commands.setMetadata(subject, key, *value);
    else
        commands.deleteMetadata(subject, key);
}

/// Name of the node in a value of "target.object", given by serial or by name.
std::string nameOfObject(const ServerObjects &objects, const MetadataValue &target) {
    std::uint64_t serial = 0;
    if (target.value == followDefault)
        return {};
    if (!parse(target.value, serial))
        return target.value;
    const NodeRecord *node = objects.nodeWithSerial(serial);
    return node == nullptr ? std::string() : node->name();
}

std::string nameOfNode(const ServerObjects &objects, const MetadataValue &target) {
    std::uint32_t id = 0;
    const NodeRecord *node = parse(target.value, id) ? objects.node(id) : nullptr;
    return node == nullptr ? std::string() : node->name();
}

/// Name of the node that the session manager remembers once the stream's values are set.
std::string nameLastSet(const ServerObjects &objects, const RoutedStream &stream) {
    if (stream.targetObject)
        return nameOfObject(objects, *stream.targetObject);
    return stream.targetNode ? nameOfNode(objects, *stream.targetNode) : std::string();
}

void resetTargetNode(ServerCommands &commands, std::uint32_t subject, const MetadataValue &value) {
    // Deletes first, because setting an equal value raises no event.
    commands.deleteMetadata(subject, targetNodeKey);
    commands.setMetadata(subject, targetNodeKey, value);
}

} // namespace

std::string RoutedStream::encoded() const {
    return fmt::format("{} {} {} {} {} {} {} {}", routedWord, streamID, streamSerial, tapSerial,
                       formerTapSerial, escaped(remembered), quorbel::encoded(targetObject),
                       quorbel::encoded(targetNode));
}

std::optional<RoutedStream> RoutedStream::decode(std::string_view line) {
    const auto parts = fields(line);
    RoutedStream stream;
    if (parts.size() != 10 || parts[0] != routedWord || !parse(parts[1], stream.streamID) ||
        !parse(parts[2], stream.streamSerial) || !parse(parts[3], stream.tapSerial) ||
        !parse(parts[4], stream.formerTapSerial) ||
        !decodeValue(parts[6], parts[7], stream.targetObject) ||
        !decodeValue(parts[8], parts[9], stream.targetNode))
        return std::nullopt;
    auto remembered = unescaped(parts[5]);
    if (!remembered)
        return std::nullopt;
    stream.remembered = *std::move(remembered);
    return stream;
}

std::string encodedRelease(const RoutedStream &stream) {
    return fmt::format("{} {} {}", releasedWord, stream.streamID, stream.streamSerial);
}

std::optional<std::pair<std::uint32_t, std::uint64_t>> decodeRelease(std::string_view line) {
    const auto parts = fields(line);
    std::pair<std::uint32_t, std::uint64_t> key;
    if (parts.size() != 3 || parts[0] != releasedWord || !parse(parts[1], key.first) ||
        !parse(parts[2], key.second))
        return std::nullopt;
    return key;
}

void RouteLedger::routed(const RoutedStream &stream) {
    std::erase_if(pending_, [&](const auto &entry) {
        return entry.second.streamID == stream.streamID &&
               entry.second.streamSerial == stream.streamSerial;
    });
    streams_[{stream.streamID, stream.streamSerial}] = stream;
}

std::vector<RoutedStream> RouteLedger::confirm(std::uint64_t count) {
    std::vector<RoutedStream> confirmed;
    for (const auto &[number, stream] : pending_)
        if (number <= count) {
            streams_.erase({stream.streamID, stream.streamSerial});
            confirmed.push_back(stream);
        }
    std::erase_if(pending_, [&](const auto &entry) { return entry.first <= count; });
    return confirmed;
}

void RouteLedger::clear() {
    streams_.clear();
    pending_.clear();
}

bool RouteLedger::take(std::string_view line) {
    if (const auto stream = RoutedStream::decode(line)) {
        routed(*stream);
        return true;
    }
    if (const auto released = decodeRelease(line)) {
        streams_.erase(*released);
        return true;
    }
    return false;
}

std::vector<RoutedStream> RouteLedger::streams() const {
    std::vector<RoutedStream> result;
    for (const auto &[_, stream] : streams_)
        result.push_back(stream);
    return result;
}

std::string targetName(const ServerObjects &objects, const std::optional<MetadataValue> &object,
                       const std::optional<MetadataValue> &node) {
    std::string name = object ? nameOfObject(objects, *object) : std::string();
    return name.empty() && node ? nameOfNode(objects, *node) : name;
}

MetadataValue rememberedTarget(const ServerObjects &objects, const RoutedStream &stream) {
    const NodeRecord *node =
        stream.remembered.empty() ? nullptr : objects.nodeNamed(stream.remembered);
    return {"Spa:Id", node == nullptr ? followDefault : std::to_string(node->id)};
}

MetadataValue routeTo(std::uint64_t nodeSerial, const ServerObjects &objects,
                      ServerCommands &commands, const RoutedStream &stream) {
    // By serial: the session manager would remember a name as the application's choice.
    commands.setMetadata(stream.streamID, targetObjectKey, {"Spa:Id", std::to_string(nodeSerial)});
    MetadataValue remembered = rememberedTarget(objects, stream);
    resetTargetNode(commands, stream.streamID, remembered);
    return remembered;
}

bool isRoutedTo(const ServerObjects &objects, std::uint32_t streamID, std::uint64_t tapSerial) {
    const auto current = objects.metadata(streamID, targetObjectKey);
    return current && current->value == std::to_string(tapSerial);
}

bool remembersOwnTarget(const ServerObjects &objects, const RoutedStream &stream) {
    return nameLastSet(objects, stream) == stream.remembered;
}

std::vector<RoutedStream> inOrderOfUndoing(const ServerObjects &objects,
                                           std::vector<RoutedStream> streams) {
    const auto program = [&](const RoutedStream &stream) {
        const NodeRecord *node = objects.node(stream.streamID);
        return node == nullptr || node->serial != stream.streamSerial ? std::string()
                                                                      : programOf(*node);
    };
    const auto last =
        std::stable_partition(streams.begin(), streams.end(), [&](const RoutedStream &stream) {
            return !remembersOwnTarget(objects, stream);
        });
    std::for_each(streams.begin(), last, [&](RoutedStream &stream) {
        if (std::any_of(last, streams.end(), [&](const RoutedStream &other) {
                return other.remembered == stream.remembered && program(other) == program(stream);
            }))
            stream.remembered = nameLastSet(objects, stream);
    });
    return streams;
}

/// Returns the target of a stream without "target.object" metadata, as a value of that key.
static MetadataValue ownTarget(const ServerObjects &objects, const NodeRecord &node,
                               const RoutedStream &stream) {
    std::string name = targetName(objects, std::nullopt, stream.targetNode);
    if (name.empty() && !stream.targetNode)
        name = nameOfObject(objects, {"", node.property("target.object")});
    if (name.empty())
        return {"Spa:Id", followDefault};
    if (const NodeRecord *target = objects.nodeNamed(name))
        return {"Spa:Id", std::to_string(target->serial)};
    return {"Spa:String", name};
}

void undoRoute(const ServerObjects &objects, ServerCommands &commands, const RoutedStream &stream) {
    const NodeRecord *node = objects.node(stream.streamID);
    const std::uint32_t id = stream.streamID;
    if (node == nullptr || node->serial != stream.streamSerial) {
        commands.deleteMetadata(id, targetObjectKey);
        commands.deleteMetadata(id, targetNodeKey);
        return;
    }
    if (stream.targetObject) {
        setOrDelete(commands, id, targetNodeKey, stream.targetNode);
        commands.setMetadata(id, targetObjectKey, *stream.targetObject);
    } else {
        commands.deleteMetadata(id, targetObjectKey);
        commands.deleteMetadata(id, targetNodeKey);
        if (stream.targetNode)
            commands.setMetadata(id, targetNodeKey, *stream.targetNode);
    }
    const bool isAbsent =
        !stream.remembered.empty() && objects.nodeNamed(stream.remembered) == nullptr;
    if (isAbsent || remembersOwnTarget(objects, stream))
        return;
    // The target to remember comes from another stream of the program, which may have ended. This
    // stream's own "target.object" outweighs "target.node", which is seen last and remembered.
    if (!stream.targetObject)
        commands.setMetadata(id, targetObjectKey, ownTarget(objects, *node, stream));
    resetTargetNode(commands, id, rememberedTarget(objects, stream));
}

void restoreRoute(const ServerObjects &objects, ServerCommands &commands,
                  const RoutedStream &stream) {
    if (!isRoutedTo(objects, stream.streamID, stream.tapSerial) &&
        !isRoutedTo(objects, stream.streamID, stream.formerTapSerial))
        return;
    RoutedStream latest = stream;
    // A value that is not ours was set by another client after the line was written.
    const auto node = objects.metadata(stream.streamID, targetNodeKey);
    if (node && node->value != followDefault && *node != rememberedTarget(objects, stream)) {
        latest.targetNode = node;
        latest.remembered = nameOfNode(objects, *node);
    }
    undoRoute(objects, commands, latest);
}

} // namespace quorbel
