#include "settings/state/OutputProfilesFile.h"

#include "settings/state/SideFileList.h"

#include <utility>

namespace quorbel {

namespace {

using nlohmann::json;

constexpr const char *profilesKey = "profiles";

/// Throws DecodingError. An empty document means a missing file.
std::vector<OutputProfile> decodedProfiles(const json &document) {
    std::vector<OutputProfile> profiles;
    if (document.empty())
        return profiles;
    const auto found = document.find(profilesKey);
    if (found == document.end())
        throw DecodingError(profilesKey, "required, but missing");
    decode(*found, CodingPath().key(profilesKey), profiles);
    return profiles;
}

} // namespace

OutputProfilesFile::OutputProfilesFile(const std::string &settingsPath)
    : file_(settingsPath, {.name = "profiles",
                           .content = "The profiles of the outputs",
                           .consequence = "No output has a profile now."}) {}

std::optional<std::string> OutputProfilesFile::read() {
    return file_.read([this](const json &document) { profiles_ = decodedProfiles(document); });
}

void OutputProfilesFile::peek() {
    file_.peek([this](const json &document) { profiles_ = decodedProfiles(document); });
}

bool OutputProfilesFile::takeChanges(std::vector<OutputProfile> &ours) {
    std::vector<OutputProfile> theirs = profiles_;
    file_.peek([&](const json &document) {
        if (!document.empty())
            theirs = decodedProfiles(document);
    });
    if (theirs == profiles_)
        return false;
    ours = mergedList(profiles_, ours, theirs, &OutputProfile::key);
    profiles_ = std::move(theirs);
    return true;
}

std::optional<std::string> OutputProfilesFile::write(const std::vector<OutputProfile> &next) {
    std::vector<OutputProfile> merged = next;
    std::vector<OutputProfile> theirs;
    const auto merge = [&](const json &document) {
        theirs = decodedProfiles(document);
        merged = document.empty() ? next : mergedList(profiles_, next, theirs, &OutputProfile::key);
    };
    auto warning = file_.update(merge, [&](json &document) {
        const json entries = std::exchange(document[profilesKey], {});
        document[profilesKey] = encodedList(merged, entries, theirs, &OutputProfile::key);
    });
    profiles_ = std::move(merged);
    return warning;
}

} // namespace quorbel
