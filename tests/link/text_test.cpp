#include "link/text.h"
#include "support/failure_text.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace kavro {
namespace {

TEST(Text, ToHex) {
    const struct {
        std::int32_t Value;
        std::int16_t Digits;
        const char* Text;
    } cases[] = {{255, 2, "FF"}, {5, 2, "05"},         {0, 2, "00"},        {300, 2, "12C"},
                 {10, 0, "A"},   {171, 8, "000000AB"}, {-1, 2, "FFFFFFFF"}, {-256, 4, "FFFFFF00"}};
    for (const auto& [value, digits, text] : cases)
        EXPECT_EQ(ToHex(value, digits), text);
}

TEST(Text, HexadecimalDigitsAndNumbers) {
    const struct {
        const char* Text;
        int Digit;
        std::optional<std::uint32_t> Number;
    } cases[] = {{"0", 0, 0},   {"9", 9, 9},   {"a", 10, 10}, {"F", 15, 15}, {"g", 0, {}},
                 {"", 0, {}},   {"-", 0, {}},  {" ", 0, {}},  {"1F", 0, 31}, {"FFFFFFFF", 0, 0xFFFFFFFF},
                 {"1G", 0, {}}, {" 1", 0, {}}, {"-1", 0, {}}, {"+1", 0, {}}, {"100000000", 0, {}},
                 {"0x1", 0, {}}};
    for (const auto& [text, digit, number] : cases) {
        EXPECT_EQ(HexDigitValue(text), digit) << text;
        EXPECT_EQ(HexNumber(text), number) << text;
    }
}

TEST(Text, LeadingNumber) {
    const std::pair<const char*, std::optional<double>> cases[] = {
        {"+01.500", 1.5}, {"-0012.5", -12.5}, {"  7abc", 7.0}, {".5", 0.5},   {"2E1", 20.0}, {"-.25V", -0.25},
        {"", {}},         {"  ", {}},         {"+", {}},       {"+-5", {}},   {"inf", {}},   {"-nan", {}},
        {"x1", {}},       {".", {}},          {"1e999", {}},   {"-1,5", -1.0}};
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(LeadingNumber(text), value) << text;
        EXPECT_EQ(NumericValue(text), value.value_or(0)) << text;
    }
}

TEST(Text, WholeNumbers) {
    const std::pair<const char*, int> good[] = {{"0", 0},         {" 100 ", 100},     {"+5", 5}, {"-1", -1},
                                                {"32767", 32767}, {"-32768", -32768}, {"007", 7}};
    for (const auto& [text, value] : good)
        EXPECT_EQ(WholeNumber16(text, "x"), value);
    EXPECT_EQ(WholeNumber32("2147483647", "x"), 2147483647);

    const std::pair<const char*, const char*> bad[] = {
        {"", "Not a whole number: TimeOut \"\"."},
        {"abc", "Not a whole number: TimeOut \"abc\"."},
        {"1.5", "Not a whole number: TimeOut \"1.5\"."},
        {"+-5", "Not a whole number: TimeOut \"+-5\"."},
        {"32768", "Overflow: TimeOut \"32768\" is not between -32768 and 32767."},
        {"99999999999999999999",
         "Overflow: TimeOut \"99999999999999999999\" is not between -32768 and 32767."}};
    for (const auto& [text, description] : bad)
        EXPECT_EQ(FailureText([&] { WholeNumber16(text, "TimeOut"); }), description);
    EXPECT_THROW(WholeNumber32("2147483648", "x"), RuntimeFailure);
    EXPECT_EQ(ToInt16(-32768, "x"), -32768);
    EXPECT_THROW(ToInt16(32768, "x"), RuntimeFailure);
}

TEST(Text, FormatNumber) {
    const struct {
        double Value;
        int IntegerDigits, Decimals;
        const char* Text;
    } cases[] = {{0, 1, 4, "0.0000"},         {0, 2, 0, "00"},
                 {1.5, 2, 3, "01.500"},       {1.0005, 2, 3, "01.001"},
                 {2.675, 1, 2, "2.68"},       {0.5, 1, 0, "1"},
                 {0.05, 1, 1, "0.1"},         {0.049, 1, 1, "0.0"},
                 {0.0049, 1, 1, "0.0"},       {9.99996, 1, 4, "10.0000"},
                 {99999.5, 5, 0, "100000"},   {0.5, 0, 1, ".5"},
                 {-0.25, 1, 1, "-0.3"},       {-0.04, 1, 1, "0.0"},
                 {123456, 1, 2, "123456.00"}, {1e17, 1, 1, "100000000000000000.0"}};
    for (const auto& [value, integerDigits, decimals, text] : cases)
        EXPECT_EQ(FormatNumber(value, integerDigits, decimals), text);
    EXPECT_THROW(FormatNumber(std::numeric_limits<double>::infinity(), 1, 1), RuntimeFailure);
}

TEST(Text, PiecesOfText) {
    EXPECT_EQ(Trim("  8210  "), "8210");
    EXPECT_EQ(Trim("\t8210\t"), "\t8210\t");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Middle("!0182", 4), "82");
    EXPECT_EQ(Middle("!0182", 2, 2), "01");
    EXPECT_EQ(Middle("!01", 4, 2), "");
    EXPECT_EQ(FixedText("82101234", 6), "821012");
    EXPECT_EQ(FixedText("82", 6), "82    ");
}

TEST(Text, NormalizeDecimalPoint) {
    const std::array<const char*, 3> cases[] = {
        {",1,5,", ",", ".1.5."}, {"1.5", ".", "1.5"}, {"1\331\2535", "\xD9\xAB", "1.5"}, {"1,5", "", "1,5"}};
    for (const auto& [before, separator, after] : cases) {
        std::string text = before;
        NormalizeDecimalPoint(text, separator);
        EXPECT_EQ(text, after);
    }
}

TEST(Text, KeyFilters) {
    for (int key = -1; key < 0x700; ++key) {
        const bool digit = (key >= '0' && key <= '9') || key == 13 || key == 8;
        const bool sign = key == '+' || key == '-';
        int asDigit = key, withComma = key, withArabic = key;
        FilterDigitKey(asDigit);
        FilterSignedNumberKey(withComma, ",");
        FilterSignedNumberKey(withArabic, "\xD9\xAB"); // U+066B
        EXPECT_EQ(asDigit, digit ? key : 0);
        EXPECT_EQ(withComma, digit || sign || key == ',' ? key : 0);
        EXPECT_EQ(withArabic, digit || sign || key == 0x66B ? key : 0);
    }
}

} // namespace
} // namespace kavro
