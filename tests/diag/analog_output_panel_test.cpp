#include "diag/analog_output_panel.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

#include <tuple>

namespace kavro {
namespace {

TEST(AnalogOutputPanel, CommandOfTheSingleOutput) {
    const std::tuple<std::int16_t, std::int16_t, int, const char*, const char*> cases[] = {
        {48, 0, 20475, "#0112.500", "12.500"},  {49, 0, 32760, "#0120.000", "20.000"},
        {50, 0, 32760, "#0110.000", "10.000"},  {48, 1, 20475, "#01+062.50", "12.500"},
        {50, 1, 32760, "#01+100.00", "10.000"}, {50, 2, 16380, "#01800", "5.000"},
        {48, 2, 32760, "#01FFF", "20.000"}}; // range code, data format, position, command, shown value
    for (const auto& [range, format, position, command, shown] : cases) {
        const BarPosition bar{position, 32760};
        EXPECT_EQ(OutputCommand("01", {.DataFormat = format, .InputRange = range}, bar), command);
        EXPECT_EQ(ShownOutput(OutputValue(range, bar)), shown);
    }
    for (int count = 0; count <= OutputCounts; ++count) // every one is reached
        ASSERT_EQ(OutputCommand("", {.DataFormat = 2, .InputRange = 48}, {8 * count, 8 * OutputCounts}),
                  "#" + ToHex(count, 3));
}

TEST(AnalogOutputPanel, InputsNeedAWholeReply) {
    const std::pair<const char*, std::optional<unsigned>> cases[] = {
        {"!550000\r", 0x55},         {"!55000\r", std::nullopt},  {"!5500000\r", std::nullopt},
        {"?550000\r", std::nullopt}, {"!5G0000\r", std::nullopt}, {"!550000", std::nullopt}};
    for (const auto& [reply, bits] : cases) {
        ScriptedSession test;
        test.Port().Queue.push_back({reply});
        EXPECT_EQ(ReadOutputModuleInputs(test.Session, 0), bits) << reply;
    }
}

} // namespace
} // namespace kavro
