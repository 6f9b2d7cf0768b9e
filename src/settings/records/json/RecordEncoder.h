#pragma once

#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonLiterals.h"
#include "settings/records/json/RecordFields.h"

#include <cmath>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

// One `encode` per type of value in a record; appends compact JSON. Writes all keys in the order of
// the record's table, except optionals without a value.

namespace quorbel {

inline void encode(std::string &json, const CodingPath &, bool value) {
    json += value ? "true" : "false";
}

inline void encodeNumber(std::string &json, const CodingPath &path, auto value) {
    if (!std::isfinite(value))
        throw EncodingError(path.text(), "not a finite number, JSON cannot hold it");
    appendNumber(json, value);
}

inline void encode(std::string &json, const CodingPath &path, float value) {
    encodeNumber(json, path, value);
}

inline void encode(std::string &json, const CodingPath &path, const Date &value) {
    encodeNumber(json, path, value.secondsSince2001);
}

inline void encode(std::string &json, const CodingPath &path, const std::string &value) {
    if (!appendString(json, value))
        throw EncodingError(path.text(), "not UTF-8 text: " + quotedText(value));
}

inline void encode(std::string &json, const CodingPath &, const Uuid &value) {
    json += '"' + value.text() + '"';
}

template <class Enumeration>
requires std::is_enum_v<Enumeration>
void encode(std::string &json, const CodingPath &path, Enumeration value) {
    for (const auto &[candidate, name] : EnumerationNames<Enumeration>::all)
        if (candidate == value) {
            json.append(1, '"').append(name).append(1, '"');
            return;
        }
    throw EncodingError(path.text(), "not a " + std::string(EnumerationNames<Enumeration>::kind));
}

template <class Record>
requires requires { RecordFields<Record>::all; }
void encode(std::string &json, const CodingPath &path, const Record &value);

template <class Element>
void encode(std::string &json, const CodingPath &path, const std::vector<Element> &value) {
    json += '[';
    for (std::size_t index = 0; index < value.size(); ++index) {
        if (index > 0)
            json += ',';
        encode(json, path.index(index), value[index]);
    }
    json += ']';
}

template <class Record>
requires requires { RecordFields<Record>::all; }
void encode(std::string &json, const CodingPath &path, const Record &value) {
    json += '{';
    const char *separator = "";
    const auto encodeValue = [&](std::string_view key, const auto &fieldValue) {
        json.append(separator).append(1, '"').append(key).append("\":");
        separator = ",";
        encode(json, path.key(key), fieldValue);
    };
    const auto encodeField = [&](const auto &field) {
        visitMember(field, [&](auto member) {
            if constexpr (requires { (value.*member).has_value(); }) {
                if ((value.*member).has_value())
                    encodeValue(field.key, *(value.*member));
            } else {
                encodeValue(field.key, value.*member);
            }
        });
    };
    std::apply([&](const auto &...field) { (encodeField(field), ...); }, RecordFields<Record>::all);
    json += '}';
}

} // namespace quorbel
