#include "settings/records/json/SettingsCoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace quorbel {
namespace {

using testing::HasSubstr;

/// Settings text with its substring `at` replaced by `by`.
std::string goodTextWith(const std::string &at, const std::string &by) {
    std::string text =
        R"({"bands":[{"id":"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9","frequency":31.5,"gainDB":1,)"
        R"("q":0.7,"filterType":"lowShelf","bypassed":false},{"frequency":63}],)"
        R"("spatial":{"widenerEnabled":false,"widthPercent":100,"xtcEnabled":false,"xtcAmount":50,)"
        R"("xtcNotchFrequency":2000,"reverbEnabled":false,"reverbMix":15,)"
        R"("reverbPreset":"smallRoom","bassDrive":3},)"
        R"("presets":[{"id":"00000000-0000-0000-0000-000000000001","name":"One",)"
        R"("category":"mr5","createdAt":-978307200,"bands":[{"frequency":125}],)"
        R"("spatial":{"widenerEnabled":true,"widthPercent":101,"xtcEnabled":true,"xtcAmount":51,)"
        R"("xtcNotchFrequency":2001,"reverbEnabled":true,"reverbMix":16,"reverbPreset":"plate"},)"
        R"("notes":"n"}],)"
        R"("activePresetID":"00000000-0000-0000-0000-000000000001","mixer":{"tempoRate":1},)"
        R"("activePresetName":"One","eqGlobalGainDB":-2,"outputDeviceUID":"uid"})";
    if (at.empty())
        return text;
    const auto position = text.find(at);
    EXPECT_NE(position, std::string::npos) << at;
    return text.replace(position, at.size(), by);
}

struct Outcome {
    std::string path;
    std::string problem;
};

Outcome decodingError(const std::string &text) {
    try {
        (void)decodeRecord<Persisted>(text);
    } catch (const DecodingError &error) {
        const std::string line = error.what();
        EXPECT_TRUE(std::all_of(line.begin(), line.end(),
                                [](char c) { return static_cast<unsigned char>(c) >= 0x20; }))
            << "not one printable line: " << line;
        EXPECT_LT(line.size(), 400U);
        return {error.path(), error.problem()};
    }
    return {"decoded", "decoded"};
}

TEST(RecordDecodingErrors, TheTextThatTheCasesBreakIsGood) {
    EXPECT_EQ(decodingError(goodTextWith("", "")).problem, "decoded");
}

TEST(RecordDecodingErrors, EveryMalformedValueIsNamedByItsPath) {
    const struct {
        const char *at, *by, *path, *problem;
    } cases[] = {
        // Wrong type
        {R"(31.5)", R"("31.5")", "bands[0].frequency", R"(expected a number, found "31.5")"},
        {R"(31.5)", R"(true)", "bands[0].frequency", "expected a number, found true"},
        {R"("gainDB":1)", R"("gainDB":[])", "bands[0].gainDB", "expected a number, found an array"},
        {R"("q":0.7)", R"("q":false)", "bands[0].q", "expected a number, found false"},
        {R"("bypassed":false)", R"("bypassed":0)", "bands[0].bypassed",
         "expected true or false, found 0"},
        {R"("lowShelf")", R"("notch")", "bands[0].filterType",
         R"(expected a filter type (parametric, lowShelf, highShelf, lowPass, highPass), found "notch")"},
        {R"("lowShelf")", R"(7)", "bands[0].filterType", "found 7"},
        {R"("lowShelf")", R"("LowShelf")", "bands[0].filterType", R"(found "LowShelf")"},
        {R"({"frequency":63})", R"(63)", "bands[1]", "expected an object, found 63"},
        {R"({"frequency":63})", R"(null)", "bands[1]", "expected an object, found null"},
        {R"("widenerEnabled":false)", R"("widenerEnabled":1)", "spatial.widenerEnabled",
         "expected true or false, found 1"},
        {R"("bassDrive":3)", R"("bassDrive":{"a":1})", "spatial.bassDrive",
         "expected a number, found an object"},
        {R"("smallRoom")", R"("SmallRoom")", "spatial.reverbPreset", "expected a reverb preset"},
        {R"("mr5")", R"("MR5")", "presets[0].category", "expected a category (general, mr5,"},
        {R"("name":"One")", R"("name":1)", "presets[0].name", "expected a string, found 1"},
        {R"(-978307200)", R"("1970-01-01")", "presets[0].createdAt",
         R"(expected a date in seconds since 2001, found "1970-01-01")"},
        {R"(125)", R"("125")", "presets[0].bands[0].frequency", "expected a number"},
        {R"("plate")", R"("Plate")", "presets[0].spatial.reverbPreset", R"(found "Plate")"},
        {R"("notes":"n")", R"("notes":["n"])", "presets[0].notes", "expected a string"},
        {R"("mixer":{"tempoRate":1})", R"("mixer":[])", "mixer",
         "expected an object, found an array"},
        {R"("tempoRate":1)", R"("tempoRate":true)", "mixer.tempoRate", "expected a number"},
        {R"("eqGlobalGainDB":-2)", R"("eqGlobalGainDB":"-2")", "eqGlobalGainDB",
         R"(expected a number, found "-2")"},
        {R"("outputDeviceUID":"uid")", R"("outputDeviceUID":5)", "outputDeviceUID",
         "expected a string"},
        {R"("activePresetName":"One")", R"("activePresetName":false)", "activePresetName",
         "expected a string"},
        // UUIDs
        {"0A1B2C3D-4E5F", "0A1B2C3D-4E5", "bands[0].id", "expected a UUID"},
        {"0A1B2C3D-4E5F", "GA1B2C3D-4E5F", "bands[0].id", "expected a UUID"},
        {R"("activePresetID":"00000000)", R"("activePresetID":"{0000000)", "activePresetID",
         "expected a UUID"},
        // Missing or null where required
        {R"("frequency":63)", R"("gainDB":63)", "bands[1].frequency", "required, but missing"},
        {R"("frequency":63)", R"("frequency":null)", "bands[1].frequency", "required, but null"},
        {R"("bands":[{"id")", R"("Bands":[{"id")", "bands", "required, but missing"},
        {R"("spatial":{"widenerEnabled":f)", R"("s":{"widenerEnabled":f)", "spatial", "missing"},
        {R"("presets")", R"("preset")", "presets", "missing"},
        {R"("xtcEnabled":false,)", "", "spatial.xtcEnabled", "missing"},
        {R"("reverbPreset":"smallRoom",)", "", "spatial.reverbPreset", "missing"},
        {R"("reverbMix":16)", R"("reverbMix":null)", "presets[0].spatial.reverbMix", "null"},
        {R"("createdAt":-978307200,)", "", "presets[0].createdAt", "missing"},
        {R"("presets":[{"id":"00000000-0000-0000-0000-000000000001",)", R"("presets":[{)",
         "presets[0].id", "missing"},
        // Too large for the field, then for any number
        {R"(31.5)", R"(1e39)", "bands[0].frequency",
         "expected a number that fits 32-bit floating point, found 1e+39"},
        {R"(31.5)", R"(-3.5e38)", "bands[0].frequency", "fits 32-bit"},
        {R"(31.5)", R"(1e999)", "bands[0].frequency", "number too large"},
        // Not JSON
        {R"(31.5)", R"(NaN)", "bands[0].frequency", "not valid JSON at line 1, column 68: "},
        {R"(31.5)", R"(-Infinity)", "bands[0].frequency", "not valid JSON"},
        {R"(31.5)", R"(031.5)", "bands[0].frequency", "not valid JSON"},
        {R"("name":"One")", R"('name':'One')", "presets[0].id", "not valid JSON"},
        {R"("name":"One")", "\"name\":\"O\xC3\"", "presets[0].name",
         "invalid string: ill-formed UTF-8 byte"},
        {R"("name":"One")", "\"name\":\"O\xED\xA0\x80\"", "presets[0].name", "ill-formed UTF-8"},
        {R"("name":"One")", R"("name":"\ud800")", "presets[0].name", "surrogate"},
        {R"("name":"One")", "\"name\":\"a\nb\"", "presets[0].name", "control character"},
        {R"("outputDeviceUID":"uid"})", R"("outputDeviceUID":"uid")", "outputDeviceUID",
         "unexpected end of input"},
        {R"("outputDeviceUID":"uid"})", R"("outputDeviceUID":"uid",})", "outputDeviceUID",
         "not valid JSON"},
        {R"("outputDeviceUID":"uid"})", R"("outputDeviceUID":"uid"} {})", "", "not valid JSON"},
        {R"("mixer")", R"("bad key/": nope, "mixer")", R"("bad key/")", "not valid JSON"},
    };
    for (const auto &[at, by, path, problem] : cases) {
        SCOPED_TRACE(std::string(at) + " -> " + by);
        const Outcome outcome = decodingError(goodTextWith(at, by));
        EXPECT_EQ(outcome.path, path);
        EXPECT_THAT(outcome.problem, HasSubstr(problem));
    }
}

TEST(RecordDecodingErrors, DocumentsThatAreNoSettingsAtAll) {
    const struct {
        std::string text, problem;
    } cases[] = {
        {"", "empty, holds no JSON"},
        {" \n\t", "empty, holds no JSON"},
        {"[]", "expected an object, found an array"},
        {"null", "expected an object, found null"},
        {"\"text\"", "expected an object, found \"text\""},
        {"{}", "required, but missing"},
        {std::string(3, '\0'), "not valid JSON at line 1, column 1"},
        {goodTextWith("", "") + std::string("\n\0{", 3),
         "not valid JSON at line 2, column 1: zero"},
        {"\xff\xfe{\0}", "not valid JSON"},
        {"\n\n  {,}", "not valid JSON at line 3, column 4: "},
        {"PK\x03\x04", "not valid JSON"},
        {"\"" + std::string(100000, 'x'), "not valid JSON"},
        {"\"" + std::string(100000, 'x') + "\"", "found \"xxxxxxxx"},
        {"{\"" + std::string(100000, 'k') + "\":!}", "not valid JSON"},
    };
    for (const auto &[text, problem] : cases) {
        SCOPED_TRACE(text.substr(0, 20));
        EXPECT_THAT(decodingError(text).problem, HasSubstr(problem));
    }
}

TEST(RecordDecodingErrors, CutAnywhereTheTextIsRefused) {
    const std::string text = goodTextWith("", "");
    for (std::size_t length = 0; length < text.size(); ++length)
        ASSERT_NE(decodingError(text.substr(0, length)).problem, "decoded") << length;
}

// A recursive reader would overflow its stack; a linear search per key would take hours.
TEST(RecordDecodingErrors, HostileShapesEndInAnErrorOrAreReadInLinearTime) {
    const std::string deepArrays(2000000, '[');
    EXPECT_EQ(decodingError(deepArrays).problem, "nested more than 512 levels deep");
    std::string deepObjects;
    for (int level = 0; level < 200000; ++level)
        deepObjects += R"({"bands":)";
    EXPECT_EQ(decodingError(deepObjects).problem, "nested more than 512 levels deep");
    EXPECT_EQ(decodingError(goodTextWith(R"("mixer":)", R"("unknown":)" + std::string(500, '[') +
                                                            std::string(500, ']') + R"(,"mixer":)"))
                  .problem,
              "decoded");

    std::string manyKeys;
    for (int key = 0; key < 300000; ++key)
        manyKeys += '"' + std::to_string(key) + R"(":0,)";
    EXPECT_EQ(decodingError(goodTextWith(R"("mixer":)", manyKeys + R"("mixer":)")).problem,
              "decoded");
}

} // namespace
} // namespace quorbel
