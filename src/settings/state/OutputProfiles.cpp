#include "settings/state/OutputProfiles.h"

#include "devices/DeviceManager.h"
#include "settings/presets/FactoryPresets.h"
#include "settings/state/ProfileDecision.h"

#include <algorithm>
#include <utility>

namespace quorbel {

namespace {

using Use = OutputProfile::Use;

const Preset &flatPreset() {
    static const Preset flat =
        *std::ranges::find(factoryPresets(), std::string("Flat"), &Preset::name);
    return flat;
}

/// Compares everything but the bands' ids, which change at every launch in factory presets.
bool soundAlike(OutputSound a, const OutputSound &b) {
    if (a.bands.size() != b.bands.size())
        return false;
    for (std::size_t i = 0; i < a.bands.size(); ++i)
        a.bands[i].id = b.bands[i].id;
    return a == b;
}

} // namespace

OutputProfiles::OutputProfiles(ProfileSettings &settings, const std::string &settingsPath)
    : settings_(settings), file_(settingsPath) {}

std::optional<std::string> OutputProfiles::read() {
    auto warning = file_.read();
    profiles_ = file_.profiles();
    Q_EMIT changed();
    return warning;
}

void OutputProfiles::peek() {
    file_.peek();
    profiles_ = file_.profiles();
    Q_EMIT changed();
}

bool OutputProfiles::takeFileChanges() {
    const OutputProfile *owner = owner_ ? withKey(*owner_) : nullptr;
    const auto before = owner != nullptr ? std::optional(*owner) : std::nullopt;
    if (!file_.takeChanges(profiles_))
        return false;
    if (inUse_ && withKey(*inUse_) == nullptr)
        inUse_.reset();
    owner = owner_ ? withKey(*owner_) : nullptr;
    if (owner == nullptr)
        owner_.reset();
    else if (*owner != before && owner->use != Use::leaveAlone)
        play(OutputProfile(*owner));
    Q_EMIT changed();
    return true;
}

std::optional<std::string> OutputProfiles::save() {
    if (profiles_ == file_.profiles())
        return std::nullopt;
    auto warning = file_.write(profiles_);
    profiles_ = file_.profiles(); // with another program's changes
    Q_EMIT changed();
    return warning;
}

const OutputProfile *OutputProfiles::withKey(const OutputKey &key) const {
    const auto found = std::ranges::find(profiles_, key, &OutputProfile::key);
    return found == profiles_.end() ? nullptr : &*found;
}

OutputProfile *OutputProfiles::find(const OutputKey &key) {
    return const_cast<OutputProfile *>(withKey(key));
}

const Preset *OutputProfiles::presetOf(const OutputProfile &profile) const {
    const std::vector<Preset> &presets = settings_.knownPresets();
    auto found = presets.end();
    if (profile.presetID)
        found = std::ranges::find(presets, *profile.presetID, &Preset::id);
    if (found == presets.end() && profile.presetName)
        found = std::ranges::find(presets, *profile.presetName, &Preset::name);
    return found == presets.end() ? nullptr : &*found;
}

OutputSound OutputProfiles::soundOf(const Preset &preset) const {
    return {.bands = preset.bands,
            .spatial = preset.spatial,
            .presetGainDB = settings_.presetGainDB(preset.id)};
}

std::optional<OutputSound> OutputProfiles::baseOf(const OutputProfile &profile) const {
    switch (profile.use) {
    case Use::flat:
        return OutputSound{.bands = flatPreset().bands, .spatial = flatPreset().spatial};
    case Use::preset:
        if (const Preset *preset = presetOf(profile))
            return soundOf(*preset);
        break;
    case Use::leaveAlone:
        break;
    }
    return std::nullopt;
}

std::string OutputProfiles::nameOf(const OutputProfile &profile) const {
    switch (profile.use) {
    case Use::flat:
        return "Flat";
    case Use::leaveAlone:
        return "Leave this output alone";
    case Use::preset:
        break;
    }
    const Preset *preset = presetOf(profile);
    return preset != nullptr ? preset->name : profile.presetName.value_or("Custom");
}

std::string OutputProfiles::titleOf(const OutputProfile &profile) const {
    return nameOf(profile) + (isModified(profile) ? " (modified)" : "");
}

bool OutputProfiles::isModified(const OutputProfile &profile) const {
    const auto base = baseOf(profile);
    return profile.own && base && !soundAlike(*profile.own, *base);
}

// The output in use

OutputUse OutputProfiles::useOf(const AudioDevice &device) const {
    const ProfileDecision decision = decideProfile(profiles_, device.identity);
    return {.isLeftAlone = decision.isLeftAlone, .isAwaited = decision.isAwaited};
}

void OutputProfiles::adopt(const AudioDevice &device) {
    const ProfileDecision decision = decideProfile(profiles_, device.identity);
    const auto before = std::exchange(
        inUse_, decision.profile != nullptr ? std::optional(decision.profile->key) : std::nullopt);
    if (decision.profile != nullptr && !decision.isLeftAlone && owner_ != inUse_) {
        keepUnowned();
        play(*withKey(*inUse_));
    }
    if (inUse_ != before)
        Q_EMIT changed();
}

void OutputProfiles::keepUnowned() {
    if (owner_ || find({}) != nullptr)
        return;
    OutputProfile kept;
    kept.own = settings_.liveSound();
    kept.presetID = settings_.livePreset();
    const bool isKnown = std::ranges::any_of(profiles_, [&](const OutputProfile &profile) {
        const auto sound = profile.own ? profile.own : baseOf(profile);
        return sound && soundAlike(*sound, *kept.own);
    });
    if (isKnown)
        return; // already a profile's settings, from the last session
    if (const Preset *preset = presetOf(kept)) {
        kept.presetName = preset->name;
        if (soundAlike(*kept.own, soundOf(*preset)))
            kept.own.reset();
    }
    profiles_.push_back(std::move(kept));
}

void OutputProfiles::play(const OutputProfile &profile) {
    const auto base = baseOf(profile);
    const Preset *preset = profile.use == Use::flat ? &flatPreset() : presetOf(profile);
    auto sound = profile.own ? profile.own : base;
    if (!sound)
        return; // the preset is gone: keeps the live settings
    if (preset != nullptr)
        sound->bands = withIDsOf(preset->bands, sound->bands);
    owner_ = profile.key;
    const auto presetID = preset != nullptr ? std::optional(preset->id) : std::nullopt;
    if (presetID == settings_.livePreset() && soundAlike(*sound, settings_.liveSound()))
        return;
    isPlaying_ = true;
    settings_.play(*sound, presetID);
    isPlaying_ = false;
    Q_EMIT switched();
}

// The user's changes

void OutputProfiles::noteChange() {
    OutputProfile *profile = owner_ && !isPlaying_ ? find(*owner_) : nullptr;
    if (profile == nullptr || profile->use == Use::leaveAlone)
        return;
    OutputProfile next = *profile;
    const auto active = settings_.livePreset();
    const auto adopted = next.use == Use::flat ? std::optional(flatPreset().id) : next.presetID;
    if (active && active != adopted) { // the user has applied another preset
        next.use = Use::preset;
        next.presetID = active;
        const Preset *preset = presetOf(next);
        next.presetName = preset != nullptr ? std::optional(preset->name) : std::nullopt;
    }
    const auto base = baseOf(next);
    next.own = settings_.liveSound();
    if (base && soundAlike(*next.own, *base))
        next.own.reset();
    if (next == *profile)
        return;
    *profile = std::move(next);
    Q_EMIT changed();
}

void OutputProfiles::keepSoundsOfGone(const std::vector<Preset> &next) {
    for (OutputProfile &profile : profiles_) {
        const Preset *preset = profile.use == Use::preset ? presetOf(profile) : nullptr;
        if (preset != nullptr && !profile.own &&
            std::ranges::find(next, preset->id, &Preset::id) == next.end())
            profile.own = soundOf(*preset);
    }
}

void OutputProfiles::assign(const OutputKey &key, const std::string &label, Use use,
                            const std::optional<Uuid> &preset) {
    if (!key.isAnyOther())
        keepUnowned();
    OutputProfile profile{.key = key, .label = label, .use = use, .presetID = preset};
    if (use == Use::preset && !preset) {
        profile.own = settings_.liveSound();
        profile.presetID = settings_.livePreset();
    }
    if (const Preset *named = presetOf(profile)) {
        profile.presetName = named->name;
        if (profile.own && soundAlike(*profile.own, soundOf(*named)))
            profile.own.reset();
    }
    if (OutputProfile *known = find(key))
        *known = std::move(profile);
    else
        profiles_.push_back(std::move(profile));
    if (owner_ == key && use != Use::leaveAlone)
        play(OutputProfile(*find(key)));
    Q_EMIT changed();
}

void OutputProfiles::forget(const OutputKey &key) {
    std::erase_if(profiles_, [&](const OutputProfile &profile) { return profile.key == key; });
    if (owner_ == key)
        owner_.reset();
    if (inUse_ == key)
        inUse_.reset();
    Q_EMIT changed();
}

} // namespace quorbel
