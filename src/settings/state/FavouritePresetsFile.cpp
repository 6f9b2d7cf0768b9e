#include "settings/state/FavouritePresetsFile.h"

#include "settings/files/FileReplacement.h"
#include "settings/files/MoveAside.h"
#include "settings/files/SettingsFileLock.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonDocument.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <utility>

namespace quorbel {

namespace {

using nlohmann::json;

constexpr auto favouritesVersion = 1U;

bool hasFavouritesFile(const std::string &path) {
    std::error_code unknown;
    return std::filesystem::exists(path, unknown);
}

/// Throws DecodingError.
const json &member(const json &document, const char *key) {
    const auto found = document.find(key);
    if (found == document.end())
        throw DecodingError(key, "required, but missing");
    return *found;
}

std::vector<Uuid> idsOf(const json &list) {
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
    : path_(std::filesystem::path(settingsPath).replace_filename("favourite-presets.json")),
      document_(std::make_unique<json>(json::object())) {}

FavouritePresetsFile::~FavouritePresetsFile() = default;

std::optional<std::string> FavouritePresetsFile::read() {
    if (!hasFavouritesFile(path_)) {
        ids_.clear();
        return std::nullopt;
    }
    try {
        take(readSettingsText(path_));
        return std::nullopt;
    } catch (const DecodingError &) {
        const MovedFile moved = moveAside(path_, "favourite-presets");
        if (moved.error)
            throw SettingsFileError(path_ + ": " + moved.error.message());
        ids_.clear();
        *document_ = json::object();
        return "The favourite presets were unreadable and were set aside as " + moved.name +
               ". No preset is a favourite now.";
    }
}

void FavouritePresetsFile::take(const std::string &text) {
    json document = parseJson(text);
    if (!document.is_object())
        throw DecodingError("", "an object expected, found " + excerpt(document));
    const json &written = member(document, "version");
    if (!written.is_number_unsigned())
        throw DecodingError("version", "a whole number expected, found " + excerpt(written));
    if (written.get<std::uint64_t>() > favouritesVersion)
        throw SettingsFileError(path_ + ": written by a later version of Ostrafine");
    ids_ = idsOf(member(document, "favourites"));
    *document_ = std::move(document);
}

std::optional<std::string> FavouritePresetsFile::write(const std::vector<Uuid> &next) {
    const auto isIn = [](const std::vector<Uuid> &ids, const Uuid &id) {
        return std::ranges::find(ids, id) != ids.end();
    };
    requireFileOrNothing(path_);
    const SettingsFileLock lock(path_);
    const std::vector<Uuid> before = ids_;
    auto warning = read();
    std::vector<Uuid> merged = hasFavouritesFile(path_) ? ids_ : next;
    std::erase_if(merged, [&](const Uuid &id) { return isIn(before, id) && !isIn(next, id); });
    std::ranges::copy_if(next, std::back_inserter(merged),
                         [&](const Uuid &id) { return !isIn(before, id) && !isIn(merged, id); });

    json document = *document_;
    document["version"] = favouritesVersion;
    json &list = document["favourites"] = json::array();
    for (const Uuid &id : merged)
        list.push_back(id.text());
    try {
        replaceFile(path_, document.dump());
    } catch (...) {
        ids_ = before;
        throw;
    }
    *document_ = std::move(document);
    ids_ = std::move(merged);
    return warning;
}

} // namespace quorbel
