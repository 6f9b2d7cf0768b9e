#include "settings/state/SideFile.h"

#include "settings/files/FileReplacement.h"
#include "settings/files/SettingsFileLock.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonDocument.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <filesystem>
#include <utility>

namespace quorbel {

using nlohmann::json;

SideFile::SideFile(const std::string &settingsPath, Kind kind)
    : kind_(std::move(kind)),
      path_(std::filesystem::path(settingsPath).replace_filename(kind_.name + ".json")),
      document_(std::make_unique<json>(json::object())) {}

SideFile::~SideFile() = default;
SideFile::SideFile(SideFile &&) noexcept = default;
SideFile &SideFile::operator=(SideFile &&) noexcept = default;

json SideFile::readDocument() const {
    if (std::error_code unknown; !std::filesystem::exists(path_, unknown))
        return json::object();
    json document = parseJson(readSettingsText(path_));
    if (!document.is_object())
        throw DecodingError("", "an object expected, found " + excerpt(document));
    const auto version = document.find("version");
    if (version == document.end())
        throw DecodingError("version", "required, but missing");
    if (!version->is_number_unsigned())
        throw DecodingError("version", "a whole number expected, found " + excerpt(*version));
    if (version->get<std::uint64_t>() > kind_.version)
        throw SettingsFileError(path_ + ": written by a later version of Ostrafine");
    return document;
}

void SideFile::peek(const Decode &decode) const { decode(readDocument()); }

std::optional<std::string> SideFile::read(const Decode &decode) {
    auto warning = readOrSetAside(decode);
    if (warning)
        *warning += " " + kind_.consequence;
    return warning;
}

std::optional<std::string> SideFile::readOrSetAside(const Decode &decode) {
    try {
        json document = readDocument();
        decode(document);
        *document_ = std::move(document);
        return std::nullopt;
    } catch (const DecodingError &) {
        const MovedFile moved = moveAside(path_, kind_.name);
        if (moved.error)
            throw SettingsFileError(path_ + ": " + moved.error.message());
        *document_ = json::object();
        decode(*document_);
        return kind_.content + " were unreadable and were set aside as " + moved.name + ".";
    }
}

std::optional<std::string> SideFile::update(const Decode &decode, const Encode &encode) {
    requireFileOrNothing(path_);
    const SettingsFileLock lock(path_);
    auto warning = readOrSetAside(decode);
    json next = *document_;
    next["version"] = kind_.version;
    encode(next);
    replaceFile(path_, next.dump());
    *document_ = std::move(next);
    return warning;
}

} // namespace quorbel
