#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

/// The text of an entry in an autostart folder (Desktop Application Autostart Specification 0.5,
/// Desktop Entry Specification 1.5). It may be anybody's: what this class does not change stays as
/// it is, with comments, order and ends of lines. Texts are UTF-8.
class AutostartEntry {
  public:
    explicit AutostartEntry(std::string text) : text_(std::move(text)) {}

    /// An entry of this program's own, which runs `program` (an absolute path) as a login does.
    [[nodiscard]] static AutostartEntry running(const std::string &program);

    [[nodiscard]] const std::string &text() const { return text_; }

    /// True if the session of `desktops` (as in XDG_CURRENT_DESKTOP) runs the entry. `isProgram`
    /// says whether the value of TryExec can be run.
    [[nodiscard]] bool isOn(std::string_view desktops,
                            const std::function<bool(const std::string &)> &isProgram) const;
    /// True if the entry is meant for other desktops.
    [[nodiscard]] bool isForOthers(std::string_view desktops) const;

    /// Lets sessions run the entry, or not. An entry that runs nothing, or a program that
    /// `isProgram` denies, gets the commands of `own`.
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
