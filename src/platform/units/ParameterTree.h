#pragma once

#include "platform/units/Parameter.h"

#include <functional>
#include <memory>
#include <vector>

namespace quorbel {

/// The parameters of a unit. The implementor (the unit) says through its two functions where values
/// are stored; without them each parameter keeps its own. [main]
class ParameterTree {
  public:
    using ValueObserver = std::function<void(const Parameter &parameter, float value)>;
    using ValueProvider = std::function<float(const Parameter &parameter)>;

    explicit ParameterTree(std::vector<std::shared_ptr<Parameter>> parameters);
    ~ParameterTree();
    ParameterTree(const ParameterTree &) = delete;
    ParameterTree &operator=(const ParameterTree &) = delete;

    [[nodiscard]] const std::vector<std::shared_ptr<Parameter>> &allParameters() const {
        return parameters_;
    }

    /// Null if no parameter has this address.
    [[nodiscard]] Parameter *parameterWithAddress(ParameterAddress address) const;

    /// Is handed every value that is set, already inside the parameter's range.
    ValueObserver implementorValueObserver;

    /// Is asked for every value that is read.
    ValueProvider implementorValueProvider;

  private:
    std::vector<std::shared_ptr<Parameter>> parameters_;
};

} // namespace quorbel
