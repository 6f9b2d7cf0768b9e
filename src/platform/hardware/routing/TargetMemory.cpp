#include "platform/hardware/routing/TargetMemory.h"

#include "platform/hardware/routing/RoutedStream.h"
#include "platform/hardware/routing/StreamRules.h"

#include <utility>

namespace quorbel {

void TargetMemory::learn(const NodeRecord &stream, const std::optional<MetadataValue> &object,
                         const std::optional<MetadataValue> &node) {
    const auto place = places_.find(stream.serial);
    const bool isOurs = place != places_.end() && object == place->second;
    // A deleted target may be learnt again: losing a choice is worse than keeping an old one.
    if (std::string &known = targets_[programOf(stream)]; known.empty())
        known = targetName(objects_, isOurs ? std::nullopt : object, node);
}

void TargetMemory::choose(const NodeRecord &stream, std::string_view key,
                          const std::optional<MetadataValue> &value) {
    targets_[programOf(stream)] = key == targetObjectKey
                                      ? targetName(objects_, value, std::nullopt)
                                      : targetName(objects_, std::nullopt, value);
}

void TargetMemory::setPlace(std::uint64_t streamSerial, MetadataValue object) {
    places_[streamSerial] = std::move(object);
}

std::string TargetMemory::of(const NodeRecord &stream) const {
    const auto found = targets_.find(programOf(stream));
    return found == targets_.end() ? std::string() : found->second;
}

} // namespace quorbel
