#pragma once

#include "settings/records/json/RecordDecoder.h"
#include "settings/records/json/SettingsCoding.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

// A list of records in a side file, which other programs may change too. `key` is the member, or a
// function, that tells the records apart.

namespace quorbel {

/// `theirs` with our changes since `before`, which win over theirs.
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

/// JSON of the records. Each keeps the keys unknown here of the entry with its key among `entries`,
/// which decode to `decodedEntries`.
template <class Record, class Key>
[[nodiscard]] nlohmann::json encodedList(const std::vector<Record> &records,
                                         const nlohmann::json &entries,
                                         const std::vector<Record> &decodedEntries, Key key) {
    nlohmann::json list = nlohmann::json::array();
    for (const Record &record : records) {
        nlohmann::json encoded = nlohmann::json::object();
        for (std::size_t i = 0; i < decodedEntries.size(); ++i)
            if (std::invoke(key, decodedEntries[i]) == std::invoke(key, record))
                encoded = entries[i];
        const auto eraseKnown = [&](const auto &...field) { (encoded.erase(field.key), ...); };
        std::apply(eraseKnown, RecordFields<Record>::all);
        encoded.update(parseJson(encodeRecord(record)));
        list.push_back(std::move(encoded));
    }
    return list;
}

} // namespace quorbel
