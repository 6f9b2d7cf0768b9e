#include "FuzzInput.h"
#include "settings/presets/FactoryPresets.h"
#include "settings/records/json/SettingPath.h"
#include "settings/records/json/SettingsCoding.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using namespace quorbel;

Persisted allSettings() {
    Persisted settings;
    settings.bands = EQBand::defaultBands();
    settings.presets = {factoryPresets().front()};
    settings.mixer.emplace();
    settings.eqGlobalGainDB = 0.0F;
    return settings;
}

void checkLine(const std::string &text) {
    for (const char character : text)
        mustHold(static_cast<unsigned char>(character) >= 0x20, "an error is one printable line");
    mustHold(text.size() < 1000, "an error is short");
}

void check(std::string_view path, const SettingValue &value) {
    static const Persisted before = allSettings();
    Persisted settings = before;
    try {
        const std::string written = setSettingAt(settings, path, value);
        // An accepted value reads back, can be saved, and is idempotent.
        const SettingValue now = settingAt(settings, written);
        Persisted again = settings;
        (void)setSettingAt(again, written, now);
        mustHold(again == settings, "a setting reads back");
        mustHold(decodeRecord<Persisted>(encodeRecord(settings)) == settings, "it can be saved");
    } catch (const DecodingError &error) {
        mustHold(settings == before, "a refused value changes nothing");
        checkLine(error.what());
    } catch (const EncodingError &error) {
        checkLine(error.what()); // invalid UTF-8, which no bus delivers
    }
}

} // namespace

/// The first line is the path. The rest is the value: as text, as a switch, and its first bytes as
/// a number.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view input = textOf(data, size);
    const std::string_view path = input.substr(0, input.find('\n'));
    const std::string_view value = path.size() < input.size() ? input.substr(path.size() + 1) : "";
    check(path, std::string(value));
    check(path, !value.empty());
    double number = 0.0;
    std::memcpy(&number, value.data(), std::min(value.size(), sizeof number));
    check(path, number);
    return 0;
}
