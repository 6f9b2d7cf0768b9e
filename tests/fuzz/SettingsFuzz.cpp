#include "FuzzInput.h"
#include "settings/interchange/InterchangeError.h"
#include "settings/interchange/PresetFile.h"
#include "settings/records/json/SettingsCoding.h"

namespace {

using namespace quorbel;

void checkSettings(std::string_view json) {
    Persisted settings;
    try {
        settings = decodeRecord<Persisted>(json);
    } catch (const DecodingError &) {
        return; // the only error allowed
    }
    const std::string written = encodeRecord(settings);
    mustHold(decodeRecord<Persisted>(written) == settings, "settings read back");
}

void checkPreset(std::string_view json) {
    Preset preset;
    try {
        preset = readPresetFile(json);
    } catch (const DecodingError &) {
        return;
    } catch (const InterchangeError &) {
        return;
    }
    Preset again = readPresetFile(writePresetFile(preset));
    again.id = preset.id; // every read assigns a new id
    mustHold(again == preset, "a preset reads back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    checkSettings(textOf(data, size));
    checkPreset(textOf(data, size));
    return 0;
}
