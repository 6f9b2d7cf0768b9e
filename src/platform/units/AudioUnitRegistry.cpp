#include "platform/units/AudioUnitRegistry.h"

#include "platform/units/UnitStatus.h"

#include <algorithm>
#include <new>
#include <utility>

namespace quorbel {

void AudioUnitRegistry::registerSubclass(Factory factory, const ComponentDescription &description,
                                         std::string name, std::uint32_t version) {
    Entry entry{{description, std::move(name), version}, std::move(factory)};
    const auto existing =
        std::find_if(entries_.begin(), entries_.end(), [&](const Entry &candidate) {
            return candidate.component.description == description;
        });
    if (existing != entries_.end())
        *existing = std::move(entry);
    else
        entries_.push_back(std::move(entry));
}

std::vector<AudioUnitRegistry::Component> AudioUnitRegistry::components() const {
    std::vector<Component> result;
    result.reserve(entries_.size());
    for (const Entry &entry : entries_)
        result.push_back(entry.component);
    return result;
}

void AudioUnitRegistry::instantiate(const ComponentDescription &description,
                                    InstantiationOptions options, Completion completion) const {
    Factory factory;
    for (const Entry &entry : entries_)
        if (entry.component.description == description)
            factory = entry.factory;

    clock_.post(
        [description, options, factory = std::move(factory), completion = std::move(completion)] {
            if (!factory) {
                completion(nullptr, statusComponentNotFound);
                return;
            }
            std::unique_ptr<AudioUnit> unit;
            try {
                unit = factory(description, options);
            } catch (const AudioUnitError &error) {
                completion(nullptr, error.status());
                return;
            } catch (const std::bad_alloc &) {
                completion(nullptr, statusOutOfMemory);
                return;
            }
            completion(std::move(unit), statusOK);
        });
}

} // namespace quorbel
