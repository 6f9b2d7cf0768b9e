#include "settings/state/SharedSettingsFile.h"

#include "settings/files/FileReplacement.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/SettingsCoding.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <sys/stat.h>
#include <utility>

namespace quorbel {

namespace {

/// Treats a dangling link as no file, and a file of unknown state as existing.
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

namespace {

const Preset *presetWithID(const std::vector<Preset> &presets, const Uuid &id) {
    const auto found = std::ranges::find(presets, id, &Preset::id);
    return found == presets.end() ? nullptr : &*found;
}

std::vector<Preset> presetsOf(const std::vector<Preset> &presets, bool isUser) {
    std::vector<Preset> result;
    std::ranges::copy_if(presets, std::back_inserter(result), [&](const Preset &preset) {
        return (preset.category == Preset::Category::user) == isUser;
    });
    return result;
}

} // namespace

std::vector<Preset> mergedPresets(const std::vector<Preset> &base, const std::vector<Preset> &ours,
                                  const std::vector<Preset> &theirs) {
    if (ours == base)
        return theirs;
    if (theirs == base)
        return ours;
    const auto isAsInBase = [&](const Preset &preset) {
        const Preset *before = presetWithID(base, preset.id);
        return before != nullptr && *before == preset;
    };
    std::vector<Preset> merged;
    for (const Preset &their : theirs) {
        const Preset *our = presetWithID(ours, their.id);
        if (our == nullptr && isAsInBase(their))
            continue; // we have deleted it
        merged.push_back(our == nullptr || isAsInBase(*our) ? their : *our);
    }
    std::ranges::copy_if(ours, std::back_inserter(merged), [&](const Preset &our) {
        return presetWithID(theirs, our.id) == nullptr && !isAsInBase(our);
    });
    return merged;
}

Persisted mergedSettings(const Persisted &base, const Persisted &ours, const Persisted &theirs) {
    Persisted merged = theirs;
    if (ours.bands != base.bands)
        merged.bands = ours.bands;
    if (ours.spatial != base.spatial)
        merged.spatial = ours.spatial;
    // Factory presets are those of the running version.
    merged.presets = presetsOf(ours.presets, false);
    std::ranges::move(mergedPresets(presetsOf(base.presets, true), presetsOf(ours.presets, true),
                                    presetsOf(theirs.presets, true)),
                      std::back_inserter(merged.presets));
    if (ours.activePresetID != base.activePresetID) {
        merged.activePresetID = ours.activePresetID;
        merged.activePresetName = ours.activePresetName;
    }
    if (ours.mixer != base.mixer || !theirs.mixer)
        merged.mixer = ours.mixer;
    if (ours.eqGlobalGainDB != base.eqGlobalGainDB || !theirs.eqGlobalGainDB)
        merged.eqGlobalGainDB = ours.eqGlobalGainDB;
    if (ours.outputDeviceUID != base.outputDeviceUID || !theirs.outputDeviceUID)
        merged.outputDeviceUID = ours.outputDeviceUID;
    return merged;
}

} // namespace quorbel
