#include "ui/app/AutostartEntry.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace quorbel {

namespace {

constexpr std::string_view blanks = " \t\r\f\v";
constexpr std::string_view groupLine = "[Desktop Entry]";

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

/// Returns the line of `text` that begins at `at`, without its end; moves `at` to the next line.
std::string_view nextLine(std::string_view text, std::size_t &at) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const std::string_view line = text.substr(at, end - at);
    at = end + 1;
    return line;
}

/// Index of the value in a line of `key`; nullopt for other lines.
std::optional<std::size_t> valueStart(std::string_view line, std::string_view key) {
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos || withoutBlanks(line.substr(0, sign)) != key)
        return std::nullopt;
    const std::size_t start = line.find_first_not_of(" \t", sign + 1);
    return start == std::string_view::npos ? line.size() : start;
}

/// Offsets of `key`'s values in the entry's group, and of the line after the group header.
struct Places {
    std::optional<std::size_t> group;
    std::vector<std::size_t> values;
};

Places placesOfKey(std::string_view text, std::string_view key) {
    Places places;
    bool isInGroup = false;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        const std::string_view line = nextLine(text, at);
        const std::string_view content = withoutBlanks(line);
        if (content.starts_with('[')) {
            isInGroup = content == groupLine && !places.group;
            if (isInGroup)
                places.group = std::min(at, text.size());
        } else if (isInGroup && !content.starts_with('#')) {
            if (const auto value = valueStart(line, key))
                places.values.push_back(start + *value);
        }
    }
    return places;
}

bool listHas(std::string_view list, char separator, std::string_view word) {
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(separator), list.size());
        if (withoutBlanks(list.substr(0, end)) == word)
            return true;
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return false;
}

/// True if `list` (separated by ;) contains any of `desktops` (separated by :).
bool listHasAny(std::string_view list, std::string_view desktops) {
    while (!desktops.empty()) {
        const std::size_t end = std::min(desktops.find(':'), desktops.size());
        if (end > 0 && listHas(list, ';', desktops.substr(0, end)))
            return true;
        desktops.remove_prefix(std::min(end + 1, desktops.size()));
    }
    return false;
}

/// Escapes `text` as a value of type string.
std::string stringValue(std::string_view text) {
    std::string value;
    for (const char c : text)
        value += c == '\\'   ? std::string("\\\\")
                 : c == '\n' ? std::string("\\n")
                             : std::string(1, c);
    return value;
}

/// Reverses the escapes of a value of type string.
std::string unescaped(std::string_view value) {
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        const char next = value[++i];
        text += next == 's'   ? ' '
                : next == 'n' ? '\n'
                : next == 't' ? '\t'
                : next == 'r' ? '\r'
                              : next;
    }
    return text;
}

/// Quotes an argument of the key Exec; the escapes of type string follow separately.
std::string execArgument(std::string_view argument) {
    std::string text;
    for (const char c : argument) {
        if (std::string_view("\"`$\\").find(c) != std::string_view::npos)
            text += '\\';
        text += c == '%' ? std::string("%%") : std::string(1, c);
    }
    const bool isPlain =
        text.find_first_of(" \t\n\"'\\><~|&;$*?#()`") == std::string::npos && !text.empty();
    return isPlain ? text : '"' + text + '"';
}

} // namespace

AutostartEntry AutostartEntry::running(const std::string &program) {
    return AutostartEntry("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Version=1.1\n"
                          "Name=Ostrafine\n"
                          "Comment=Continue processing the sound after login\n"
                          "Exec=" +
                          stringValue(execArgument(program)) +
                          " ctl resume\n"
                          "TryExec=" +
                          stringValue(program) +
                          "\n"
                          "Icon=com.quorbel.Ostrafine\n"
                          "Terminal=false\n");
}

std::optional<std::string> AutostartEntry::value(std::string_view key) const {
    const Places places = placesOfKey(text_, key);
    if (places.values.empty())
        return std::nullopt;
    std::size_t at = places.values.back(); // readers use the last duplicate
    return std::string(withoutBlanks(nextLine(text_, at)));
}

bool AutostartEntry::isTrue(std::string_view key) const {
    const std::string text = value(key).value_or("");
    return text == "true" || text == "1";
}

void AutostartEntry::set(std::string_view key, std::string_view value) {
    const Places places = placesOfKey(text_, key);
    if (!places.values.empty()) {
        std::size_t at = places.values.back();
        const std::size_t start = at;
        const std::string_view old = nextLine(text_, at);
        const std::size_t length = old.find_last_not_of(blanks) + 1; // npos + 1 is 0
        text_.replace(start, length, value);
        return;
    }
    if (!places.group)
        text_.insert(0, std::string(groupLine) + '\n');
    std::size_t at = placesOfKey(text_, key).group.value_or(0);
    if (at > 0 && text_[at - 1] != '\n')
        text_.insert(at++, "\n");
    text_.insert(at, std::string(key) + '=' + std::string(value) + '\n');
}

bool AutostartEntry::isForOthers(std::string_view desktops) const {
    const auto only = value("OnlyShowIn");
    const auto none = value("NotShowIn");
    return (only && !listHasAny(*only, desktops)) || (none && listHasAny(*none, desktops));
}

bool AutostartEntry::isOn(std::string_view desktops,
                          const std::function<bool(const std::string &)> &isProgram) const {
    if (isTrue("Hidden") || isForOthers(desktops) || value("Exec").value_or("").empty())
        return false;
    if (value("X-GNOME-Autostart-enabled") && !isTrue("X-GNOME-Autostart-enabled"))
        return false;
    const auto needed = value("TryExec");
    return !needed || isProgram(unescaped(*needed));
}

void AutostartEntry::switchOn(const AutostartEntry &own,
                              const std::function<bool(const std::string &)> &isProgram) {
    if (value("Hidden"))
        set("Hidden", "false");
    if (value("X-GNOME-Autostart-enabled"))
        set("X-GNOME-Autostart-enabled", "true");
    const auto needed = value("TryExec");
    if (value("Exec").value_or("").empty() || (needed && !isProgram(unescaped(*needed))))
        for (const char *key : {"TryExec", "Exec", "Name", "Type"})
            set(key, own.value(key).value_or(""));
}

void AutostartEntry::switchOff() { set("Hidden", "true"); }

} // namespace quorbel
