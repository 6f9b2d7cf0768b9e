#include "settings/records/json/SettingsCoding.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

namespace quorbel {
namespace {

const std::string eightRequired =
    R"("widenerEnabled":true,"widthPercent":120,"xtcEnabled":true,"xtcAmount":40.5,)"
    R"("xtcNotchFrequency":2100,"reverbEnabled":true,"reverbMix":8,"reverbPreset":"plate")";

TEST(RecordCoding, RecordsLeaveInDeclarationOrderCompactAndWithShortestNumbers) {
    const std::string mixerJson =
        R"({"tempoChainEnabled":false,"tempoRate":1,"pitchSemitones":0,)"
        R"("saturationEnabled":false,"saturationDrive":30,"crossfeedEnabled":false,)"
        R"("crossfeedAmount":50,"limiterEnabled":true,"limiterThresholdDB":-0.3,)"
        R"("autoGainEnabled":false,"autoGainTargetDB":-16,"manualLoudnessEnabled":false,)"
        R"("manualLoudnessDB":0,"spectrumEnabled":true})";
    const std::string spatialJson =
        R"({"widenerEnabled":false,"widthPercent":100,"xtcEnabled":false,"xtcAmount":50,)"
        R"("xtcNotchFrequency":2000,"reverbEnabled":false,"reverbMix":15,)"
        R"("reverbPreset":"smallRoom","bassEnabled":false,"bassAmount":50,"bassDrive":3,)"
        R"("bassCrossover":80,"bassAdaptiveEnabled":false,"voiceEnabled":false,)"
        R"("voiceAmount":100,"voicePresenceGainDB":3,"voiceMudCutDB":2.5,)"
        R"("voiceAdaptiveEnabled":false,"toneBassDB":0,"toneMidDB":0,"toneTrebleDB":0})";
    const std::string id = R"("0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9")";
    const std::string required =
        R"({"bands":[],"spatial":)" + spatialJson + R"(,"presets":[{"id":)" + id +
        R"(,"name":"A — B","category":"user","createdAt":-978307200,"bands":[{"id":)" + id +
        R"(,"frequency":31.5,"gainDB":0,"q":1,"filterType":"lowShelf","bypassed":false}],)" +
        R"("spatial":)" + spatialJson + R"(,"notes":""}])";

    EQBand band = EQBand::defaultBands().front();
    band.id = *Uuid::fromText("0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9");
    Persisted persisted;
    persisted.presets = {{.id = band.id,
                          .name = "A — B",
                          .createdAt = Date::unixEpoch(),
                          .bands = {band},
                          .spatial = {},
                          .notes = ""}};
    EXPECT_EQ(encodeRecord(persisted), required + "}");
    persisted.activePresetID = band.id;
    persisted.mixer = MixerConfig{};
    persisted.activePresetName = "A";
    persisted.eqGlobalGainDB = 0.1F;
    persisted.outputDeviceUID = "";
    EXPECT_EQ(encodeRecord(persisted),
              required + R"(,"activePresetID":)" + id + R"(,"mixer":)" + mixerJson +
                  R"(,"activePresetName":"A","eqGlobalGainDB":0.1,"outputDeviceUID":""})");
    EXPECT_EQ(decodeRecord<Persisted>(encodeRecord(persisted)), persisted);
}

TEST(RecordCoding, MissingAndNullOptionalKeysTakeTheDefaults) {
    EXPECT_EQ(decodeRecord<MixerConfig>("{}"), MixerConfig{});
    EXPECT_EQ(decodeRecord<MixerConfig>(R"({"limiterEnabled":null,"tempoRate":null})"),
              MixerConfig{});

    const auto band = decodeRecord<EQBand>(R"({"frequency": 1000})");
    EXPECT_EQ(band, (EQBand{.id = band.id, .frequency = 1000.0F}));
    EXPECT_NE(band.id, decodeRecord<EQBand>(R"({"frequency": 1000, "id": null})").id);

    const auto spatial = decodeRecord<SpatialConfig>("{" + eightRequired + "}");
    EXPECT_EQ(spatial, (SpatialConfig{.widenerEnabled = true,
                                      .widthPercent = 120.0F,
                                      .xtcEnabled = true,
                                      .xtcAmount = 40.5F,
                                      .xtcNotchFrequency = 2100.0F,
                                      .reverbEnabled = true,
                                      .reverbMix = 8.0F,
                                      .reverbPreset = SpatialConfig::ReverbPreset::plate}));

    const auto preset = decodeRecord<Preset>(
        R"({"id":"0a1b2c3d-4e5f-6071-8293-A4B5C6D7E8F9","name":"x","createdAt":0,"bands":[],)"
        R"("spatial":{)" +
        eightRequired + "}}");
    EXPECT_EQ(preset.category, Preset::Category::user);
    EXPECT_EQ(preset.notes, "");

    const auto persisted = decodeRecord<Persisted>(
        R"({"bands":[],"presets":[],"mixer":null,"activePresetID":null,"spatial":{)" +
        eightRequired + "}}");
    EXPECT_FALSE(persisted.mixer || persisted.activePresetID || persisted.activePresetName ||
                 persisted.eqGlobalGainDB || persisted.outputDeviceUID);
}

TEST(RecordCoding, NumbersKeepEveryBitIn32And64BitForm) {
    const auto roundTrip = [](float value) {
        return decodeRecord<EQBand>(encodeRecord(EQBand{.frequency = value})).frequency;
    };
    const auto expectSameBits = [&](float value) {
        const auto back = roundTrip(value);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(back), std::bit_cast<std::uint32_t>(value))
            << encodeRecord(EQBand{.frequency = value});
    };
    using Limits = std::numeric_limits<float>;
    for (const float value : {0.0F, 0.1F, -0.3F, 1e-6F, 16777217.0F, 1e20F, Limits::max(),
                              Limits::lowest(), Limits::min(), Limits::denorm_min()})
        expectSameBits(value);

