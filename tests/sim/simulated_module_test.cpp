#include "link/runtime_failure.h"
#include "sim/alarm_input_module.h"
#include "sim/analog_input_module.h"
#include "sim/converter_module.h"
#include "sim/counter_module.h"
#include "sim/demo_line.h"
#include "sim/digital_module.h"
#include "sim/module_factory.h"
#include "sim/readings.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace kavro {
namespace {

constexpr const char* Silence = "(silence)";

std::string Reply(SimulatedModule& module, std::string_view line, int baud = 9600) {
    return module.Hear(line, baud, 0).value_or(Silence);
}

TEST(SimulatedModule, AnswersEachCommandOfItsFamily) {
    const struct {
        const char *Model, *Command, *Reply;
    } cases[] = {
        {"8250", "$052", "!05080600"},
        {"8250", "$05M", "!058250"},
        {"8250", "$05F", "!05A1.0"},
        {"8250", "$056", "!05FF"},
        {"8250", "#050", ">-03.157"},
        {"8250", "#058", "?05"},
        {"8230", "$056", "!0507"},
        {"8230", "#053", "?05"},
        {"8250", "#05", "?05"},
        {"8250", "$059", "?05"},
        {"8250", "@05RL", "?05"},
        {"8210", "#05", ">-0.7893"},
        {"8210", "@05RL", "!05-2.0000"},
        {"8210", "@05RH", "!05+2.0000"},
        {"8220", "@05RL", "!05-16.000"},
        {"8210", "@05DI", "!0500000"},
        {"8210", "$053", "?05"},
        {"8240", "$053", "!05+0123"},
        {"8240", "$055", "!0505"},
        {"8310", "$052", "!05300600"},
        {"8310", "~05CR", "?05"},
        {"8320", "~05CR", "!0500"},
        {"8490", "$052", "!05400600"},
        {"8490", "~05CR", "!0500"},
        {"8510", "$052", "!05500600"},
        {"8510", "$05B", "!050"},
        {"8510", "$05A", "!052"},
        {"8510", "$055", "!0500"},
        {"8510", "$053", "!05FFFFFFFF"},
        {"8510", "@05G", "!05FFFFFFFF"},
        {"8510", "$054", "!050"},
        {"8510", "$050H", "!050010"},
        {"8510", "$050L", "!050010"},
        {"8510", "$051H", "!0524"},
        {"8510", "$051L", "!0508"},
        {"8510", "@05DI", "!0500"},
        {"8510", "@05RP", "!050000000000000000"},
        {"8510", "@05RA", "!05FFFFFFFFFFFFFFFF"},
        {"8610", "$052", "!0500668003"},
        {"8999", "$052", "!05000600"},
        {"8999", "$05M", "!058999"},
        {"8999", "#05", "?05"},
        {"8250", "$062", Silence},
        {"8250", "$05", "?05"},
        {"8250", "$0", Silence},
        {"8250", "", Silence},
        {"8250", "!052", Silence},
        {"8250", "$052\n", "?05"},
    };
    for (const auto& [model, command, reply] : cases)
        EXPECT_EQ(Reply(*MakeModule(model, 5), command), reply) << model << " " << command;
}

TEST(SimulatedModule, ReportsWhatItIsSetTo) {
    AlarmInputModule alarm(FactorySettings("8240"));
    alarm.AlarmMode = 2;
    alarm.DigitalOutputs = 0x0A;
    alarm.DigitalInputs = 0x3;
    alarm.SignedSetting = -42;
    EXPECT_EQ(Reply(alarm, "@01DI"), "!0120A03");
    EXPECT_EQ(Reply(alarm, "$013"), "!01-0042");

    DigitalModule digital(FactorySettings("8410"));
    digital.OutputInverted = true;
    EXPECT_EQ(Reply(digital, "~01CR"), "!0110") << "output polarity first";

    CounterModule counter(FactorySettings("8510"));
    counter.Counters[0] = {.Started = true, .MaximumCount = 100000, .InitialCount = 1};
    counter.Counters[1] = {.MaximumCount = 255, .InitialCount = 2, .AlarmEnabled = true, .AlarmLimit = 16};
    counter.LongGateTime = true;
    EXPECT_EQ(Reply(counter, "$012"), "!01500604");
    EXPECT_EQ(Reply(counter, "$015"), "!0110");
    EXPECT_EQ(Reply(counter, "$013"), "!01000186A0");
    EXPECT_EQ(Reply(counter, "@01G"), "!01000000FF");
    EXPECT_EQ(Reply(counter, "@01DI"), "!0101");
    EXPECT_EQ(Reply(counter, "@01RP"), "!010000000100000002");
    EXPECT_EQ(Reply(counter, "@01RA"), "!01FFFFFFFF00000010");

    ConverterModule converter(FactorySettings("8620"));
    converter.SecondBaud = 57600;
    converter.Rs485 = false;
    converter.Setting13 = converter.Setting8 = true;
    converter.Parity = 3;
    converter.StopBits = 1;
    EXPECT_EQ(Reply(converter, "$012"), "!0100A6211F");
}

TEST(SimulatedModule, ReportsItsBaudRateAndHearsNoOther) {
    const std::map<int, std::string> codes = {{1200, "03"},  {2400, "04"},  {4800, "05"},   {9600, "06"},
                                              {19200, "07"}, {38400, "08"}, {115200, "09"}, {57600, "0A"}};
    for (const auto& [baud, code] : codes)
        for (const auto& [spoken, unused] : codes)
            EXPECT_EQ(Reply(*MakeModule("8250", 1, baud), "$012", spoken),
                      spoken == baud ? "!0108" + code + "00" : Silence);
}

TEST(SimulatedModule, HearsAndSendsOnlyGoodChecksums) {
    const auto module = MakeModule("8250", 1, 9600, true);
    EXPECT_EQ(Reply(*module, "$012B7"), "!01080640B4");
    for (const char* line : {"$012", "$012B8", "$012b7", "$012B7B7", "", "7"})
        EXPECT_EQ(Reply(*module, line), Silence) << line;
    EXPECT_EQ(module->Hear("$012B7", 9600, 0, {.WrongChecksum = true}), "!01080640B5");
}

TEST(SimulatedModule, InInitialisationAnswersAtZeroButReportsItself) {
    ModuleSettings settings = FactorySettings("8250");
    settings.Address = 0x16;
    settings.Baud = 19200;
    settings.Checksum = settings.Initialisation = true;
    const auto module = MakeModule(settings);
    EXPECT_EQ(Reply(*module, "$002"), "!16080740");
    EXPECT_EQ(Reply(*module, "$00M"), "!168250");
    EXPECT_EQ(Reply(*module, "$009"), "?16");
    EXPECT_EQ(Reply(*module, "$162"), Silence);
    EXPECT_EQ(Reply(*module, "$002", 19200), Silence);
}

TEST(SimulatedModule, RefusesSettingsNoModuleHas) {
    EXPECT_THROW(MakeModule("8250", 256), RuntimeFailure);
    EXPECT_THROW(MakeModule("8250", -1), RuntimeFailure);
    EXPECT_THROW(MakeModule("8250", 1, 14400), RuntimeFailure);
}

TEST(Readings, AreWrittenInTheirRangeAndFormat) {
    const struct {
        double Value;
        int Code, Format;
        const char* Text;
    } cases[] = {
        {5.1234, 0x08, 0, "+05.123"}, {-0.5, 0x08, 0, "-00.500"},  {1.25, 0x05, 0, "+1.2500"},
        {12.34, 0x0F, 0, "+0012.3"},  {-99.5, 0x20, 0, "-099.50"}, {7, 0x50, 0, "+00007"},
        {-5, 0x08, 1, "-050.00"},     {10, 0x08, 2, "7FFF"},       {-10, 0x08, 2, "8001"},
        {100, 0x20, 3, "+138.50"},    {42, 0x2A, 3, "+042.00"},
    };
    for (const auto& [value, code, format, text] : cases)
        EXPECT_EQ(ReadingText(value, ShapeOf(code), format), text);
}

TEST(Readings, MoveWithinTheirRangeAndDifferByChannel) {
    const auto module = MakeModule("8250", 1);
    std::set<std::string> readings;
    for (std::int64_t second = 0; second < 40; second += 10)
        for (const char* command : {"#010", "#011", "#017"})
            readings.insert(module->Hear(command, 9600, second * 1'000'000).value());
    EXPECT_EQ(readings.size(), 12U);
    for (const std::string& reading : readings)
        EXPECT_LE(std::abs(std::stod(reading.substr(1))), 10) << reading;
}

TEST(AnalogInputModule, RefusesADisabledChannel) {
    AnalogInputModule module(FactorySettings("8250"));
    module.EnabledMask = 0xFB;
    EXPECT_EQ(Reply(module, "$016"), "!01FB");
    EXPECT_EQ(Reply(module, "#012"), "?01");
    EXPECT_EQ(Reply(module, "#013").front(), '>');
}

TEST(DemoLine, HasEveryModelAtFourRatesAndDistinctAddresses) {
    const SimulatedLine line = DemoLine();
    std::set<std::string> models;
    std::set<int> addresses, bauds;
    int early = 0, withChecksum = 0, initialising = 0;
    for (const auto& module : line.Modules()) {
        const ModuleSettings& settings = module->Settings;
        models.insert(settings.Model);
        addresses.insert(settings.Address);
        bauds.insert(settings.Baud);
        early += settings.Baud == 9600 && settings.Address >= 1 && settings.Address <= 24;
        withChecksum += settings.Checksum && !settings.Initialisation;
        initialising += settings.Initialisation && settings.Address <= 24;
    }
    EXPECT_EQ(models.size(), 21U);
    EXPECT_TRUE(models.contains("8999"));
    EXPECT_EQ(addresses.size(), line.Modules().size());
    EXPECT_EQ(bauds, (std::set{9600, 19200, 38400, 115200}));
    EXPECT_GE(early, 12);
    EXPECT_GE(withChecksum, 3);
    EXPECT_EQ(initialising, 1);
}

} // namespace
} // namespace kavro
