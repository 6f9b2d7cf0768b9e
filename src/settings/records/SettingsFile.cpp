#include "settings/records/SettingsFile.h"

#include "settings/files/TextFile.h"
#include "settings/records/json/SettingsCoding.h"

#include <QDir>

#include <cstddef>
#include <cstdlib>

namespace quorbel {

namespace {

// Room for some 30000 presets of about 2 KiB.
constexpr std::size_t maximumBytes = std::size_t{64} << 20U;

} // namespace

std::string userSettingsPath() {
    const char *configured = std::getenv("XDG_CONFIG_HOME"); // NOLINT(concurrency-mt-unsafe)
    std::string folder;
    if (configured != nullptr && configured[0] == '/')
        folder = configured;
    else
        folder = QDir::homePath().toStdString() + "/.config";
    return folder + "/Quorbel/state.json";
}

std::string readSettingsText(const std::string &path) {
    try {
        return readTextFile(path, maximumBytes);
    } catch (const TextFileError &error) {
        using Reason = TextFileError::Reason;
        const bool isSomethingElse =
            error.reason() == Reason::tooLarge || error.reason() == Reason::directory;
        throw SettingsFileError(path + ": " + error.what() +
                                (isSomethingElse ? ", not a settings file" : ""));
    }
}

Persisted readSettingsFile(const std::string &path) {
    return decodeRecord<Persisted>(readSettingsText(path));
}

} // namespace quorbel
