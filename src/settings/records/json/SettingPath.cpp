#include "settings/records/json/SettingPath.h"

#include "settings/records/EQBand.h"
#include "settings/records/json/RecordDecoder.h"
#include "settings/records/json/RecordEncoder.h"

#include <span>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <type_traits>

namespace quorbel {

namespace {

using nlohmann::json;
using Steps = std::span<const std::string>;

constexpr std::size_t longestPath = 100;
constexpr std::size_t longestText = std::size_t{64} << 10U; // all bands are 2 KiB
constexpr std::array<std::string_view, 5> changeable{"bands", "spatial", "mixer", "eqGlobalGainDB",
                                                     "outputDeviceUID"};

template <class> constexpr bool isList = false;
template <class Element> constexpr bool isList<std::vector<Element>> = true;
template <class> constexpr bool isOptional = false;
template <class Value> constexpr bool isOptional<std::optional<Value>> = true;
template <class Value>
concept IsRecord = requires {
    RecordFields<Value>::all;
};
/// A string in JSON.
template <class Value>
concept IsText =
    std::is_same_v<Value, std::string> || std::is_same_v<Value, Uuid> || std::is_enum_v<Value>;

/// `bands[2].gainDB` as {"bands", "2", "gainDB"}.
std::vector<std::string> stepsOf(std::string_view path) {
    if (path.size() > longestPath)
        return {std::string(path)}; // no setting has this name
    std::vector<std::string> steps{""};
    for (const char character : path)
        if (character == '.' || character == '[')
            steps.emplace_back();
        else if (character != ']')
            steps.back() += character;
    return steps;
}

std::string joined(const auto &names) {
    std::string text;
    for (const auto &name : names)
        text.append(text.empty() ? "" : ", ").append(name);
    return text;
}

template <class Value> std::vector<std::string_view> keysOf() {
    std::vector<std::string_view> keys;
    std::apply([&](const auto &...field) { (keys.push_back(field.key), ...); },
               RecordFields<Value>::all);
    return keys;
}

[[noreturn]] void failAt(const CodingPath &at, const std::string &step,
                         const std::string &whatIsThere) {
    const std::string parent = at.text();
    throw DecodingError("", "no setting is named " + quotedText(step) +
                                (parent.empty() ? "" : " in " + parent) + "; there " + whatIsThere);
}

/// Calls `use` with the value at the end of the steps, and its path.
template <class Value>
void visitAt(Value &value, const CodingPath &at, Steps steps, const auto &use) {
    if constexpr (isOptional<Value>) {
        if (!value)
            value.emplace();
        visitAt(*value, at, steps, use);
    } else if (steps.empty()) {
        use(value, at);
    } else if constexpr (IsRecord<Value>) {
        bool isFound = false;
        const auto visitField = [&](const auto &field) {
            if (isFound || field.key != steps.front())
                return;
            isFound = true;
            visitMember(field, [&](auto member) {
                visitAt(value.*member, at.key(field.key), steps.subspan(1), use);
            });
        };
        std::apply([&](const auto &...field) { (visitField(field), ...); },
                   RecordFields<Value>::all);
        if (!isFound)
            failAt(at, steps.front(), "are: " + joined(keysOf<Value>()));
    } else if constexpr (isList<Value>) {
        const std::string &step = steps.front();
        std::size_t index = 0;
        const auto end = step.data() + step.size();
        const auto [rest, error] = std::from_chars(step.data(), end, index);
        if (error != std::errc() || rest != end || index >= value.size())
            failAt(at, step, "are " + std::to_string(value.size()) + ", counted from 0");
        visitAt(value[index], at.index(index), steps.subspan(1), use);
    } else {
        failAt(at, steps.front(), "is one value");
    }
}

template <class Value> SettingValue shown(const Value &value, const CodingPath &at) {
    if constexpr (std::is_same_v<Value, bool>) {
        return value;
    } else {
        std::string text;
        encode(text, at, value);
        // Converts numbers through their shortest decimal: -0.3 rather than -0.30000001192.
        if constexpr (std::is_same_v<Value, float> || std::is_same_v<Value, Date>)
            return json::parse(text).template get<double>();
        else if constexpr (IsText<Value>)
            return json::parse(text).template get<std::string>();
        else
            return text;
    }
}

/// Converts `value` to JSON for a setting of the type `Target`.
template <class Target> json asJson(const SettingValue &value, const CodingPath &at) {
    if (const auto *number = std::get_if<double>(&value)) {
        if (!std::isfinite(*number))
            throw DecodingError(at.text(), "expected a finite number");
        return *number;
    }
    if (const auto *isOn = std::get_if<bool>(&value))
        return *isOn;
    const auto &text = std::get<std::string>(value);
    if (text.size() > longestText)
        throw DecodingError(at.text(), "longer than " + std::to_string(longestText) + " bytes");
    if constexpr (IsText<Target>) {
        return text;
    } else {
        try {
            return parseJson(text);
        } catch (const DecodingError &error) {
            if constexpr (IsRecord<Target> || isList<Target>)
                throw DecodingError(at.text(), error.what());
            else
                return text; // the decoder reports the expected type
        }
    }
}

void requireRange(const std::string &path, float before, float after, double from, double to) {
    const auto value = static_cast<double>(after);
    // The limits are rounded to 32 bits like the value.
    if (after == before || (value >= static_cast<double>(static_cast<float>(from)) &&
                            value <= static_cast<double>(static_cast<float>(to))))
        return;
    std::string problem;
    appendNumber(problem, after);
    problem += " is beyond the range from ";
    appendNumber(problem, static_cast<float>(from));
    problem += " to ";
    appendNumber(problem, static_cast<float>(to));
    throw DecodingError(path, problem);
}

template <class Value>
void requireRanges(const std::string &path, const Value &before, const Value &after) {
    for (const Setting<Value> &setting : RecordFields<Value>::all)
        if (const auto *member = std::get_if<float Value::*>(&setting.field))
            if (!setting.stage.empty()) // others have no control
                requireRange(path + '.' + std::string(setting.key), before.**member, after.**member,
                             static_cast<double>(setting.scale.from),
                             static_cast<double>(setting.scale.to));
}

void requireRanges(const Persisted &before, const Persisted &after) {
    if (after.bands.size() != before.bands.size())
        throw DecodingError("bands", "expected " + std::to_string(before.bands.size()) +
                                         " bands, found " + std::to_string(after.bands.size()));
    for (std::size_t index = 0; index < after.bands.size(); ++index) {
        const std::string path = "bands[" + std::to_string(index) + "].";
        const EQBand &from = before.bands[index];
        const EQBand &to = after.bands[index];
        requireRange(path + "frequency", from.frequency, to.frequency, BandLimits::minFrequency,
                     BandLimits::maxFrequency);
        requireRange(path + "gainDB", from.gainDB, to.gainDB, BandLimits::minGain,
                     BandLimits::maxGain);
        requireRange(path + "q", from.q, to.q, BandLimits::minQ, BandLimits::maxQ);
    }
    requireRange("eqGlobalGainDB", before.eqGlobalGainDB.value_or(0.0F),
                 after.eqGlobalGainDB.value_or(0.0F), BandLimits::minGain, BandLimits::maxGain);
    requireRanges("spatial", before.spatial, after.spatial);
    requireRanges("mixer", before.mixer.value_or(MixerConfig{}),
                  after.mixer.value_or(MixerConfig{}));
}

} // namespace

SettingValue settingAt(const Persisted &settings, std::string_view path) {
    Persisted copy = settings; // `visitAt` adds missing values
    SettingValue result;
    visitAt(copy, CodingPath(), stepsOf(path),
            [&](const auto &value, const CodingPath &at) { result = shown(value, at); });
    return result;
}

std::string setSettingAt(Persisted &settings, std::string_view path, const SettingValue &value) {
    Persisted next = settings;
    std::string written;
    const std::vector<std::string> steps = stepsOf(path);
    visitAt(next, CodingPath(), steps, [&](auto &target, const CodingPath &at) {
        written = at.text();
        if (std::ranges::find(changeable, steps.front()) == changeable.end())
            throw DecodingError(written, "can only be read; " + joined(changeable) + " can be set");
        if (steps.back() == "id")
            throw DecodingError(written, "can only be read");
        using Target = std::decay_t<decltype(target)>;
        Target replacement{};
        decode(asJson<Target>(value, at), at, replacement);
        target = std::move(replacement);
    });
    for (std::size_t index = 0; index < std::min(next.bands.size(), settings.bands.size()); ++index)
        next.bands[index].id = settings.bands[index].id;
    requireRanges(settings, next);
    settings = std::move(next);
    return written;
}

} // namespace quorbel
