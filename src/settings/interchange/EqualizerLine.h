#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace quorbel {

// Syntax of one line of an equaliser text. Numbers stay strings, because their decimal mark depends
// on the whole file.

/// "Filter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.70"
struct FilterLine {
    bool on = true;
    std::string type; ///< in capitals
    std::optional<std::string> frequency;
    bool kilohertz = false;
    std::optional<std::string> gain;
    std::optional<std::string> q;
    std::optional<std::string> octaves; ///< "BW Oct 0.5", in place of Q
};

/// "Preamp: -6.2 dB"
struct PreampLine {
    std::string gain;
};

/// "Channel: L" limits the following lines to these channels.
struct ChannelLine {
    bool everything = true; ///< all channels, or both sides
};

struct EmptyLine {};

struct RefusedLine {
    std::string reason;
};

using EqualizerLine = std::variant<EmptyLine, FilterLine, PreampLine, ChannelLine, RefusedLine>;

/// `line` is UTF-8 without its line break; case and kind of blanks do not matter.
[[nodiscard]] EqualizerLine parseEqualizerLine(std::string_view line);

} // namespace quorbel
