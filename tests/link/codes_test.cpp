#include "link/codes.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace kavro {
namespace {

// The families of all models are tested through the dispatch.
TEST(Codes, ChannelCount) {
    const std::pair<const char*, std::optional<std::int16_t>> cases[] = {
        {"  8220", 1}, {"8240D ", 1}, {"8230", 3}, {"8250  ", 8}, {"8260", 8}, {"8310", {}}, {"82 10", {}}};
    for (const auto& [model, channels] : cases)
        EXPECT_EQ(ChannelCount(model), channels) << model;
}

TEST(Codes, Names) {
    const std::tuple<std::int16_t, const char*, double, const char*> ranges[] = {
        {0, "+/- 15mV        ", 15, "mV  "},    {5, "+/- 2.5V        ", 2.5, "V   "},
        {7, "                ", 0, ""},         {14, "T/C Type J      ", 760, "C   "},
        {22, "T/C Type C      ", 2320, "C   "}, {41, "Ni, -120~100C   ", 100, "C   "},
        {42, "Cu, 0~60 ohms   ", 60, "ohms"},   {51, "+/- 10V         ", 0, "V   "}};
    for (const auto& [code, name, scale, unit] : ranges) {
        EXPECT_EQ(RangeName(code), name);
        EXPECT_EQ(RangeFullScale(code), scale) << name;
        EXPECT_EQ(RangeUnit(code, EngineeringUnits), unit) << name;
    }
    EXPECT_EQ(RangeUnit(32, Ohms) + RangeUnit(41, Ohms) + RangeUnit(22, Ohms), "ohmsohmsC   ");
    EXPECT_EQ(FormatName(0) + FormatName(1), "Engineering Units% of FSR         ");
    EXPECT_EQ(FormatName(2) + FormatName(3), "Two's complement Ohms             ");
    EXPECT_EQ(AlarmModeName(0) + AlarmModeName(1) + AlarmModeName(2), "Disabled  Momentary Latch     ");
    EXPECT_THROW(FormatName(4), RuntimeFailure);
}

TEST(Codes, FormatReading) {
    const std::pair<std::vector<std::int16_t>, const char*> patterns[] = {
        {{15, 17, 18, 19, 20, 21, 22}, "+0001.2"},
        {{2, 3, 11, 12, 14, 16, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42}, "+001.23"},
        {{0, 1, 6, 8, 13}, "+01.235"},
        {{4, 5, 9, 10}, "+1.2346"},
        {{-1, 7, 23, 31, 43, 48, 49, 50, 51, 64, 80, 81, 255}, "+00001"}};
    for (const auto& [codes, text] : patterns)
        for (const std::int16_t code : codes)
            EXPECT_EQ(FormatReading("1.23456", code), text) << code;
    // Signs, and values from the wrap limit on.
    const std::tuple<const char*, std::int16_t, const char*> cases[] = {
        {"-0012.5", 15, "-0012.5"}, {"-0", 0, "+00.000"},       {"-.0001", 0, "-00.000"},
        {"123.456", 0, "+23.456"},  {"-123.456", 0, "-23.456"}, {"100", 0, "+100.000"},
        {"100.001", 0, "+00.001"},  {"12.5", 4, "+2.5000"},     {"1000.5", 2, "+000.50"},
        {"23456.7", 15, "+3456.7"}, {"100001", 7, "+00001"},    {"12xyz", 0, "+12.000"}};
    for (const auto& [reading, code, text] : cases)
        EXPECT_EQ(FormatReading(reading, code), text) << reading;
    for (const char* reading : {"", "  ", "*error*", "1e999", "+", "+-5", "inf", "-nan", "."})
        EXPECT_THROW(FormatReading(reading, 0), RuntimeFailure) << reading;
}

TEST(Text, HexadecimalNumbers) {
    EXPECT_EQ(ToHex(5, 2) + ToHex(300, 2) + ToHex(10, 0) + ToHex(-256, 4), "0512CAFFFFFF00");
    EXPECT_EQ(HexDigitValue("9") + HexDigitValue("a") + HexDigitValue("F"), 9 + 10 + 15);
    EXPECT_EQ(HexDigitValue("g") + HexDigitValue("") + HexDigitValue("1F"), 0);
    EXPECT_EQ(HexNumber("FFFFFFFF"), 0xFFFFFFFF);
    for (const char* text : {"", "1G", " 1", "-1", "+1", "0x1", "100000000"})
        EXPECT_FALSE(HexNumber(text)) << text;
}

TEST(Text, WholeNumbers) {
    for (const auto& [text, value] : {std::pair{" 100 ", 100}, {"+5", 5}, {"-32768", -32768}, {"007", 7}})
        EXPECT_EQ(WholeNumber16(text, "x"), value);
    for (const char* text : {"", "abc", "1.5", "+-5", "32768", "99999999999999999999"})
        EXPECT_THROW(WholeNumber16(text, "x"), RuntimeFailure) << text;
    EXPECT_THROW(WholeNumber32("2147483648", "x"), RuntimeFailure);
    const std::pair<const char*, std::int32_t> capped[] = {{"0", 0},
                                                           {"0000000000000000000005", 5},
                                                           {"2147483648", 2147483647},
                                                           {"99999999999999999999", 2147483647}};
    for (const auto& [text, value] : capped)
        EXPECT_EQ(CappedNumber(text), value);
    for (const char* text : {"", "-1", "+1", " 1", "1.0", "1a"})
        EXPECT_FALSE(CappedNumber(text)) << text;
}

TEST(Text, FormatNumber) {
    const std::tuple<double, int, int, const char*> cases[] = {
        {0, 1, 4, "0.0000"},         {0, 2, 0, "00"},       {1.5, 2, 3, "01.500"},
        {1.0005, 2, 3, "01.001"},    {2.675, 1, 2, "2.68"}, {0.5, 1, 0, "1"},
        {0.05, 1, 1, "0.1"},         {0.0049, 1, 1, "0.0"}, {9.99996, 1, 4, "10.0000"},
        {99999.5, 5, 0, "100000"},   {0.5, 0, 1, ".5"},     {-0.25, 1, 1, "-0.3"},
        {123456, 1, 2, "123456.00"}, {-0.04, 1, 1, "0.0"}};
    for (const auto& [value, integerDigits, decimals, text] : cases)
        EXPECT_EQ(FormatNumber(value, integerDigits, decimals), text);
    EXPECT_THROW(FormatNumber(std::numeric_limits<double>::infinity(), 1, 1), RuntimeFailure);
}

TEST(Text, DecimalSeparatorAndKeyFilters) {
    std::string text = "1\xD9\xAB"
                       "5,2\xD9\xAB";
    NormalizeDecimalPoint(text, "\xD9\xAB"); // U+066B
    EXPECT_EQ(text, "1.5,2.");
    for (const auto& [number, shown] :
         {std::pair{"+01.500 V", "+01,500 V"}, {"*error*", "*error*"}, {".0", ",0"}})
        EXPECT_EQ(ShownNumber(number, ","), shown);
    for (int key = -1; key < 0x700; ++key) {
        const bool digit = (key >= '0' && key <= '9') || key == 13 || key == 8;
        const bool sign = key == '+' || key == '-';
        int asDigit = key, withComma = key, withArabic = key;
        FilterDigitKey(asDigit);
        FilterSignedNumberKey(withComma, ",");
        FilterSignedNumberKey(withArabic, "\xD9\xAB");
        EXPECT_EQ(asDigit, digit ? key : 0);
        EXPECT_EQ(withComma, digit || sign || key == ',' ? key : 0);
        EXPECT_EQ(withArabic, digit || sign || key == 0x66B ? key : 0);
    }
}

} // namespace
} // namespace kavro
