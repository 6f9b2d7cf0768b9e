#pragma once

#include "platform/hardware/routing/ServerCommands.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
    /// Name of the node that the session manager is to remember for the stream's program, which may
    /// be the target of another stream of it; empty: none.
    std::string remembered{};

    /// One line of text without its line end, and back; nothing if the text is not such a line.
    [[nodiscard]] std::string encoded() const;
    static std::optional<RoutedStream> decode(std::string_view line);
};

/// The line that takes a stream off the journal again.
std::string encodedRelease(const RoutedStream &stream);
/// The stream id and serial of such a line.
std::optional<std::pair<std::uint32_t, std::uint64_t>> decodeRelease(std::string_view line);

/// The name of the node that these two values of metadata make a stream's target; empty if none.
std::string targetName(const ServerObjects &objects, const std::optional<MetadataValue> &object,
                       const std::optional<MetadataValue> &node);

/// The value of "target.node" that makes the session manager remember the user's own choice.
MetadataValue rememberedTarget(const ServerObjects &objects, const RoutedStream &stream);

/// Sends the stream to a node in such an order that the session manager, which remembers the last
/// of these values that it sees, remembers the user's own choice. Returns what it wrote as
/// "target.node".
MetadataValue routeTo(std::uint64_t nodeSerial, const ServerObjects &objects,
                      ServerCommands &commands, const RoutedStream &stream);

/// True if the stream's target is the tap with this serial.
bool isRoutedTo(const ServerObjects &objects, std::uint32_t streamID, std::uint64_t tapSerial);

/// True if putting the stream back makes the session manager remember what it is to remember.
bool remembersOwnTarget(const ServerObjects &objects, const RoutedStream &stream);

/// The streams in the order in which to put them back. The session manager remembers the last
/// target that it sees of a program, so the stream that has the one to be remembered is the
/// program's last.
std::vector<RoutedStream> inOrderOfUndoing(const ServerObjects &objects,
                                           std::vector<RoutedStream> streams);

/// Puts the stream back where `stream` says it was, and lets the session manager remember what
/// `stream` says. Of a stream that has ended it removes what we set: the server keeps the values of
/// an id, and would apply them to the next stream that is given it.
void undoRoute(const ServerObjects &objects, ServerCommands &commands, const RoutedStream &stream);
/// The same, unless somebody else has moved the stream in the meantime.
void restoreRoute(const ServerObjects &objects, ServerCommands &commands,
                  const RoutedStream &stream);

} // namespace quorbel
