#include "settings/state/FavouritePresetsFile.h"

#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonDocument.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorbel {

namespace {

using nlohmann::json;

/// Throws DecodingError. An empty document means a missing file.
std::vector<Uuid> decodedIds(const json &document) {
    if (document.empty())
        return {};
    const auto found = document.find("favourites");
    if (found == document.end())
        throw DecodingError("favourites", "required, but missing");
    const json &list = *found;
    if (!list.is_array())
        throw DecodingError("favourites", "an array expected, found " + excerpt(list));
    std::vector<Uuid> ids;
    for (const json &element : list) {
        const auto id = element.is_string() ? Uuid::fromText(element.get_ref<const std::string &>())
                                            : std::nullopt;
        if (!id)
            throw DecodingError("favourites", "a UUID expected, found " + excerpt(element));
        ids.push_back(*id);
    }
    return ids;
}

} // namespace

FavouritePresetsFile::FavouritePresetsFile(const std::string &settingsPath)
    : file_(settingsPath, {.name = "favourite-presets",
                           .content = "The favourite presets",
                           .consequence = "No preset is a favourite now."}) {}

std::vector<Uuid> FavouritePresetsFile::idsIn(const std::string &settingsPath) {
    FavouritePresetsFile file(settingsPath);
    try {
        file.file_.peek([&](const json &document) { file.ids_ = decodedIds(document); });
    } catch (const SettingsFileError &) {
        return {};
    } catch (const DecodingError &) {
        return {};
    }
    return file.ids_;
}

std::optional<std::string> FavouritePresetsFile::read() {
    return file_.read([this](const json &document) { ids_ = decodedIds(document); });
}

std::optional<std::string> FavouritePresetsFile::write(const std::vector<Uuid> &next) {
    const auto isIn = [](const std::vector<Uuid> &ids, const Uuid &id) {
        return std::ranges::find(ids, id) != ids.end();
    };
    const std::vector<Uuid> &before = ids_;
    std::vector<Uuid> merged = next;
    const auto merge = [&](const json &document) {
        if (document.empty()) {
            merged = next;
            return;
        }
        merged = decodedIds(document);
        std::erase_if(merged, [&](const Uuid &id) { return isIn(before, id) && !isIn(next, id); });
        std::ranges::copy_if(next, std::back_inserter(merged), [&](const Uuid &id) {
            return !isIn(before, id) && !isIn(merged, id);
        });
    };
    auto warning = file_.update(merge, [&](json &document) {
        json &list = document["favourites"] = json::array();
        for (const Uuid &id : merged)
            list.push_back(id.text());
    });
    ids_ = std::move(merged);
    return warning;
}

} // namespace quorbel
