#include "settings/interchange/PresetFile.h"

#include "settings/interchange/FlatBands.h"
#include "settings/interchange/InterchangeError.h"
#include "settings/records/json/SettingsCoding.h"

namespace quorbel {

std::string writePresetFile(const Preset &preset) { return encodeRecord(preset) + '\n'; }

namespace {

constexpr std::string_view blanks = " \t\r\n";

} // namespace

bool isPresetFile(std::string_view text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    const auto first = text.find_first_not_of(blanks);
    return first != std::string_view::npos && text[first] == '{';
}

Preset readPresetFile(std::string_view json, const std::optional<std::string> &name) {
    if (json.size() > maximumPresetFileBytes)
        throw InterchangeError(0, "the file is larger than 1 MiB, not a preset");
    Preset preset = decodeRecord<Preset>(json);
    if (name)
        preset.name = *name;
    if (preset.name.find_first_not_of(blanks) == std::string::npos)
        throw InterchangeError(0, "the preset needs a name");
    preset.id = Uuid::random();
    preset.category = Preset::Category::user;
    fillWithFlatBands(preset.bands);
    return preset;
}

} // namespace quorbel
