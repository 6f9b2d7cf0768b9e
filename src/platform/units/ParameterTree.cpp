#include "platform/units/ParameterTree.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorbel {

Parameter::Parameter(ParameterDescription description)
    : description_(std::move(description)), value_(description_.minimum) {}

float Parameter::value() const {
    if (tree_ != nullptr && tree_->implementorValueProvider)
        return tree_->implementorValueProvider(*this);
    return value_;
}

void Parameter::setValue(float value) {
    if (std::isnan(value))
        return;
    value_ = std::clamp(value, description_.minimum, description_.maximum);
    if (tree_ != nullptr && tree_->implementorValueObserver)
        tree_->implementorValueObserver(*this, value_);
}

ParameterTree::ParameterTree(std::vector<std::shared_ptr<Parameter>> parameters)
    : parameters_(std::move(parameters)) {
    for (const auto &parameter : parameters_)
        parameter->tree_ = this;
}

ParameterTree::~ParameterTree() {
    for (const auto &parameter : parameters_)
        parameter->tree_ = nullptr;
}

Parameter *ParameterTree::parameterWithAddress(ParameterAddress address) const {
    for (const auto &parameter : parameters_)
        if (parameter->address() == address)
            return parameter.get();
    return nullptr;
}

} // namespace quorbel
