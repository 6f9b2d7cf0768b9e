#include "settings/state/OutputChoiceFile.h"

#include "settings/files/FileReplacement.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/SettingsCoding.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace quorbel {

OutputChoiceFile::OutputChoiceFile(const std::string &settingsPath)
    : path_(std::filesystem::path(settingsPath).replace_filename("output-choice.json")) {
    try {
        content_ = decodeRecord<OutputChoice>(readSettingsText(path_));
    } catch (const SettingsFileError &) {
        return; // usually there is no file
    } catch (const DecodingError &) {
        return;
    }
}

std::optional<std::string>
OutputChoiceFile::chosenUID(const std::optional<std::string> &uidInSettings) const {
    const bool isChoiceElsewhere =
        content_ && (!uidInSettings || std::ranges::count(content_->standIns, *uidInSettings) > 0);
    return isChoiceElsewhere ? content_->outputDeviceUID : uidInSettings;
}

void OutputChoiceFile::prepare(const std::optional<std::string> &chosen,
                               const std::optional<std::string> &uidInSettings,
                               const std::optional<std::string> &nextUID) {
    if (chosen == nextUID && !content_)
        return;
    OutputChoice next{.outputDeviceUID = chosen, .standIns = {}};
    for (const auto &uid : {uidInSettings, nextUID})
        if (uid && uid != chosen && std::ranges::count(next.standIns, *uid) == 0)
            next.standIns.push_back(*uid);
    if (next == content_)
        return;
    replaceFile(path_, encodeRecord(next));
    content_ = std::move(next);
}

void OutputChoiceFile::finish(const std::optional<std::string> &chosen,
                              const std::optional<std::string> &uidInSettings) {
    if (chosen != uidInSettings || !content_)
        return;
    std::error_code error;
    std::filesystem::remove(path_, error);
    if (error)
        throw FileReplacementError(error.message());
    content_.reset();
}

} // namespace quorbel
