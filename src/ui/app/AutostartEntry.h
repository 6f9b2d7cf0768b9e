#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

/// Text of an entry in an autostart folder (Desktop Application Autostart Specification 0.5,
/// Desktop Entry Specification 1.5). Preserves everything it does not change: comments, order and
/// line ends. Texts are UTF-8.
class AutostartEntry {
  public:
    explicit AutostartEntry(std::string text) : text_(std::move(text)) {}

    /// Returns this program's own entry, which runs `program` (an absolute path) at login.
    [[nodiscard]] static AutostartEntry running(const std::string &program);

    [[nodiscard]] const std::string &text() const { return text_; }

    /// True if the session of `desktops` (as in XDG_CURRENT_DESKTOP) runs the entry. `isProgram`
    /// returns true if the value of TryExec is executable.
    [[nodiscard]] bool isOn(std::string_view desktops,
                            const std::function<bool(const std::string &)> &isProgram) const;
    /// True if OnlyShowIn or NotShowIn excludes the session of `desktops`.
    [[nodiscard]] bool isForOthers(std::string_view desktops) const;

    /// Enables the entry. Takes the commands of `own` if the entry runs nothing or `isProgram`
    /// rejects its program.
    void switchOn(const AutostartEntry &own,
                  const std::function<bool(const std::string &)> &isProgram);
    void switchOff();

  private:
    [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
    [[nodiscard]] bool isTrue(std::string_view key) const;
    void set(std::string_view key, std::string_view value);

    std::string text_;
};

} // namespace quorbel
