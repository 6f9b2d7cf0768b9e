#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quorbel {

class ParameterTree;

using ParameterAddress = std::uint64_t;

/// Units of values, with the platform's numbers.
enum class ParameterUnit : std::uint32_t {
    generic = 0,
    boolean = 2,
    percent = 3,
    hertz = 8,
    decibels = 13,
};

inline constexpr std::uint32_t parameterReadable = 0x40000000;
inline constexpr std::uint32_t parameterWritable = 0x80000000;

struct ParameterDescription {
    std::string identifier;
    std::string name;
    ParameterAddress address = 0;
    float minimum = 0.0F;
    float maximum = 1.0F;
    ParameterUnit unit = ParameterUnit::generic;
    std::uint32_t flags = parameterReadable | parameterWritable;
};

/// An externally readable and settable value of a unit. A tree's observer and provider store it if
/// set. [main]
class Parameter {
  public:
    explicit Parameter(ParameterDescription description);

    [[nodiscard]] const ParameterDescription &description() const { return description_; }
    [[nodiscard]] ParameterAddress address() const { return description_.address; }

    [[nodiscard]] float value() const;

    /// Clamps the value to the range. NaN changes nothing.
    void setValue(float value);

  private:
    friend class ParameterTree;

    ParameterDescription description_;
    float value_;
    const ParameterTree *tree_ = nullptr;
};

/// The parameters of a unit. The unit stores the values through the two implementor functions; each
/// parameter keeps its own value without them. [main]
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

    /// Receives every value set, clamped to the parameter's range.
    ValueObserver implementorValueObserver;

    /// Supplies every value read.
    ValueProvider implementorValueProvider;

  private:
    std::vector<std::shared_ptr<Parameter>> parameters_;
};

} // namespace quorbel