    const std::uint32_t seed = 20240229;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int count = 0; count < 20000; ++count) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isfinite(value))
            expectSameBits(value);
        const Date date{std::ldexp(static_cast<double>(random()), -3) + 1e-7 * count};
        EXPECT_EQ(decodeRecord<Preset>(encodeRecord(Preset{.createdAt = date})).createdAt, date);
    }
    // The JSON library would print -3.7487066000000002.
    EXPECT_NE(encodeRecord(EQBand{.gainDB = -3.7487066F}).find(R"("gainDB":-3.7487066,)"),
              std::string::npos);
}

TEST(RecordCoding, UnencodableValuesAreRefusedWithTheirPath) {
    const auto pathOfFailure = [](const Persisted &record) -> std::string {
        try {
            (void)encodeRecord(record);
        } catch (const EncodingError &error) {
            return error.path();
        }
        return "written";
    };
    Persisted whole;
    whole.bands = EQBand::defaultBands();
    whole.presets.resize(1);
    Persisted record = whole;
    record.bands[2].q = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(pathOfFailure(record), "bands[2].q");
    record = whole;
    record.presets[0].spatial.toneMidDB = -std::numeric_limits<float>::infinity();
    EXPECT_EQ(pathOfFailure(record), "presets[0].spatial.toneMidDB");
    record = whole;
    record.presets[0].name = "\xff";
    EXPECT_EQ(pathOfFailure(record), "presets[0].name");
}

TEST(Uuid, RandomOnesDifferAndReadBackInEitherCase) {
    const Uuid uuid = Uuid::random();
    EXPECT_NE(uuid, Uuid::random());
    EXPECT_EQ(uuid.text()[14], '4');
    EXPECT_EQ(Uuid::fromText(uuid.text()), uuid);
    EXPECT_EQ(Uuid::fromText("00112233-4455-6677-8899-aAbBcCdDeEfF")->text(),
              "00112233-4455-6677-8899-AABBCCDDEEFF");
}

} // namespace
} // namespace quorbel
