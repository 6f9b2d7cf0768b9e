#include "endtoend/window/Accessible.h"

#include "soundserver/Waiting.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

namespace quorbel {

using namespace soundserver;

namespace {

/// A shared pointer calls it for null too: where a thing went before it could be read.
struct Unref {
    void operator()(gpointer object) const {
        if (object != nullptr)
            g_object_unref(object);
    }
};
template <typename Type> using Owned = std::unique_ptr<Type, Unref>;

std::string taken(char *text) {
    std::string copy = text != nullptr ? text : "";
    g_free(text);
    return copy;
}

/// For calls whose failure says no more than that the thing has gone.
class Ignored {
  public:
    Ignored() = default;
    ~Ignored() { g_clear_error(&error_); }
    Ignored(const Ignored &) = delete;
    Ignored &operator=(const Ignored &) = delete;
    operator GError **() { return &error_; }

  private:
    GError *error_ = nullptr;
};

[[noreturn]] void cannot(const std::string &what, const Accessible &with) {
    throw ServerError("cannot " + what + " " + with.summary());
}

/// Depth first; `visit` returns whether that was the last one.
template <typename Visit> bool walk(const Accessible &at, int depth, const Visit &visit) {
    if (visit(at, depth))
        return true;
    return std::ranges::any_of(
        at.children(), [&](const Accessible &child) { return walk(child, depth + 1, visit); });
}

/// What libatspi is told besides waits for a main loop, and would add up.
void takeNotices() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}

} // namespace

Accessible::Accessible(AtspiAccessible *object) : object_(object, Unref()) {}

void Accessible::keepNothing() const {
    atspi_accessible_set_cache_mask(object_.get(), ATSPI_CACHE_NONE);
}

AtspiRole Accessible::role() const { return atspi_accessible_get_role(object_.get(), Ignored()); }

std::string Accessible::name() const {
    return taken(atspi_accessible_get_name(object_.get(), Ignored()));
}

std::string Accessible::description() const {
    return taken(atspi_accessible_get_description(object_.get(), Ignored()));
}

bool Accessible::is(AtspiStateType state) const {
    const Owned<AtspiStateSet> states(atspi_accessible_get_state_set(object_.get()));
    return states && atspi_state_set_contains(states.get(), state) != FALSE;
}

std::optional<double> Accessible::value() const {
    const Owned<AtspiValue> face(atspi_accessible_get_value_iface(object_.get()));
    if (!face)
        return {};
    return atspi_value_get_current_value(face.get(), Ignored());
}

std::string Accessible::text() const {
    const Owned<AtspiText> face(atspi_accessible_get_text_iface(object_.get()));
    return face ? taken(atspi_text_get_text(face.get(), 0, -1, Ignored())) : std::string();
}

pid_t Accessible::process() const {
    return static_cast<pid_t>(atspi_accessible_get_process_id(object_.get(), Ignored()));
}

std::vector<Accessible> Accessible::children() const {
    std::vector<Accessible> list;
    const int count = atspi_accessible_get_child_count(object_.get(), Ignored());
    for (int index = 0; index < count; ++index) {
        Accessible child(atspi_accessible_get_child_at_index(object_.get(), index, Ignored()));
        if (child.object_ &&
            (child.is(ATSPI_STATE_VISIBLE) || child.role() == ATSPI_ROLE_APPLICATION))
            list.push_back(std::move(child));
    }
    return list;
}

std::string Accessible::summary() const {
    std::string line = fmt::format("{} \"{}\"", taken(atspi_role_get_name(role())), name());
    if (const std::string more = description(); !more.empty())
        line += fmt::format(" ({})", more);
    if (const auto number = value())
        line += fmt::format(" = {}", *number);
    if (const std::string content = text(); !content.empty())
        line += fmt::format(" [{}]", content);
    for (const auto &[state, word] : {std::pair(ATSPI_STATE_CHECKED, "checked"),
                                      {ATSPI_STATE_SELECTED, "selected"},
                                      {ATSPI_STATE_FOCUSED, "focused"}})
        if (is(state))
            line += fmt::format(", {}", word);
    return line;
}

void Accessible::press() const {
    const Owned<AtspiAction> face(atspi_accessible_get_action_iface(object_.get()));
    if (!face)
        cannot("press", *this);
    const int count = atspi_action_get_n_actions(face.get(), Ignored());
    for (const char *wanted : {"Press", "Toggle"})
        for (int index = 0; index < count; ++index)
            if (taken(atspi_action_get_action_name(face.get(), index, Ignored())) == wanted) {
                if (atspi_action_do_action(face.get(), index, Ignored()) == FALSE)
                    cannot("press", *this);
                return;
            }
    cannot("press", *this);
}

void Accessible::setValue(double value) const {
    const Owned<AtspiValue> face(atspi_accessible_get_value_iface(object_.get()));
    if (!face || atspi_value_set_current_value(face.get(), value, Ignored()) == FALSE)
        cannot(fmt::format("set the value {} of", value), *this);
}

AccessibleProgram::AccessibleProgram(pid_t process) {
    waitFor("a window that assistive technology knows of", 10.0, [&] {
        takeNotices();
        const Accessible desktop(atspi_get_desktop(0));
        desktop.keepNothing();
        for (const Accessible &program : desktop.children()) {
            program.keepNothing();
            if (program.process() == process && !program.children().empty())
                program_ = program;
        }
        return program_.has_value();
    });
}

std::optional<Accessible> AccessibleProgram::lookUp(const Sought &sought) const {
    takeNotices();
    std::optional<Accessible> found;
    walk(*program_, 0, [&](const Accessible &at, int) {
        if (at.role() == sought.role && at.name() == sought.name &&
            (sought.description.empty() || at.description() == sought.description))
            found = at;
        return found.has_value();
    });
    return found;
}

Accessible AccessibleProgram::find(const Sought &sought, double seconds) const {
    std::optional<Accessible> found;
    waitFor(fmt::format("{} \"{}\" ({})", taken(atspi_role_get_name(sought.role)), sought.name,
                        sought.description),
            seconds, [&] {
                found = lookUp(sought);
                return found.has_value();
            });
    return *found;
}

bool AccessibleProgram::soonShows(const Sought &sought, double seconds) const {
    return comesTrue(seconds, [&] { return lookUp(sought).has_value(); });
}

bool AccessibleProgram::soonHides(const Sought &sought, double seconds) const {
    return comesTrue(seconds, [&] { return !lookUp(sought).has_value(); });
}

std::string AccessibleProgram::tree() const {
    std::string lines;
    walk(*program_, 0, [&](const Accessible &at, int depth) {
        lines += std::string(static_cast<std::size_t>(2 * depth), ' ') + at.summary() + "\n";
        return false;
    });
    return lines;
}

} // namespace quorbel
