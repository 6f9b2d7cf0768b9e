#pragma once

#include "platform/core/Programs.h"
#include "settings/records/OutputProfile.h"
#include "settings/records/Persisted.h"
#include "settings/records/SettingSchema.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <variant>

// Tables of every record's JSON form, shared by reader and writer: the keys in the file's order,
// and whether a file must have them. A missing optional key leaves the default value.

namespace quorbel {

/// Path of the current value: a linked list on the call stack, converted to text only for an error.
class CodingPath {
  public:
    CodingPath() = default;

    [[nodiscard]] CodingPath key(std::string_view key) const { return {this, key, 0}; }
    [[nodiscard]] CodingPath index(std::size_t index) const { return {this, {}, index}; }

    /// For example `presets[3].bands[0].filterType`; empty at the top.
    [[nodiscard]] std::string text() const {
        std::string result = parent_ == nullptr ? std::string() : parent_->text();
        append(result);
        return result;
    }

  private:
    CodingPath(const CodingPath *parent, std::string_view key, std::size_t index)
        : parent_(parent), key_(key), index_(index) {}

    void append(std::string &text) const {
        if (parent_ == nullptr)
            return;
        if (key_.empty())
            text += '[' + std::to_string(index_) + ']';
        else
            text.append(text.empty() ? "" : ".").append(key_);
    }

