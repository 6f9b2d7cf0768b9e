#pragma once

namespace quorbel {

struct AudioDevice;

/// Decision about one output.
struct OutputUse {
    bool isLeftAlone = false; ///< nothing is captured while it is in use
    bool isAwaited = false;   ///< may change once the device's identity is complete
};

/// Decides the use of each output and applies its settings. The engine asks at its start and when
/// the output in use or its identity has changed. [main]
class OutputRule {
  public:
    virtual ~OutputRule() = default;

    /// True if the rule has any effect. If not, the engine makes no other call and never waits.
    [[nodiscard]] virtual bool isActive() const = 0;

    [[nodiscard]] virtual OutputUse useOf(const AudioDevice &device) const = 0;

    /// Applies this device's settings to the engine in one change, before its first block. Also
    /// called for a device that is left alone.
    virtual void adopt(const AudioDevice &device) = 0;
};

} // namespace quorbel
