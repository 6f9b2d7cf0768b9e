#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

/// Forwards commands and keeps each of our metadata writes until its echo, the server's event about
/// it. Thus tells our changes from other clients', and knows whether a write under way will replace
/// another client's change.
class OwnWrites final : public ServerCommands {
  public:
    OwnWrites(const ServerObjects &objects, ServerCommands &commands)
        : objects_(objects), commands_(commands) {}

    void setMetadata(std::uint32_t subject, const char *key, const MetadataValue &value) override;
    void deleteMetadata(std::uint32_t subject, const char *key) override;
    void readMetadata() override { commands_.readMetadata(); }
    [[nodiscard]] bool isDeaf() const override { return commands_.isDeaf(); }
    OwnLink createLink(const LinkRequest &request) override {
        return commands_.createLink(request);
    }
    void destroyLink(OwnLink link) override { commands_.destroyLink(link); }
    void removeLink(std::uint32_t linkID) override { commands_.removeLink(linkID); }
    [[nodiscard]] double seconds() const override { return commands_.seconds(); }

    /// Sets the value, or deletes the key without one.
    void write(std::uint32_t subject, const char *key, const std::optional<MetadataValue> &value);
    /// Returns true if the change is the echo of a write, and removes that write.
    bool takeEcho(std::uint32_t subject, std::string_view key,
                  const std::optional<MetadataValue> &value);
    /// True if a write of the key is under way.
    [[nodiscard]] bool isUnderWay(std::uint32_t subject, std::string_view key) const;
    /// Value of the key after the writes under way.
    [[nodiscard]] std::optional<MetadataValue> expected(std::uint32_t subject,
                                                        std::string_view key) const;
    void clear() { writes_.clear(); }

  private:
    struct Write {
        std::uint32_t subject = 0;
        std::string key;
        std::optional<MetadataValue> value;
        bool mayBeSilent = false; ///< may change nothing, and then has no echo
        double time = 0.0;
    };
    [[nodiscard]] bool isFresh(const Write &write) const;

    void remember(std::uint32_t subject, const char *key,
                  const std::optional<MetadataValue> &value);

    const ServerObjects &objects_;
    ServerCommands &commands_;
    std::vector<Write> writes_; ///< oldest first
};

} // namespace quorbel
