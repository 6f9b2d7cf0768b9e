#pragma once

#include "platform/threads/Clock.h"
#include "platform/units/AudioUnit.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quorbel {

/// Makes audio units by description. [main]
class AudioUnitRegistry {
  public:
    /// Makes one unit; throws AudioUnitError.
    using Factory = std::function<std::unique_ptr<AudioUnit>(const ComponentDescription &,
                                                             InstantiationOptions)>;

    struct Component {
        ComponentDescription description;
        std::string name;
        std::uint32_t version = 0;
    };

    /// Completions are posted to `clock`.
    explicit AudioUnitRegistry(Clock &clock) : clock_(clock) {}

    /// Registering a description again replaces the earlier entry.
    void registerSubclass(Factory factory, const ComponentDescription &description,
                          std::string name, std::uint32_t version);

    /// In order of registration.
    [[nodiscard]] std::vector<Component> components() const;

    /// Receives either a unit or a status other than 0: `statusComponentNotFound` for an unknown
    /// description, otherwise the failure of the unit's constructor.
    using Completion = std::function<void(std::unique_ptr<AudioUnit> unit, Status status)>;

    /// Delivers a unit later, never inside this call. The registry may be destroyed first.
    void instantiate(const ComponentDescription &description, InstantiationOptions options,
                     Completion completion) const;

  private:
    struct Entry {
        Component component;
        Factory factory;
    };

    Clock &clock_;
    std::vector<Entry> entries_;
};

} // namespace quorbel
