#include "settings/interchange/DecimalNumber.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

constexpr auto unknown = DecimalMark::unknown;
constexpr auto point = DecimalMark::point;
constexpr auto comma = DecimalMark::comma;

TEST(DecimalNumber, FrequenciesAreReadByTheirFilesDecimalMark) {
    const struct {
        const char *text;
        float inUnknown, inPoint, inComma;
    } cases[] = {
        {"105", 105, 105, 105},
        {"63.5", 63.5F, 63.5F, 63.5F},
        {"63,5", 63.5F, 63.5F, 63.5F},
        {"0,125", 0.125F, 0.125F, 0.125F},
        {"12345,678", 12345.678F, 12345.678F, 12345.678F},
        // One mark before three digits
        {"1,000", 1000, 1000, 1000}, // 1 Hz is implausible
        {"16,000", 16000, 16000, 16},
        {"105,000", 105, 105, 105}, // so is 105 kHz
        {"1.000", 1, 1, 1000},
        {"16.000", 16, 16, 16000},
        {"105.000", 105, 105, 105},
        // Both marks, or one repeated
        {"1,000.5", 1000.5F, 1000.5F, 1000.5F},
        {"1.000,5", 1000.5F, 1000.5F, 1000.5F},
        {"1,234,567", 1234567, 1234567, 1234567},
        {"1.05e3", 1050, 1050, 1050},
        {"+20", 20, 20, 20},
        {"-20", -20, -20, -20},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(readNumber(c.text, Grouping::possible, unknown), c.inUnknown);
        EXPECT_EQ(readNumber(c.text, Grouping::possible, point), c.inPoint);
        EXPECT_EQ(readNumber(c.text, Grouping::possible, comma), c.inComma);
    }
}

TEST(DecimalNumber, NonFiniteNumbersAreNone) {
    for (const char *text : {"", "-", "+-1", "abc", "1,00,000", "1.000.5", "12,34.5", "inf", "nan",
                             "1e39", "1e", "0x10", ".", "1,0.0,1"})
        for (const auto mark : {unknown, point, comma}) {
            EXPECT_EQ(readNumber(text, Grouping::possible, mark), std::nullopt) << text;
            EXPECT_EQ(readNumber(text, Grouping::never, mark), std::nullopt) << text;
        }
}

} // namespace
} // namespace quorbel
