#include "settings/state/PresetGainsFile.h"

#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonDocument.h"
#include "settings/records/json/JsonLiterals.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace quorbel {

namespace {

using nlohmann::json;

/// Throws DecodingError.
float decodedGain(const json &value, const std::string &path) {
    const double gain = value.is_number() ? value.get<double>() : std::nan("");
    const float gainDB = static_cast<float>(gain);
    if (!std::isfinite(gainDB))
        throw DecodingError(path, "a gain in dB expected, found " + excerpt(value));
    return gainDB;
}

std::string decodedPreset(const json &value, const std::string &path) {
    const auto id =
        value.is_string() ? Uuid::fromText(value.get_ref<const std::string &>()) : std::nullopt;
    if (!id)
        throw DecodingError(path, "a UUID expected, found " + excerpt(value));
    return id->text();
}

/// Missing keys mean no gains. Throws DecodingError.
PresetGains decodedGains(const json &document) {
    PresetGains gains;
    if (const auto listed = document.find("gainsDB"); listed != document.end()) {
        if (!listed->is_object())
            throw DecodingError("gainsDB", "an object expected, found " + excerpt(*listed));
        for (const auto &[preset, gain] : listed->items())
            gains.ofPresets[decodedPreset(preset, "gainsDB")] =
                decodedGain(gain, "gainsDB." + preset);
    }
    if (const auto applied = document.find("applied"); applied != document.end()) {
        if (!applied->is_object() || !applied->contains("preset") || !applied->contains("gainDB"))
            throw DecodingError("applied",
                                "a preset and a gainDB expected, found " + excerpt(*applied));
        gains.applied = {decodedPreset((*applied)["preset"], "applied.preset"),
                         decodedGain((*applied)["gainDB"], "applied.gainDB")};
    }
    return gains;
}

/// Encodes the shortest decimal of the 32-bit value.
json encodedGain(float gainDB) {
    std::string text;
    appendNumber(text, gainDB);
    return json::parse(text);
}

/// Applies the differences between `seen` and `ours` to `theirs`.
PresetGains merged(const PresetGains &seen, const PresetGains &ours, PresetGains theirs) {
    for (const auto &[preset, gain] : ours.ofPresets)
        if (const auto before = seen.ofPresets.find(preset);
            before == seen.ofPresets.end() || before->second != gain)
            theirs.ofPresets[preset] = gain;
    for (const auto &[preset, gain] : seen.ofPresets)
        if (!ours.ofPresets.contains(preset))
            theirs.ofPresets.erase(preset);
    if (ours.applied != seen.applied)
        theirs.applied = ours.applied;
    return theirs;
}

} // namespace

float PresetGains::of(const Uuid &preset) const {
    const auto found = ofPresets.find(preset.text());
    return found == ofPresets.end() ? 0.0F : found->second;
}

void PresetGains::set(const Uuid &preset, float gainDB) {
    if (gainDB == 0.0F)
        ofPresets.erase(preset.text());
    else
        ofPresets[preset.text()] = gainDB;
}

float PresetGains::inUse(const std::optional<Uuid> &active) const {
    if (!active)
        return 0.0F;
    return applied && applied->first == active->text() ? applied->second : of(*active);
}

PresetGainsFile::PresetGainsFile(const std::string &settingsPath)
    : file_(settingsPath, {.name = "preset-gains",
                           .content = "The gains of presets",
                           .consequence = "All presets have a gain of 0 dB now."}) {}

std::optional<std::string> PresetGainsFile::read() {
    return file_.read([this](const json &document) {
        PresetGains theirs = decodedGains(document);
        gains = merged(seen_, gains, theirs);
        seen_ = std::move(theirs);
    });
}

void PresetGainsFile::peek() {
    file_.peek([this](const json &document) { gains = seen_ = decodedGains(document); });
}

std::optional<std::string> PresetGainsFile::write() {
    if (gains == seen_)
        return std::nullopt;
    PresetGains next;
    const auto merge = [&](const json &document) {
        next = document.empty() ? gains : merged(seen_, gains, decodedGains(document));
    };
    auto warning = file_.update(merge, [&](json &document) {
        json &listed = document["gainsDB"] = json::object();
        for (const auto &[preset, gain] : next.ofPresets)
            listed[preset] = encodedGain(gain);
        document.erase("applied");
        if (next.applied)
            document["applied"] = {{"preset", next.applied->first},
                                   {"gainDB", encodedGain(next.applied->second)}};
    });
    gains = seen_ = std::move(next);
    return warning;
}

} // namespace quorbel
