#pragma once

#include "soundserver/PrivateSoundServer.h"

#include <memory>
#include <string>

namespace quorbel {

/// The accessibility bus of a private session, with this process as its assistive technology. One
/// at a time, since libatspi knows only one.
class AccessibilityBus {
  public:
    /// Throws `ServerError`.
    AccessibilityBus(const soundserver::PrivateSoundServer &session, const std::string &display);
    ~AccessibilityBus();
    AccessibilityBus(const AccessibilityBus &) = delete;
    AccessibilityBus &operator=(const AccessibilityBus &) = delete;

    /// Types into what has the keyboard's focus. Not every toolkit lets a field's content be set:
    /// Qt Quick's, up to 6.4, has only keys. Throws `ServerError`.
    void type(const std::string &text);

  private:
    std::unique_ptr<soundserver::ChildProcess> launcher_;
};

} // namespace quorbel
