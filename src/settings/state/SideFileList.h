#pragma once

#include "settings/records/json/RecordDecoder.h"
#include "settings/records/json/SettingsCoding.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

// A list of records in a side file, which other programs may change too. `key` is the member or
// function that identifies a record.

namespace quorbel {

/// Applies our changes since `before` to `theirs`; ours win conflicts.
template <class Record, class Key>
[[nodiscard]] std::vector<Record> mergedList(const std::vector<Record> &before,
                                             const std::vector<Record> &ours,
                                             std::vector<Record> theirs, Key key) {
    const auto find = [&](const std::vector<Record> &list, const Record &record) {
        const auto found = std::ranges::find(list, std::invoke(key, record), key);
        return found == list.end() ? nullptr : &*found;
    };
    std::erase_if(theirs, [&](const Record &record) {
        return find(before, record) != nullptr && find(ours, record) == nullptr;
    });
    for (const Record &record : ours) {
        const Record *known = find(before, record);
        if (known != nullptr && *known == record)
            continue;
        const auto there = std::ranges::find(theirs, std::invoke(key, record), key);
        if (there == theirs.end())
            theirs.push_back(record);
        else
            *there = record;
    }
    return theirs;
}

template <class Value> struct WithoutOptional { using Type = Value; };
template <class Value> struct WithoutOptional<std::optional<Value>> { using Type = Value; };

/// Copies the keys of `former` that are unknown to this version into `encoded`, the JSON of a
/// Record. Includes nested records, but not those in lists.
template <class Record>
void keepUnknownKeys(const nlohmann::json &former, nlohmann::json &encoded) {
    nlohmann::json unknown = former;
    const auto visitField = [&](const auto &field) {
        unknown.erase(field.key);
        visitMember(field, [&]<class Value>(Value Record::*) {
            using Inner = typename WithoutOptional<Value>::Type;
            if constexpr (requires { RecordFields<Inner>::all; })
                if (former.contains(field.key) && former[field.key].is_object() &&
                    encoded.contains(field.key))
                    keepUnknownKeys<Inner>(former[field.key], encoded[field.key]);
        });
    };
    std::apply([&](const auto &...field) { (visitField(field), ...); }, RecordFields<Record>::all);
    encoded.update(unknown);
}

/// Encodes the records. Each keeps the unknown keys of the entry with the same key; `entries` are
/// the JSON of `decodedEntries`.
template <class Record, class Key>
[[nodiscard]] nlohmann::json encodedList(const std::vector<Record> &records,
                                         const nlohmann::json &entries,
                                         const std::vector<Record> &decodedEntries, Key key) {
    nlohmann::json list = nlohmann::json::array();
    for (const Record &record : records) {
        nlohmann::json encoded = parseJson(encodeRecord(record));
        const auto known = std::ranges::find(decodedEntries, std::invoke(key, record), key);
        if (known != decodedEntries.end())
            keepUnknownKeys<Record>(
                entries[static_cast<std::size_t>(known - decodedEntries.begin())], encoded);
        list.push_back(std::move(encoded));
    }
    return list;
}

} // namespace quorbel
