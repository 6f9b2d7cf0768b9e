#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorbel {

/// Targets of one application's stream before it was sent to the tap: everything needed to put it
/// back, by us or, after a crash, by a reader of the journal.
struct RoutedStream {
    std::uint32_t streamID = 0;
    std::uint64_t streamSerial = 0; ///< never reused by the server, unlike ids
    std::uint64_t tapSerial = 0;
    std::uint64_t formerTapSerial = 0; ///< the target until our last write has arrived; 0: none
    std::optional<MetadataValue> targetObject{};
    std::optional<MetadataValue> targetNode{};
    /// Name of the node that the session manager must remember for the stream's program, perhaps
    /// from another stream of the program; empty if none.
    std::string remembered{};

    /// Encodes as one line of text without line end, and back; `decode` returns nothing for other
    /// text.
    [[nodiscard]] std::string encoded() const;
    static std::optional<RoutedStream> decode(std::string_view line);
};

/// The line that removes a stream from the journal.
std::string encodedRelease(const RoutedStream &stream);
/// The stream id and serial of such a line.
std::optional<std::pair<std::uint32_t, std::uint64_t>> decodeRelease(std::string_view line);

/// Receives every stream before it is routed and after it has been put back.
class RouteLog {
  public:
    virtual ~RouteLog() = default;
    virtual void routed(const RoutedStream &stream) = 0;
    virtual void released(const RoutedStream &stream) = 0;
};

/// The streams that are routed to a tap.
class RouteLedger final : public RouteLog {
  public:
    void routed(const RoutedStream &stream) override;
    /// Takes effect with `confirm`: until then the server may not have put the stream back.
    void released(const RoutedStream &stream) override {
        pending_.emplace_back(++releases_, stream);
    }
    /// Number of releases so far.
    [[nodiscard]] std::uint64_t releases() const { return releases_; }
    [[nodiscard]] bool hasUnconfirmed() const { return !pending_.empty(); }
    /// Confirms the first `count` releases, whose commands the server has carried out. Returns the
    /// streams that are no longer routed because of it.
    std::vector<RoutedStream> confirm(std::uint64_t count);
    /// Applies one line of text at once; returns false if it is neither a routing nor a release.
    bool take(std::string_view line);
    void clear();
    [[nodiscard]] std::vector<RoutedStream> streams() const;
    [[nodiscard]] std::size_t size() const { return streams_.size(); }

  private:
    std::map<std::pair<std::uint32_t, std::uint64_t>, RoutedStream> streams_; ///< by id and serial
    std::uint64_t releases_ = 0;
    std::vector<std::pair<std::uint64_t, RoutedStream>> pending_; ///< by release number
};

/// Name of the target node that a stream's two metadata values give; empty if none.
std::string targetName(const ServerObjects &objects, const std::optional<MetadataValue> &object,
                       const std::optional<MetadataValue> &node);

/// Value of "target.node" that makes the session manager remember the user's choice.
MetadataValue rememberedTarget(const ServerObjects &objects, const RoutedStream &stream);

/// Sends the stream to a node and returns the value written to "target.node". Writes the user's
/// choice last, because the session manager remembers the last value that it sees.
MetadataValue routeTo(std::uint64_t nodeSerial, const ServerObjects &objects,
                      ServerCommands &commands, const RoutedStream &stream);

/// True if the stream's target is the tap with this serial.
bool isRoutedTo(const ServerObjects &objects, std::uint32_t streamID, std::uint64_t tapSerial);

/// True if putting the stream back makes the session manager remember `stream.remembered`.
bool remembersOwnTarget(const ServerObjects &objects, const RoutedStream &stream);

/// Sorts streams into the order for putting them back. The session manager remembers a program's
/// last target, so the stream with the target to be remembered comes last of its program.
std::vector<RoutedStream> inOrderOfUndoing(const ServerObjects &objects,
                                           std::vector<RoutedStream> streams);

/// Restores the targets and the remembered one in `stream`. Removes our values if the stream has
/// ended: the server would apply them to the next stream with its id.
void undoRoute(const ServerObjects &objects, ServerCommands &commands, const RoutedStream &stream);
/// As `undoRoute`, unless another client has moved the stream in the meantime.
void restoreRoute(const ServerObjects &objects, ServerCommands &commands,
                  const RoutedStream &stream);

} // namespace quorbel
