#pragma once

#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonDocument.h"
#include "settings/records/json/RecordFields.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

// One `decode` per type of value in a record. A value of the wrong type is an error, never replaced
// by a default; unknown keys are ignored.

namespace quorbel {

[[noreturn]] inline void failDecoding(const CodingPath &path, const std::string &expected,
                                      const nlohmann::json &found) {
    throw DecodingError(path.text(), "expected " + expected + ", found " + excerpt(found));
}

inline void decode(const nlohmann::json &json, const CodingPath &path, bool &value) {
    if (!json.is_boolean())
        failDecoding(path, "true or false", json);
    value = json.get<bool>();
}

inline void decode(const nlohmann::json &json, const CodingPath &path, float &value) {
    if (!json.is_number())
        failDecoding(path, "a number", json);
    const double number = json.get<double>();
    constexpr double largest = std::numeric_limits<float>::max();
    constexpr double firstBeyond =
        0x1.ffffffp127; // halfway to the next power of two: rounds to infinity
    if (std::abs(number) >= firstBeyond)
        failDecoding(path, "a number that fits 32-bit floating point", json);
    value =
        static_cast<float>(std::abs(number) > largest ? std::copysign(largest, number) : number);
}

inline void decode(const nlohmann::json &json, const CodingPath &path, std::string &value) {
    if (!json.is_string())
        failDecoding(path, "a string", json);
    value = json.get_ref<const std::string &>();
}

inline void decode(const nlohmann::json &json, const CodingPath &path, Uuid &value) {
    const auto uuid =
        json.is_string() ? Uuid::fromText(json.get_ref<const std::string &>()) : std::nullopt;
    if (!uuid)
        failDecoding(path, "a UUID", json);
    value = *uuid;
}

inline void decode(const nlohmann::json &json, const CodingPath &path, Date &value) {
    if (!json.is_number())
        failDecoding(path, "a date in seconds since 2001", json);
    value.secondsSince2001 = json.get<double>();
}

template <class Enumeration>
requires std::is_enum_v<Enumeration>
void decode(const nlohmann::json &json, const CodingPath &path, Enumeration &value) {
    using Names = EnumerationNames<Enumeration>;
    if (json.is_string())
        for (const auto &[candidate, name] : Names::all)
            if (json.get_ref<const std::string &>() == name) {
                value = candidate;
                return;
            }
    std::string expected = "a " + std::string(Names::kind) + " (";
    const char *separator = "";
    for (const auto &[candidate, name] : Names::all) {
        expected.append(separator).append(name);
        separator = ", ";
    }
    failDecoding(path, expected + ")", json);
}

template <class Record>
requires requires { RecordFields<Record>::all; }
void decode(const nlohmann::json &json, const CodingPath &path, Record &value);

template <class Element>
void decode(const nlohmann::json &json, const CodingPath &path, std::vector<Element> &value) {
    if (!json.is_array())
        failDecoding(path, "an array", json);
    value.clear();
    for (const nlohmann::json &element : json) {
        const CodingPath elementPath = path.index(value.size());
        decode(element, elementPath, value.emplace_back());
    }
}

template <class Value>
void decode(const nlohmann::json &json, const CodingPath &path, std::optional<Value> &value) {
    decode(json, path, value.emplace());
}

template <class Record>
requires requires { RecordFields<Record>::all; }
void decode(const nlohmann::json &json, const CodingPath &path, Record &value) {
    if (!json.is_object())
        failDecoding(path, "an object", json);
    const auto decodeField = [&](const auto &field) {
        const CodingPath fieldPath = path.key(field.key);
        const auto found = json.find(field.key);
        if (found != json.end() && !found->is_null())
            visitMember(field, [&](auto member) { decode(*found, fieldPath, value.*member); });
        else if (field.presence == Presence::required)
            throw DecodingError(fieldPath.text(), found == json.end() ? "required, but missing"
                                                                      : "required, but null");
    };
    std::apply([&](const auto &...field) { (decodeField(field), ...); }, RecordFields<Record>::all);
}

} // namespace quorbel
