#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

/// What the session manager remembers as the target of each program, as far as it can be seen: the
/// last target that the user has given to any of the program's streams. Its own memory cannot be
/// read.
class TargetMemory {
  public:
    explicit TargetMemory(const ServerObjects &objects) : objects_(objects) {}

    /// Takes the target that a stream has when it is seen first, unless a target of its program is
    /// known already.
    void learn(const NodeRecord &stream, const std::optional<MetadataValue> &object,
               const std::optional<MetadataValue> &node);
    /// Takes what somebody else has set as the "target.object" or "target.node" of a stream; no
    /// value ends the memory.
    void choose(const NodeRecord &stream, std::string_view key,
                const std::optional<MetadataValue> &value);
    /// The name of the node that is remembered for the stream's program; empty if none.
    [[nodiscard]] std::string of(const NodeRecord &stream) const;

  private:
    const ServerObjects &objects_;
    std::map<std::string, std::string> targets_; ///< names of nodes, by program
};

} // namespace quorbel
