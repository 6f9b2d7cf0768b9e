#pragma once

namespace quorbel {

struct AudioDevice;

/// The use of an output.
struct OutputUse {
    bool isLeftAlone = false; ///< nothing is captured while it is in use
    bool isAwaited = false;   ///< may change once the device's identity is complete
};

/// Decides what each output is used for and sets its settings. The engine asks at its start and
/// when the output in use or its identity has changed. [main]
class OutputRule {
  public:
    virtual ~OutputRule() = default;

    /// True if the rule has any effect. If not, the engine makes no other call and never waits.
    [[nodiscard]] virtual bool isInForce() const = 0;

    [[nodiscard]] virtual OutputUse useOf(const AudioDevice &device) const = 0;

    /// Sets the engine's settings for this device, all of them in one change: called before the
    /// first block for it, and where it is left alone too.
    virtual void adopt(const AudioDevice &device) = 0;
};

} // namespace quorbel
