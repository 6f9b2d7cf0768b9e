#include "settings/interchange/PresetFile.h"

#include "settings/interchange/FlatBands.h"
#include "settings/interchange/InterchangeError.h"
#include "settings/records/json/SettingsCoding.h"

namespace quorbel {

std::string writePresetFile(const Preset &preset) { return encodeRecord(preset) + '\n'; }

Preset readPresetFile(std::string_view json) {
    if (json.size() > maximumPresetFileBytes)
        throw InterchangeError(0, "the file is larger than 1 MiB, not a preset");
    Preset preset = decodeRecord<Preset>(json);
    preset.id = Uuid::random();
    preset.category = Preset::Category::user;
    fillWithFlatBands(preset.bands);
    return preset;
}

} // namespace quorbel
