#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

/// Model of the session manager's memory of targets, which cannot be read: for each program the
/// last target that the user gave to any of its streams.
class TargetMemory {
  public:
    explicit TargetMemory(const ServerObjects &objects) : objects_(objects) {}

    /// Takes the target of a new stream, unless a target of its program is known or `object` is the
    /// stream's place.
    void learn(const NodeRecord &stream, const std::optional<MetadataValue> &object,
               const std::optional<MetadataValue> &node);
    /// Takes another client's change of a stream's "target.object" or "target.node"; a deletion
    /// forgets the target.
    void choose(const NodeRecord &stream, std::string_view key,
                const std::optional<MetadataValue> &value);
    /// Marks a stream's "target.object" as ours, by serial: not the user's choice for the program.
    void setPlace(std::uint64_t streamSerial, MetadataValue object);
    void forgetPlace(std::uint64_t streamSerial) { places_.erase(streamSerial); }
    /// Name of the node remembered for the stream's program; empty if none.
    [[nodiscard]] std::string of(const NodeRecord &stream) const;

  private:
    const ServerObjects &objects_;
    std::map<std::string, std::string> targets_; ///< names of nodes, by program
    std::map<std::uint64_t, MetadataValue> places_;
};

} // namespace quorbel
