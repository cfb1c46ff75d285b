#include "link/codes.h"
#include "link/runtime_failure.h"

#include <gtest/gtest.h>

#include <vector>

namespace kavro {
namespace {

TEST(Codes, FamiliesAndChannels) {
    const struct {
        std::vector<const char*> Models;
        std::int16_t Family;
        std::optional<std::int16_t> Channels;
    } cases[] = {{{"8410", "8420", "8430", "8440", "8450  ", "8460", "8470", "8480", "8490"}, 0, {}},
                 {{"8210  ", "  8220", "8240D "}, 1, 1},
                 {{"8310", "8320"}, 2, {}},
                 {{"8230"}, 3, 3},
                 {{"8250", "8260"}, 3, 8},
                 {{"8510"}, 4, {}},
                 {{"8610", "8620"}, 5, {}},
                 {{"8999", "", "821", "82 10"}, 6, {}}};
    for (const auto& [models, family, channels] : cases) {
        for (const char* model : models) {
            EXPECT_EQ(ModuleFamily(model), family) << model;
            EXPECT_EQ(ChannelCount(model), channels) << model;
        }
    }
}

TEST(Codes, Ranges) {
    const struct {
        std::int16_t Code;
        const char* Name;
        double FullScale;
        const char* Unit;
    } named[] = {
        {0, "+/- 15mV", 15, "mV  "},        {1, "+/- 50mV", 50, "mV  "},
        {2, "+/- 100mV", 100, "mV  "},      {3, "+/- 500mV", 500, "mV  "},
        {4, "+/- 1V", 1, "V   "},           {5, "+/- 2.5V", 2.5, "V   "},
        {6, "+/- 20mA", 20, "mA  "},        {8, "+/- 10V", 10, "V   "},
        {9, "+/- 5V", 5, "V   "},           {10, "+/- 1V", 1, "V   "},
        {11, "+/- 500mV", 500, "mV  "},     {12, "+/- 150mV", 150, "mV  "},
        {13, "+/- 20mA", 20, "mA  "},       {14, "T/C Type J", 760, "C   "},
        {15, "T/C Type K", 1370, "C   "},   {16, "T/C Type T", 400, "C   "},
        {17, "T/C Type E", 1000, "C   "},   {18, "T/C Type R", 1750, "C   "},
        {19, "T/C Type S", 1750, "C   "},   {20, "T/C Type B", 1800, "C   "},
        {21, "T/C Type N", 1300, "C   "},   {22, "T/C Type C", 2320, "C   "},
        {32, "Pt, +/- 100C", 100, "C   "},  {33, "Pt, 0 to 100C", 100, "C   "},
        {34, "Pt, 0 to 200C", 200, "C   "}, {35, "Pt, 0 to 600C", 600, "C   "},
        {36, "Pt, +/- 100C", 100, "C   "},  {37, "Pt, 0 to 100C", 100, "C   "},
        {38, "Pt, 0 to 200C", 200, "C   "}, {39, "Pt, 0 to 600C", 600, "C   "},
        {40, "Ni, +/- 100C", 100, "C   "},  {41, "Ni, -120~100C", 100, "C   "},
        {42, "Cu, 0~60 ohms", 60, "ohms"},  {48, "0 to 20mA", 20, "mA  "},
        {49, "4 to 20mA", 20, "mA  "},      {50, "0 to 10V", 10, "V   "},
        {51, "+/- 10V", 0, "V   "},         {80, "Counter", 0, ""},
        {81, "Frequency", 0, ""},
    };
    std::int16_t code = -1;
    for (const auto& range : named) {
        for (; code < range.Code; ++code) {
            EXPECT_EQ(RangeName(code) + RangeUnit(code, EngineeringUnits), std::string(16, ' ')) << code;
            EXPECT_EQ(RangeFullScale(code), 0) << code;
        }
        std::string name = range.Name;
        name.resize(16, ' ');
        EXPECT_EQ(RangeName(code), name);
        EXPECT_EQ(RangeFullScale(code), range.FullScale);
        EXPECT_EQ(RangeUnit(code, EngineeringUnits), range.Unit);
        EXPECT_EQ(RangeUnit(code, Ohms), code >= 32 && code <= 41 ? "ohms" : range.Unit);
        ++code;
    }
}

TEST(Codes, NamesOfFormatsAndAlarmModes) {
    EXPECT_EQ(FormatName(0) + FormatName(1), "Engineering Units% of FSR         ");
    EXPECT_EQ(FormatName(2) + FormatName(3), "Two's complement Ohms             ");
    EXPECT_EQ(AlarmModeName(0) + AlarmModeName(1) + AlarmModeName(2), "Disabled  Momentary Latch     ");
    EXPECT_THROW(FormatName(4), RuntimeFailure);
    EXPECT_THROW(AlarmModeName(-1), RuntimeFailure);
}

TEST(Codes, FormatReadingPatterns) {
    const std::pair<std::vector<std::int16_t>, const char*> cases[] = {
        {{15, 17, 18, 19, 20, 21, 22}, "+0001.2"},
        {{2, 3, 11, 12, 14, 16, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42}, "+001.23"},
        {{0, 1, 6, 8, 13}, "+01.235"},
        {{4, 5, 9, 10}, "+1.2346"},
        {{-1, 7, 23, 31, 43, 48, 49, 50, 51, 64, 80, 81, 255}, "+00001"}};
    for (const auto& [codes, text] : cases)
        for (const std::int16_t code : codes)
            EXPECT_EQ(FormatReading("1.23456", code), text) << code;
}

TEST(Codes, FormatReadingSignsAndWraps) {
    const struct {
        const char* Reading;
        std::int16_t Code;
        const char* Text;
    } cases[] = {{"+05.123", 0, "+05.123"},  {"-0012.5", 15, "-0012.5"}, {"0", 0, "+00.000"},
                 {"-0", 0, "+00.000"},       {"-.0001", 0, "-00.000"},   {"123.456", 0, "+23.456"},
                 {"-123.456", 0, "-23.456"}, {"100", 0, "+100.000"},     {"100.001", 0, "+00.001"},
                 {"200", 0, "+00.000"},      {"10", 4, "+10.0000"},      {"12.5", 4, "+2.5000"},
                 {"1000", 2, "+1000.00"},    {"1000.5", 2, "+000.50"},   {"10000", 15, "+10000.0"},
                 {"23456.7", 15, "+3456.7"}, {"100000", 7, "+100000"},   {"100001", 7, "+00001"},
                 {"0.0005", 0, "+00.001"},   {"12xyz", 0, "+12.000"}};
    for (const auto& [reading, code, text] : cases)
        EXPECT_EQ(FormatReading(reading, code), text) << reading;
    for (const char* reading : {"", "abc", "*error*", "1e999"})
        EXPECT_THROW(FormatReading(reading, 0), RuntimeFailure) << reading;
}

} // namespace
} // namespace kavro
