#include "platform/hardware/routing/RoutedStream.h"

#include <fmt/format.h>

#include <charconv>
#include <vector>

namespace quorbel {
namespace {

constexpr std::string_view routedWord = "routed";
constexpr std::string_view releasedWord = "released";
constexpr std::string_view absent = "-";
constexpr const char *followDefault = "-1"; ///< as a target: none

/// Fields are parted by blanks; a value's own blanks and per cent signs are written as %xx.
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

/// The id of the node that a target names, by serial or by name.
std::optional<std::uint32_t> targetedNode(const ServerObjects &objects,
                                          const MetadataValue &target) {
    std::uint64_t serial = 0;
    const NodeRecord *node = parse(target.value, serial) ? objects.nodeWithSerial(serial)
                                                         : objects.nodeNamed(target.value);
    if (node == nullptr)
        return std::nullopt;
    return node->id;
}

} // namespace

std::string RoutedStream::encoded() const {
    return fmt::format("{} {} {} {} {} {} {}", routedWord, streamID, streamSerial, tapSerial,
                       formerTapSerial, quorbel::encoded(targetObject),
                       quorbel::encoded(targetNode));
}

std::optional<RoutedStream> RoutedStream::decode(std::string_view line) {
    const auto parts = fields(line);
    RoutedStream stream;
    if (parts.size() != 9 || parts[0] != routedWord || !parse(parts[1], stream.streamID) ||
        !parse(parts[2], stream.streamSerial) || !parse(parts[3], stream.tapSerial) ||
        !parse(parts[4], stream.formerTapSerial) ||
        !decodeValue(parts[5], parts[6], stream.targetObject) ||
        !decodeValue(parts[7], parts[8], stream.targetNode))
        return std::nullopt;
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

MetadataValue rememberedTarget(const ServerObjects &objects, const RoutedStream &stream) {
    if (stream.targetObject)
        if (const auto node = targetedNode(objects, *stream.targetObject))
            return {"Spa:Id", std::to_string(*node)};
    return stream.targetNode.value_or(MetadataValue{"Spa:Id", followDefault});
}

MetadataValue routeTo(std::uint64_t nodeSerial, const ServerObjects &objects,
                      ServerCommands &commands, const RoutedStream &stream) {
    // By serial: a name would be remembered as the application's own choice.
    commands.setMetadata(stream.streamID, targetObjectKey, {"Spa:Id", std::to_string(nodeSerial)});
    MetadataValue remembered = rememberedTarget(objects, stream);
    // Deleted first, because setting an equal value is not an event.
    commands.deleteMetadata(stream.streamID, targetNodeKey);
    commands.setMetadata(stream.streamID, targetNodeKey, remembered);
    return remembered;
}

bool isRoutedTo(const ServerObjects &objects, std::uint32_t streamID, std::uint64_t tapSerial) {
    const auto current = objects.metadata(streamID, targetObjectKey);
    return current && current->value == std::to_string(tapSerial);
}

void undoRoute(const ServerObjects &objects, ServerCommands &commands, const RoutedStream &stream) {
    const NodeRecord *node = objects.node(stream.streamID);
    const bool hasEnded = node == nullptr || node->serial != stream.streamSerial;
    if (!hasEnded && stream.targetObject) {
        setOrDelete(commands, stream.streamID, targetNodeKey, stream.targetNode);
        commands.setMetadata(stream.streamID, targetObjectKey, *stream.targetObject);
        return;
    }
    commands.deleteMetadata(stream.streamID, targetObjectKey);
    commands.deleteMetadata(stream.streamID, targetNodeKey);
    if (!hasEnded && stream.targetNode)
        commands.setMetadata(stream.streamID, targetNodeKey, *stream.targetNode);
}

void restoreRoute(const ServerObjects &objects, ServerCommands &commands,
                  const RoutedStream &stream) {
    if (!isRoutedTo(objects, stream.streamID, stream.tapSerial) &&
        !isRoutedTo(objects, stream.streamID, stream.formerTapSerial))
        return;
    RoutedStream latest = stream;
    // Another value than ours was set by somebody else after the line was written.
    const auto node = objects.metadata(stream.streamID, targetNodeKey);
    if (node && node->value != followDefault && *node != rememberedTarget(objects, stream))
        latest.targetNode = node;
    undoRoute(objects, commands, latest);
}

} // namespace quorbel
