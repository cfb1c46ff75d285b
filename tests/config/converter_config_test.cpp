#include "config/converter_config.h"
#include "config/module_on_line.h"
#include "map/family_reads.h"

namespace kavro {
namespace {

constexpr auto Apply = ApplyChange<ConverterConfig, ConverterConfigOf, ApplyConverterConfig>;

ModuleRecord ConverterWith(std::int32_t word) {
    ModuleRecord record = {.Model = "8620  "};
    record.Converter.SecondBaudCode = 3;
    DecodeConverterFormat(word, record);
    return record;
}

TEST(ConverterConfig, FormatWordKeepsItsOtherBits) {
    const std::tuple<std::int32_t, std::function<void(ConverterConfig&)>, const char*> cases[] = {
        {0x3FE0, [](auto& c) { c.DataBits = 8; }, "3FE3"},
        {0x7FE3, [](auto& c) { c.DataBits = 6, c.StopBits = 2; }, "7FE5"},
        {0x0013, [](auto& c) { c.Rs485 = true; }, "8013"}, // the second code for no parity stays
        {0x0013, [](auto& c) { c.Parity = Parity::Odd; }, "000B"},
        {0x0013, [](auto& c) { c.Parity = Parity::Even; }, "001B"},
        {0xFFFF, [](auto& c) { c.Parity = Parity::None, c.Rs485 = false; }, "7FE7"}};
    for (const auto& [before, change, after] : cases) {
        ModuleOnLine test(ConverterWith(before));
        test.Module.Settings.TypeCode = 0;
        EXPECT_EQ(Apply(test, change), ConfigOutcome::Complete);
        EXPECT_EQ(test.Sent, Lines{std::string("%01010066") + after});
        EXPECT_EQ(test.Session.ConfigResult, 1);
        Apply(test, change);
        EXPECT_EQ(test.Sent, Lines{}) << "all of it is in the entry";
    }
}

TEST(ConverterConfig, BaudRatesOfBothSides) {
    ModuleOnLine test(ConverterWith(0x0003));
    test.Session.ScanIndex = 0;
    test.Module.Settings.Initialisation = true;
    test.Module.Settings.TypeCode = 0;
    const auto change = [](auto& c) { c.Link = {9, 7, 1}, c.SecondBaudCode = 6; };
    EXPECT_EQ(Apply(test, change), ConfigOutcome::Complete);
    EXPECT_EQ(test.Sent, Lines{"%0009009A4003"});
    EXPECT_EQ(test.Messages.Shown, ShownMessages{CompleteMessage});
    Apply(test, change);
    EXPECT_EQ(test.Sent, Lines{}) << "all of it is in the entry";
}

TEST(ConverterConfig, TheCommandFails) {
    ModuleRecord record = ConverterWith(0x4003);
    record.InputRange = static_cast<std::int16_t>(FactorySettings("8620").TypeCode);
    ExpectFaultsAtEachStep(record, {{"%0101" + ToHex(record.InputRange, 2) + "66C003", ConfigFailedText}},
                           [](ModuleOnLine& test) { return Apply(test, [](auto& c) { c.Rs485 = true; }); });
}

} // namespace
} // namespace kavro
