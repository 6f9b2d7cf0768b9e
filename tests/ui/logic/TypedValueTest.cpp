#include "ui/logic/TypedValue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace quorbel {
namespace {

using ::testing::Eq;

MATCHER_P(Reads, value, "") { return arg && std::abs(*arg - value) < 1e-4; }

TEST(TypedValueTest, Frequencies) {
    EXPECT_THAT(parseFrequency("8k"), Reads(8000.0));
    EXPECT_THAT(parseFrequency("1,5 kHz"), Reads(1500.0));
    EXPECT_THAT(parseFrequency(" 2.5K "), Reads(2500.0));
    EXPECT_THAT(parseFrequency("31.5 Hz"), Reads(31.5));
    EXPECT_THAT(parseFrequency("31,5"), Reads(31.5));
    for (const char *grouped : {"16.000", "16,000", "16.000 Hz", "16 000", "16.000,0"})
        EXPECT_THAT(parseFrequency(grouped), Reads(16000.0)) << grouped;
    EXPECT_THAT(parseFrequency("1.000"), Reads(1000.0));
    EXPECT_THAT(parseFrequency("16.000k"), Reads(16000.0)) << "no thousands of thousands";
    for (const char *plain : {"31.500", "31,500"})
        EXPECT_THAT(parseFrequency(plain), Reads(31.5)) << plain << ": 31500 Hz is not heard";
    EXPECT_THAT(parseFrequency("16.00"), Reads(16.0));
    EXPECT_THAT(parseFrequency("12 000 hz"), Reads(12000.0));
    EXPECT_THAT(parseFrequency("12\u202F000\u00A0Hz"), Reads(12000.0));
}

TEST(TypedValueTest, GainsAndQ) {
    EXPECT_THAT(parseGain("-3 dB"), Reads(-3.0));
    EXPECT_THAT(parseGain("+1,5"), Reads(1.5));
    EXPECT_THAT(parseGain("\u22122DB"), Reads(-2.0));
    EXPECT_THAT(parseGain("0"), Reads(0.0));
    EXPECT_THAT(parseQ(".7"), Reads(0.7));
    EXPECT_THAT(parseQ(",7"), Reads(0.7));
    EXPECT_THAT(parseQ("Q 1,4"), Reads(1.4));
    EXPECT_THAT(parseQ("q=2"), Reads(2.0));
}

TEST(TypedValueTest, OtherTextsAreNoValues) {
    for (const char *text : {"", " ", "k", "dB", "Hz", "-", "+", ".", "abc", "3 4x", "nan", "inf",
                             "1e400", "0x10", "--3", "3 dB dB", "1.2.3"}) {
        EXPECT_THAT(parseFrequency(text), Eq(std::nullopt)) << text;
        EXPECT_THAT(parseGain(text), Eq(std::nullopt)) << text;
        EXPECT_THAT(parseQ(text), Eq(std::nullopt)) << text;
    }
    EXPECT_THAT(parseGain("8k"), Eq(std::nullopt)) << "a frequency";
    EXPECT_THAT(parseFrequency("-3 dB"), Eq(std::nullopt)) << "a gain";
}

} // namespace
} // namespace quorbel
