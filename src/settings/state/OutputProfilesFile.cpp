#include "settings/state/OutputProfilesFile.h"

#include "settings/records/json/RecordDecoder.h"
#include "settings/records/json/SettingsCoding.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <tuple>
#include <utility>

namespace quorbel {

namespace {

using nlohmann::json;

constexpr const char *profilesKey = "profiles";

/// Throws DecodingError. An empty document is that of no file.
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

const OutputProfile *withKey(const std::vector<OutputProfile> &profiles, const OutputKey &key) {
    const auto found = std::ranges::find(profiles, key, &OutputProfile::key);
    return found == profiles.end() ? nullptr : &*found;
}

/// Our changes since `before` win over `theirs`.
std::vector<OutputProfile> mergedProfiles(const std::vector<OutputProfile> &before,
                                          const std::vector<OutputProfile> &ours,
                                          std::vector<OutputProfile> theirs) {
    std::erase_if(theirs, [&](const OutputProfile &profile) {
        return withKey(before, profile.key) != nullptr && withKey(ours, profile.key) == nullptr;
    });
    for (const OutputProfile &profile : ours) {
        const OutputProfile *known = withKey(before, profile.key);
        if (known != nullptr && *known == profile)
            continue;
        const auto there = std::ranges::find(theirs, profile.key, &OutputProfile::key);
        if (there == theirs.end())
            theirs.push_back(profile);
        else
            *there = profile;
    }
    return theirs;
}

/// The profile's JSON, with what the entry of the same output has beside the keys known here.
json encodedProfile(const OutputProfile &profile, const json &entries,
                    const std::vector<OutputProfile> &decodedEntries) {
    json encoded = json::object();
    for (std::size_t i = 0; i < decodedEntries.size(); ++i)
        if (decodedEntries[i].key == profile.key)
            encoded = entries[i];
    const auto eraseKnown = [&](const auto &...field) { (encoded.erase(field.key), ...); };
    std::apply(eraseKnown, RecordFields<OutputProfile>::all);
    encoded.update(parseJson(encodeRecord(profile)));
    return encoded;
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

std::optional<std::string> OutputProfilesFile::write(const std::vector<OutputProfile> &next) {
    std::vector<OutputProfile> merged = next;
    std::vector<OutputProfile> theirs;
    const auto merge = [&](const json &document) {
        theirs = decodedProfiles(document);
        merged = document.empty() ? next : mergedProfiles(profiles_, next, theirs);
    };
    auto warning = file_.update(merge, [&](json &document) {
        const json entries = std::exchange(document[profilesKey], json::array());
        for (const OutputProfile &profile : merged)
            document[profilesKey].push_back(encodedProfile(profile, entries, theirs));
    });
    profiles_ = std::move(merged);
    return warning;
}

} // namespace quorbel