    const CodingPath *parent_ = nullptr;
    std::string_view key_;
    std::size_t index_ = 0;
};

template <class Record, class Value> struct Field {
    std::string_view key;
    Value Record::*member;
    Presence presence{};
};

template <class Record, class Value>
constexpr Field<Record, Value> required(std::string_view key, Value Record::*member) {
    return {key, member, Presence::required};
}

template <class Record, class Value>
constexpr Field<Record, Value> optional(std::string_view key, Value Record::*member) {
    return {key, member, Presence::optional};
}

/// Calls `use` with the field's pointer to member.
template <class Record, class Value>
constexpr void visitMember(const Field<Record, Value> &field, const auto &use) {
    use(field.member);
}
template <class Record>
constexpr void visitMember(const Setting<Record> &setting, const auto &use) {
    std::visit(use, setting.field);
}

/// Specialised below for every record: `all`, a tuple or an array of fields.
template <class Record> struct RecordFields;

/// Specialised below for every enumeration: `kind`, its name in error texts, and `all`, its values
/// with their JSON strings.
template <class Enumeration> struct EnumerationNames;

template <> struct EnumerationNames<EQBand::FilterType> {
    static constexpr std::string_view kind = "filter type";
    static constexpr std::pair<EQBand::FilterType, std::string_view> all[] = {
        {EQBand::FilterType::parametric, "parametric"}, {EQBand::FilterType::lowShelf, "lowShelf"},
        {EQBand::FilterType::highShelf, "highShelf"},   {EQBand::FilterType::lowPass, "lowPass"},
        {EQBand::FilterType::highPass, "highPass"},
    };
};

template <> struct EnumerationNames<SpatialConfig::ReverbPreset> {
    static constexpr std::string_view kind = "reverb preset";
    static constexpr std::pair<SpatialConfig::ReverbPreset, std::string_view> all[] = {
        {SpatialConfig::ReverbPreset::smallRoom, "smallRoom"},
        {SpatialConfig::ReverbPreset::mediumRoom, "mediumRoom"},
        {SpatialConfig::ReverbPreset::largeRoom, "largeRoom"},
        {SpatialConfig::ReverbPreset::mediumHall, "mediumHall"},
        {SpatialConfig::ReverbPreset::largeHall, "largeHall"},
        {SpatialConfig::ReverbPreset::cathedral, "cathedral"},
        {SpatialConfig::ReverbPreset::plate, "plate"},
    };
};

template <> struct EnumerationNames<Preset::Category> {
    static constexpr std::string_view kind = "category";
    static constexpr std::pair<Preset::Category, std::string_view> all[] = {
        {Preset::Category::general, "general"},       {Preset::Category::mr5, "mr5"},
        {Preset::Category::mr5Desk, "mr5Desk"},       {Preset::Category::bass, "bass"},
        {Preset::Category::headphones, "headphones"}, {Preset::Category::btSpeakers, "btSpeakers"},
        {Preset::Category::genre, "genre"},           {Preset::Category::user, "user"},
    };
};

template <> struct EnumerationNames<OutputIdentity::Bluetooth> {
    static constexpr std::string_view kind = "kind of Bluetooth output";
    static constexpr std::pair<OutputIdentity::Bluetooth, std::string_view> all[] = {
        {OutputIdentity::Bluetooth::music, "music"},
        {OutputIdentity::Bluetooth::call, "call"},
    };
};

template <> struct EnumerationNames<OutputProfile::Use> {
    static constexpr std::string_view kind = "use of an output";
    static constexpr std::pair<OutputProfile::Use, std::string_view> all[] = {
        {OutputProfile::Use::preset, "preset"},
        {OutputProfile::Use::flat, "flat"},
        {OutputProfile::Use::leaveAlone, "leaveAlone"},
    };
};

template <> struct RecordFields<EQBand> {
    static constexpr auto all = std::make_tuple( //
        optional("id", &EQBand::id),             //
        required("frequency", &EQBand::frequency), optional("gainDB", &EQBand::gainDB),
        optional("q", &EQBand::q), optional("filterType", &EQBand::filterType),
        optional("bypassed", &EQBand::bypassed));
};

template <> struct RecordFields<MixerConfig> {
    static constexpr auto all = std::to_array(mixerSettings);
};

template <> struct RecordFields<SpatialConfig> {
    static constexpr auto all = std::to_array(spatialSettings);
};

template <> struct RecordFields<Preset> {
    static constexpr auto all = std::make_tuple(
        required("id", &Preset::id), required("name", &Preset::name),
        optional("category", &Preset::category), required("createdAt", &Preset::createdAt),
        required("bands", &Preset::bands), required("spatial", &Preset::spatial),
        optional("notes", &Preset::notes));
};

template <> struct RecordFields<Persisted> {
    static constexpr auto all = std::make_tuple(
        required("bands", &Persisted::bands), required("spatial", &Persisted::spatial),
        required("presets", &Persisted::presets),
        optional("activePresetID", &Persisted::activePresetID),
        optional("mixer", &Persisted::mixer),
        optional("activePresetName", &Persisted::activePresetName),
        optional("eqGlobalGainDB", &Persisted::eqGlobalGainDB),
        optional("outputDeviceUID", &Persisted::outputDeviceUID));
};

template <> struct RecordFields<OutputKey> {
    static constexpr auto all = std::make_tuple(
        optional("card", &OutputKey::card), optional("route", &OutputKey::route),
        optional("node", &OutputKey::node), optional("bluetooth", &OutputKey::bluetooth));
};

template <> struct RecordFields<OutputProfile> {
    static constexpr auto all = std::make_tuple(
        required("output", &OutputProfile::key), optional("label", &OutputProfile::label),
        required("use", &OutputProfile::use), optional("presetID", &OutputProfile::presetID),
        optional("presetName", &OutputProfile::presetName), optional("own", &OutputProfile::own));
};

template <> struct RecordFields<OutputSound> {
    static constexpr auto all = std::make_tuple(
        required("bands", &OutputSound::bands), required("spatial", &OutputSound::spatial),
        optional("presetGainDB", &OutputSound::presetGainDB));
};

template <> struct RecordFields<ProgramNames> {
    static constexpr auto all = std::make_tuple(
        optional("sandbox", &ProgramNames::sandbox), optional("binary", &ProgramNames::binary),
        optional("applicationID", &ProgramNames::applicationID),
        optional("name", &ProgramNames::name));
};

template <> struct RecordFields<ProgramRule> {
    static constexpr auto all = std::make_tuple(
        required("program", &ProgramRule::program), optional("title", &ProgramRule::title),
        required("isProcessed", &ProgramRule::isProcessed),
        optional("isMixedToStereo", &ProgramRule::isMixedToStereo));
};

template <> struct RecordFields<OutputChoice> {
    static constexpr auto all =
        std::make_tuple(optional("outputDeviceUID", &OutputChoice::outputDeviceUID),
                        required("standIns", &OutputChoice::standIns));
};

} // namespace quorbel
