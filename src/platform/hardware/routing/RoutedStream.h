#pragma once

#include "platform/hardware/routing/ServerCommands.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quorbel {

/// How one application's stream was routed before it was sent to the tap: all that is needed to put
/// it back, by us or, if we die, by whoever reads the journal.
struct RoutedStream {
    std::uint32_t streamID = 0;
    std::uint64_t streamSerial = 0; ///< ids are used again by the server, serials are not
    std::uint64_t tapSerial = 0;
    std::uint64_t formerTapSerial =
        0; ///< still its target until our last write has arrived; 0: none
    std::optional<MetadataValue> targetObject{};
    std::optional<MetadataValue> targetNode{};

    /// One line of text without its line end, and back; nothing if the text is not such a line.
    [[nodiscard]] std::string encoded() const;
    static std::optional<RoutedStream> decode(std::string_view line);
};

/// The line that takes a stream off the journal again.
std::string encodedRelease(const RoutedStream &stream);
/// The stream id and serial of such a line.
std::optional<std::pair<std::uint32_t, std::uint64_t>> decodeRelease(std::string_view line);

/// The value of "target.node" that makes the session manager remember the user's own choice.
MetadataValue rememberedTarget(const ServerObjects &objects, const RoutedStream &stream);

/// Sends the stream to a node in such an order that the session manager, which remembers the last
/// of these values that it sees, remembers the user's own choice. Returns what it wrote as
/// "target.node".
MetadataValue routeTo(std::uint64_t nodeSerial, const ServerObjects &objects,
                      ServerCommands &commands, const RoutedStream &stream);

/// True if the stream's target is the tap with this serial.
bool isRoutedTo(const ServerObjects &objects, std::uint32_t streamID, std::uint64_t tapSerial);

/// Puts the stream back where `stream` says it was. Of a stream that has ended it removes what we
/// set: the server keeps the values of an id, and would apply them to the next stream that is given
/// it.
void undoRoute(const ServerObjects &objects, ServerCommands &commands, const RoutedStream &stream);
/// The same, unless somebody else has moved the stream in the meantime.
void restoreRoute(const ServerObjects &objects, ServerCommands &commands,
                  const RoutedStream &stream);

} // namespace quorbel
