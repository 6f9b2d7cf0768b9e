#include "settings/interchange/EqualizerText.h"

#include "settings/presets/FactoryPresets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace quorbel {
namespace {

using testing::HasSubstr;
using FilterType = EQBand::FilterType;

/// A band without its id.
struct Shape {
    FilterType type;
    float frequency, gainDB, q;
    bool bypassed;

    friend bool operator==(const Shape &, const Shape &) = default;
    friend void PrintTo(const Shape &s, std::ostream *out) {
        *out << static_cast<int>(s.type) << ' ' << s.frequency << " Hz " << s.gainDB << " dB Q "
             << s.q << (s.bypassed ? " off" : "");
    }
};

Shape shapeOf(const EQBand &band) {
    return {band.filterType, band.frequency, band.gainDB, band.q, band.bypassed};
}

std::vector<Shape> shapesOf(const EqualizerText &text) {
    std::vector<Shape> shapes;
    for (const TextBand &entry : text.bands)
        shapes.push_back(shapeOf(entry.band));
    return shapes;
}

TEST(EqualizerText, EveryTypeBecomesItsBand) {
    const EqualizerText text = readEqualizerText("Preamp: -6.2 dB\n"
                                                 "Filter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.70\n"
                                                 "Filter 2: ON LS Fc 80 Hz Gain 4 dB Q 0.5\n"
                                                 "Filter 3: ON LSC Fc 90 Hz Gain 5 dB Q 0.6\n"
                                                 "Filter 4: ON HS Fc 8000 Hz Gain -4 dB\n"
                                                 "Filter 5: ON HSC Fc 9000 Hz Gain -5 dB Q 0.8\n"
                                                 "Filter 6: ON LP Fc 18000 Hz\n"
                                                 "Filter 7: ON LPQ Fc 17000 Hz Q 1.1\n"
                                                 "Filter 8: ON HP Fc 20 Hz\n"
                                                 "Filter 9: OFF HPQ Fc 25 Hz Q 1.2\n");
    EXPECT_EQ(text.preampDB, -6.2F);
    const std::vector<Shape> expected{
        {FilterType::parametric, 105, -3.1F, 0.7F, false},
        {FilterType::lowShelf, 80, 4, 0.5F, false},
        {FilterType::lowShelf, 90, 5, 0.6F, false},
        {FilterType::highShelf, 8000, -4, defaultSlopeQ, false},
        {FilterType::highShelf, 9000, -5, 0.8F, false},
        {FilterType::lowPass, 18000, 0, defaultSlopeQ, false},
        {FilterType::lowPass, 17000, 0, 1.1F, false},
        {FilterType::highPass, 20, 0, defaultSlopeQ, false},
        {FilterType::highPass, 25, 0, 1.2F, true},
    };
    EXPECT_EQ(shapesOf(text), expected);
    EXPECT_TRUE(text.skipped.empty());
    EXPECT_TRUE(text.limited.empty());
}

TEST(EqualizerText, TheSameFilterInManyWritings) {
    const Shape expected{FilterType::parametric, 1050, -3.5F, 0.75F, false};
    const std::string utf16 = [] {
        std::string text("\xFF\xFE", 2);
        for (const char c : std::string("Filter: ON PK Fc 1050 Hz Gain -3.5 dB Q 0.75"))
            text += std::string{c, '\0'};
        return text;
    }();
    for (const std::string &text : std::initializer_list<std::string>{
             "Filter 1: ON PK Fc 1050 Hz Gain -3.5 dB Q 0.75",
             "Filter: ON PK Fc 1050 Hz Gain -3.5 dB Q 0.75",
             "  filter12 :on pk fc 1050hz gain-3.5db q.75  ",
             "Filter  1: ON  PK\t Fc  1050.0 Hz   Gain  -3.50 dB  Q  0.750\r\n",
             "Filter 1: ON PK Fc 1,050 Hz Gain -3.5 dB Q 0.75",
             "Filter 1: ON PK Fc 1.050,0 Hz Gain -3,5 dB Q 0,75",
             "Filter 1: ON PK Fc 1.050 Hz Gain -3,5 dB Q 0,75",
             "Filter 1: ON PK Fc 1 050 Hz Gain -3,5 dB Q 0,75",
             "Filter 1: ON PK Fc 1 050,0 Hz Gain -3,5 dB Q 0,75",
             "Filter 1: ON PK Fc 1.05 kHz Gain -3.5 dB Q 0.75",
             "Filter 1: ON PK Fc 1,050 kHz Gain -3,5 dB Q 0,75",
             "Filter 1: ON PK Q 0.75 Gain -3.5 Fc 1050",
             "Filter 1: ON PK Fc 1050 Hz, Gain -3.5 dB, Q 0.75",
             "\xEF\xBB\xBF"
             "Filter 1: ON PK Fc 1050 Hz Gain \u22123.5 dB Q\u00A00.75",
             "Filter 1: ON PK Fc 1\xA0"
             "050 Hz Gain \x96"
             "3,5 dB Q 0,75", // Windows-1252
             utf16,
             "# a comment\r\r\n\nFilter 1: ON PK Fc 1050 Hz Gain -3.5 dB Q 0.75\r",
         }) {
        SCOPED_TRACE(text);
        const EqualizerText read = readEqualizerText(text);
        EXPECT_EQ(shapesOf(read), std::vector{expected});
        EXPECT_TRUE(read.skipped.empty()) << read.skipped.front().reason;
    }
}

TEST(EqualizerText, BandwidthInOctavesStandsForQ) {
    const EqualizerText text =
        readEqualizerText("Filter 1: ON PK Fc 100 Hz Gain 3 dB BW Oct 1.3884");
    EXPECT_NEAR(text.bands.at(0).band.q, 1.0, 1e-4);
}

TEST(EqualizerText, TheFilesOtherNumbersDecideWhatACommaMeans) {
    const EqualizerText commas = readEqualizerText("Filter 1: ON PK Fc 16,000 Hz Gain -3,1 dB Q 1\n"
                                                   "Filter 2: ON PK Fc 16.000 Hz Gain 2 dB Q 0,7");
    EXPECT_EQ(commas.bands.at(0).band.frequency, 16.0F);
    EXPECT_EQ(commas.bands.at(1).band.frequency, 16000.0F);
    const EqualizerText points = readEqualizerText("Filter 1: ON PK Fc 16,000 Hz Gain -3.1 dB Q 1");
    EXPECT_EQ(points.bands.at(0).band.frequency, 16000.0F);
}

TEST(EqualizerText, SkippedLinesAreListedWithTheirReasons) {
    const struct {
        const char *line, *reason;
    } cases[] = {
        {"Equaliser: Generic", "neither a filter nor a preamp: \"Equaliser: Generic\""},
        {"just words", "neither a filter nor a preamp"},
        {"GraphicEQ: 20 1; 30 2", "neither a filter nor a preamp"},
        {"Filter Settings file", "neither a filter nor a preamp"},
        {"Filter 2: ON None", "no filter is set"},
        {"Filter 2: ON NO Fc 100 Hz", "the filter type \"NO\" is not supported (PK, LS,"},
        {"Filter 2: MAYBE PK Fc 100 Hz", "expected ON or OFF, found \"MAYBE\""},
        {"Filter 2:", "expected ON or OFF, found the end of the line"},
        {"Filter 2: ON", "expected a filter type, found the end of the line"},
        {"Filter 2: ON PK Gain 1 dB Q 1", "Fc is missing"},
        {"Filter 2: ON PK Fc 100 Hz Q 1", "Gain is missing"},
        {"Filter 2: ON PK Fc 100 Hz Gain 1 dB", "Q is missing"},
        {"Filter 2: ON PK Fc abc Gain 1 dB Q 1", "expected a number for Fc, found \"abc\""},
        {"Filter 2: ON PK Fc 1,00,0 Hz Gain 1 dB Q 1", "Fc is not a number: \"1,00,0\""},
        {"Filter 2: ON PK Fc 100 Hz Gain 1e40 dB Q 1", "Gain is not a number: \"1e40\""},
        {"Filter 2: ON PK Fc 0 Hz Gain 1 dB Q 1", "Fc has to be above 0"},
        {"Filter 2: ON PK Fc -100 Hz Gain 1 dB Q 1", "Fc has to be above 0"},
        {"Filter 2: ON PK Fc 1e38 kHz Gain 1 dB Q 1", "Fc has to be"},
        {"Filter 2: ON PK Fc 100 Hz Gain 1 dB Q 0", "Q has to be above 0"},
        {"Filter 2: ON PK Fc 100 Hz Gain 1 dB BW Oct 1e30", "BW has to be"},
        {"Filter 2: ON PK Fc 100 Hz Gain 1 dB Q 1 BW 1", "both Q and BW are given"},
        {"Filter 2: ON PK Fc 100 Hz Fc 200 Hz Gain 1 dB Q 1", "Fc is given twice"},
        {"Filter 2: ON LSC 12 dB Fc 100 Hz Gain 1 dB", "a slope in dB in the place of Q"},
        {"Filter 2: ON PK Fc 100 Hz Gain 1 dB Q 1 T60 3",
         "expected Fc, Gain, Q or BW, found \"T\""},
        {"Filter 2: ON PK Fc 100 Hz (Gain 1 dB) Q 1", "found \"(Gain 1 dB) Q 1\""},
        {"Preamp: loud", "expected a number for the preamp, found \"loud\""},
        {"Preamp: -6 dB or so", "expected nothing more, found \"or\""},
        {"Preamp: 1e9 dB", "a preamp beyond 1000 dB"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.line);
        const EqualizerText text = readEqualizerText("Preamp: -1 dB\n\n" + std::string(c.line) +
                                                     "\nFilter 9: ON HP Fc 20 Hz\n");
        EXPECT_EQ(text.bands.size(), 1U);
        EXPECT_EQ(text.preampDB, -1.0F);
        ASSERT_EQ(text.skipped.size(), 1U);
        EXPECT_EQ(text.skipped[0].line, 3U);
        EXPECT_THAT(text.skipped[0].reason, HasSubstr(c.reason));
    }
}

TEST(EqualizerText, FiltersOfOneChannelAreNotPlayedOnBoth) {
    const EqualizerText text = readEqualizerText("Channel: L\nPreamp: -3 dB\n"
                                                 "Filter: ON PK Fc 1 kHz Gain 1 dB Q 1\n"
                                                 "Channel: L R\n"
                                                 "Filter: ON PK Fc 2 kHz Gain 2 dB Q 1\n"
                                                 "Channel: R\n"
                                                 "Filter: ON PK Fc 3 kHz Gain 3 dB Q 1\n"
                                                 "Channel: all\n"
                                                 "Preamp: -4.5 dB\nPreamp: 0.25 dB\n");
    ASSERT_EQ(text.bands.size(), 1U);
    EXPECT_EQ(text.bands[0].band.frequency, 2000.0F);
    EXPECT_EQ(text.bands[0].line, 5U);
    EXPECT_EQ(text.preampDB, -4.25F);
    ASSERT_EQ(text.skipped.size(), 3U);
    EXPECT_EQ(text.skipped[0].line, 2U);
    EXPECT_EQ(text.skipped[1].line, 3U);
    EXPECT_EQ(text.skipped[2].line, 7U);
}

TEST(EqualizerText, UnplayableFiltersAreNoted) {
    const EqualizerText text = readEqualizerText("Filter: ON PK Fc 100 Hz Gain 30 dB Q 1\n"
                                                 "Filter: ON PK Fc 100 Hz Gain 3 dB Q 50\n"
                                                 "Filter: ON PK Fc 30000 Hz Gain 3 dB Q 1\n"
                                                 "Filter: OFF PK Fc 30000 Hz Gain 3 dB Q 1\n"
                                                 "Preamp: -100 dB\nFilter: ON HP Fc 5 Hz");
    const std::vector<LineNote> expected{
        {1, "Gain 30 is beyond what is played, -96 to 24 dB"},
        {2, "Q 50 is beyond what is played, 0.1825 to 28.85"},
        {3, "Fc 30000 is beyond what is played, 1 to 2.352e+04 Hz"},
        {5, "a preamp of -100 dB is beyond what is played, -96 to 24 dB"},
    };
    ASSERT_EQ(text.limited.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(text.limited[i].line, expected[i].line);
        EXPECT_EQ(text.limited[i].reason, expected[i].reason);
    }
    EXPECT_EQ(text.bands[0].band.gainDB, 30.0F); // kept as written
}

TEST(EqualizerText, TextsThatAreNoEqualizerFailAsAWhole) {
    std::string tooMany;
    for (std::size_t i = 0; i <= maximumFilters; ++i)
        tooMany += "Filter: ON HP Fc 20 Hz\n";
    std::string novel = "Preamp: 0 dB\n";
    for (std::size_t i = 0; i <= maximumSkippedLines; ++i)
        novel += "It was a dark and stormy night.\n";
    const struct {
        std::string text;
        std::size_t line;
        const char *reason;
    } cases[] = {
        {"", 0, "the text is empty"},
        {"\r\n# nothing\n", 0, "the text is empty"},
        {"\n{\"bands\":[]}", 2, "neither a filter nor a preamp: \"{\\\"bands\\\":[]}\""},
        {std::string("Preamp: 0 dB\nPNG\0", 17), 2, "this is not a text file"},
        {std::string(maximumEqualizerTextBytes + 1, ' '), 0, "the text is larger than 1 MiB"},
        {tooMany, 1001, "more than 1000 filters"},
        {novel, 1002, "more than 1000 lines are not understood"},
        {std::string(maximumEqualizerTextBytes, 'x'), 1, "neither a filter"},
        {std::string(maximumEqualizerTextBytes, '-'), 1, "neither a filter"},
        {"Filter: ON PK Fc " + std::string(100000, '1'), 1, "Fc is not a number"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.reason);
        try {
            (void)readEqualizerText(c.text);
            ADD_FAILURE() << "was read";
        } catch (const InterchangeError &error) {
            EXPECT_EQ(error.line(), c.line);
            EXPECT_THAT(error.reason(), HasSubstr(c.reason));
            EXPECT_LT(std::string(error.what()).size(), 300U);
        }
    }
}

TEST(EqualizerText, TheWriterWritesTheWellKnownForm) {
    EXPECT_EQ(writeEqualizerText(
                  {{.frequency = 105, .gainDB = -3.1F, .q = 0.7F},
                   {.frequency = 31.5F,
                    .gainDB = 2,
                    .filterType = FilterType::lowShelf,
                    .bypassed = true},
                   {.frequency = 0, .gainDB = 4, .q = -1, .filterType = FilterType::highPass}},
                  -6.2F),
              "Preamp: -6.2 dB\n"
              "Filter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.7\n"
              "Filter 2: OFF LSC Fc 31.5 Hz Gain 2 dB Q 1\n"
              "Filter 3: ON HPQ Fc 1 Hz Q 0.1\n");
    for (const float bad : {std::numeric_limits<float>::infinity(), std::nanf("")}) {
        EXPECT_THROW((void)writeEqualizerText({}, bad), InterchangeError);
        EXPECT_THROW((void)writeEqualizerText({{.frequency = bad}}, 0), InterchangeError);
        EXPECT_THROW((void)writeEqualizerText({{.q = bad}}, 0), InterchangeError);
    }
}

void expectReadBack(const std::vector<EQBand> &bands, float preampDB) {
    const std::string written = writeEqualizerText(bands, preampDB);
    SCOPED_TRACE(written);
    const EqualizerText read = readEqualizerText(written);
    EXPECT_TRUE(read.skipped.empty());
    EXPECT_EQ(read.preampDB, preampDB);
    std::vector<Shape> expected;
    for (const EQBand &band : bands)
        expected.push_back(shapeOf(band));
    EXPECT_EQ(shapesOf(read), expected);
}

TEST(EqualizerText, WrittenTextReadsBackExactly) {
    for (const Preset &preset : factoryPresets())
        expectReadBack(preset.bands, -3.3F);
    // Ambiguous decimal point: three digits follow it, and no other number settles its meaning.
    expectReadBack({{.frequency = 1.125F, .gainDB = 1.0F}, {.frequency = 16.125F}}, 0.0F);

    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto anyFloat = [&random](bool positive) {
        while (true) {
            const auto bits = static_cast<std::uint32_t>(random());
            float value = 0.0F;
            std::memcpy(&value, &bits, sizeof value);
            if (std::isnormal(value))
                return positive ? std::abs(value) : value;
        }
    };
    for (int round = 0; round < 100; ++round) {
        std::vector<EQBand> bands(10);
        for (EQBand &band : bands)
            band = {.frequency = anyFloat(true),
                    .gainDB = anyFloat(false),
                    .q = anyFloat(true),
                    .bypassed = random() % 2 == 0};
        expectReadBack(bands, static_cast<float>(random()) / 1e8F - 20.0F);
    }
}

} // namespace
} // namespace quorbel
