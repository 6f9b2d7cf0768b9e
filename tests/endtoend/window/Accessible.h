#pragma once

#include <atspi/atspi.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// One thing in a program's window, as assistive technology is told of it. What has gone in the
/// meantime reads as empty; operating it throws `ServerError`.
class Accessible {
  public:
    /// Takes the reference over.
    explicit Accessible(AtspiAccessible *object);

    /// Of a program or the desktop: what was read of it before is never taken for what is there.
    void keepNothing() const;

    [[nodiscard]] AtspiRole role() const;
    [[nodiscard]] std::string name() const;
    [[nodiscard]] std::string description() const;
    [[nodiscard]] bool is(AtspiStateType state) const;
    [[nodiscard]] std::optional<double> value() const;
    [[nodiscard]] std::string text() const;
    [[nodiscard]] pid_t process() const;
    /// Those that are shown.
    [[nodiscard]] std::vector<Accessible> children() const;

    /// Everything of the above in one line.
    [[nodiscard]] std::string summary() const;

    void press() const;
    void setValue(double value) const;

  private:
    std::shared_ptr<AtspiAccessible> object_;
};

/// What a test looks for. An empty description: any.
struct Sought {
    AtspiRole role;
    std::string name;
    std::string description{};
};

/// A program as assistive technology finds it.
class AccessibleProgram {
  public:
    /// Returns when the program has a window. Throws `ServerError`.
    explicit AccessibleProgram(pid_t process);

    /// The first of that kind in reading order.
    [[nodiscard]] std::optional<Accessible> lookUp(const Sought &sought) const;

    /// The same, which is waited for. Throws `ServerError`.
    [[nodiscard]] Accessible find(const Sought &sought, double seconds = 5.0) const;

    /// Whether it comes, or goes, in time.
    [[nodiscard]] bool soonShows(const Sought &sought, double seconds = 5.0) const;
    [[nodiscard]] bool soonHides(const Sought &sought, double seconds = 5.0) const;

    /// Everything shown, a line each.
    [[nodiscard]] std::string tree() const;

  private:
    std::optional<Accessible> program_;
};

} // namespace quorbel
