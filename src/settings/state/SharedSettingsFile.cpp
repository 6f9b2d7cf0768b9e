#include "settings/state/SharedSettingsFile.h"

#include "settings/files/FileReplacement.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/SettingsCoding.h"

#include <cerrno>
#include <sys/stat.h>
#include <utility>

namespace quorbel {

namespace {

/// A link that leads nowhere counts as no file. Anything unknown counts as there.
bool isThere(const std::string &path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

} // namespace

std::optional<Persisted> SharedSettingsFile::readChange() {
    if (!isThere(path_))
        return std::nullopt;
    std::string text = readSettingsText(path_);
    if (text == seenText_)
        return std::nullopt;
    auto record = decodeRecord<Persisted>(text);
    seenText_ = std::move(text);
    return record;
}

void SharedSettingsFile::write(const Persisted &record) {
    std::string text = encodeRecord(record);
    replaceFile(path_, text);
    seenText_ = std::move(text);
}

} // namespace quorbel
