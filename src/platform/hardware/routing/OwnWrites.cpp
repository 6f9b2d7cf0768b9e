#include "platform/hardware/routing/OwnWrites.h"

#include <algorithm>

namespace quorbel {
namespace {

/// Deadline of an echo, which takes milliseconds. It never comes if the value was the same or the
/// server (0.3.65) has stopped sending events.
constexpr double echoSeconds = 1.0;

} // namespace

bool OwnWrites::isFresh(const Write &write) const {
    return commands_.seconds() - write.time < echoSeconds;
}

void OwnWrites::remember(std::uint32_t subject, const char *key,
                         const std::optional<MetadataValue> &value) {
    const bool mayBeSilent = !value || expected(subject, key) == value;
    writes_.push_back({subject, key, value, mayBeSilent, commands_.seconds()});
}

void OwnWrites::setMetadata(std::uint32_t subject, const char *key, const MetadataValue &value) {
    remember(subject, key, value);
    commands_.setMetadata(subject, key, value);
}

void OwnWrites::deleteMetadata(std::uint32_t subject, const char *key) {
    remember(subject, key, std::nullopt);
    commands_.deleteMetadata(subject, key);
}

void OwnWrites::write(std::uint32_t subject, const char *key,
                      const std::optional<MetadataValue> &value) {
    if (value)
        setMetadata(subject, key, *value);
    else
        deleteMetadata(subject, key);
}

bool OwnWrites::takeEcho(std::uint32_t subject, std::string_view key,
                         const std::optional<MetadataValue> &value) {
    std::erase_if(writes_, [this](const Write &write) { return !isFresh(write); });
    const auto isOfKey = [&](const Write &write) {
        return write.subject == subject && write.key == key;
    };
    // Echoes come in the order of the writes; a write that changed nothing has none.
    auto echoed = std::find_if(writes_.begin(), writes_.end(), isOfKey);
    while (echoed != writes_.end() && echoed->value != value)
        echoed =
            echoed->mayBeSilent ? std::find_if(echoed + 1, writes_.end(), isOfKey) : writes_.end();
    if (echoed == writes_.end())
        return false;
    const auto end = std::remove_if(writes_.begin(), echoed, isOfKey);
    writes_.erase(end, echoed + 1);
    return true;
}

bool OwnWrites::isUnderWay(std::uint32_t subject, std::string_view key) const {
    return std::any_of(writes_.begin(), writes_.end(), [&](const Write &write) {
        return write.subject == subject && write.key == key && isFresh(write);
    });
}

std::optional<MetadataValue> OwnWrites::expected(std::uint32_t subject,
                                                 std::string_view key) const {
    const auto last = std::find_if(writes_.rbegin(), writes_.rend(), [&](const Write &write) {
        return write.subject == subject && write.key == key && isFresh(write);
    });
    return last == writes_.rend() ? objects_.metadata(subject, key) : last->value;
}

} // namespace quorbel
