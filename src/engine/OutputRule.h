#pragma once

namespace quorbel {

struct AudioDevice;

/// The use of an output.
struct OutputUse {
    bool isLeftAlone = false; ///< nothing is captured while it is in use
    bool isAwaited = false;   ///< may change once the device's identity is complete
};

/// Says what each output is for and brings its settings. The engine asks at its start and when the
/// output in use or its identity has changed. [main]
class OutputRule {
  public:
    virtual ~OutputRule() = default;

    /// Whether outputs are told apart. If not, no other call is made, and nothing is waited for.
    [[nodiscard]] virtual bool isInForce() const = 0;

    [[nodiscard]] virtual OutputUse useOf(const AudioDevice &device) const = 0;

    /// Sets the engine's settings for this device, all of them in one change: called before the
    /// first block for it, and where it is left alone too.
    virtual void adopt(const AudioDevice &device) = 0;
};

} // namespace quorbel
