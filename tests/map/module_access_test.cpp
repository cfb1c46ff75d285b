#include "map/module_access.h"
#include "support/failure_text.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

#include <functional>

namespace kavro {
namespace {

/// Entry 1 is an 8250 at address 10, 19200 baud, with checksum; entry 2 stands in its initialisation state.
class ModuleAccessTest : public testing::Test {
protected:
    ModuleAccessTest() {
        S.ScanIndex = 2;
        S.ModuleTable[1] = {.Address = 10, .Model = "8250  ", .BaudCode = 4, .Checksum = 1};
        S.ModuleTable[2] = {.Address = 22, .Model = "8210  ", .BaudCode = 6, .Checksum = 1};
        S.ModuleTable[3] = {.Address = 0, .Model = "8410  ", .BaudCode = 6, .Checksum = 1};
    }

    /// The commands sent since the last call, with their rates.
    Lines Sent() {
        std::erase_if(Test.Log,
                      [](const std::string& entry) { return entry.find(",n,8,1") != std::string::npos; });
        return std::exchange(Test.Log, {});
    }

    ScriptedSession Test;
    Session& S = Test.Session;
};

TEST_F(ModuleAccessTest, HowModulesAreSpokenTo) {
    const struct {
        int Index;
        std::int16_t Address, BaudCode, Checksum;
        const char* Text;
    } cases[] = {{1, 10, 4, 1, "0A"}, {2, 0, 3, 0, "00"}, {3, 0, 6, 0, "00"}};
    for (const auto& [index, address, baudCode, checksum, text] : cases) {
        EXPECT_EQ(ModuleAddress(S, index), address);
        EXPECT_EQ(ModuleBaudCode(S, index), baudCode);
        EXPECT_EQ(ModuleChecksum(S, index), checksum);
        EXPECT_EQ(AddressText(S, index), text);
    }
    for (const int index : {-1, 256, 32767}) {
        S.ScanIndex = static_cast<std::int16_t>(index); // the bounds hold for this one too
        EXPECT_THROW(ModuleAddress(S, index), RuntimeFailure);
        EXPECT_THROW(ModuleBaudCode(S, index), RuntimeFailure);
        EXPECT_THROW(ModuleChecksum(S, index), RuntimeFailure);
    }
    EXPECT_EQ(ShownAddress(5), "5 (05H)");
}

TEST_F(ModuleAccessTest, ReadModuleConfigTakesGoodRepliesOnly) {
    const struct {
        const char *Model = "", *Reply = "";
        std::int16_t InputRange = 99, BaudCode = 99, Checksum = 99, DataFormat = 99;
        bool Fails = false; // "0A" fails as it is not decimal
    } cases[] = {
        {"8310  ", "!0A0E0640\r", 14, 3, 1, 0},
        {"8310  ", "!0A2A1042\r", 42, 7, 1, 2},
        {"8320  ", "!0A330903\r", 51, 6, 0, 3},
        {"8250  ", "!0A0b0343\r", 11, 0, 1},
        {"8510  ", "!0A510644\r", 81, 3, 1},
        {"8999  ", "!0A5100FF\r", 81, -3, 1},
        {"8310  ", "?0A0E0640\r"},
        {"8310  ", "!0A0E064\r"},
        {"8310  ", "!0A0E06400\r"},
        {"8310  ", "!0A0E0640"},
        {"8310  ", ""},
        {"8310  ", "!0A2A0A42\r", 99, 99, 99, 99, true},
        {"8310  ", "!0A0X0640\r", 99, 99, 99, 99, true},
        {"8310  ", "!0A0E06G0\r", 99, 99, 99, 99, true},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.Reply);
        ModuleRecord& record = S.ModuleTable[4];
        record = {.Address = 0,
                  .Model = row.Model,
                  .DataFormat = 99,
                  .BaudCode = 99,
                  .InputRange = 99,
                  .Checksum = 99};
        Test.Port().Queue = {{row.Reply}};
        EXPECT_EQ(!FailureText([&] { ReadModuleConfig(S, 4); }).empty(), row.Fails);
        EXPECT_EQ(std::tuple(record.InputRange, record.BaudCode, record.Checksum, record.DataFormat),
                  std::tuple(row.InputRange, row.BaudCode, row.Checksum, row.DataFormat));
        EXPECT_EQ(Sent(), Lines{"COM1 9600 $002"});
    }
}

TEST_F(ModuleAccessTest, ReadModuleConfigReadsAlarms) {
    const struct {
        const char *Low, *High, *State;
        float LowAlarm, HighAlarm;
        std::int16_t AlarmMode;
    } cases[] = {{"!16-01.500\r", "!16+01.500\r", "!1620000\r", -1.5F, 1.5F, 2},
                 {"", "!16+7\r", "!161FFFF\r", 9, 7, 1},
                 {"?16\r", "", "!162000\r", 9, 9, 9}, // one character short
                 {"!16+3\r", ">16+4\r", "!16100000\r", 3, 9, 9},
                 {"!16+1e300\r", "!16\r", "?1610000\r", 9, 0, 9}};
    for (const auto& [low, high, state, lowAlarm, highAlarm, alarmMode] : cases) {
        ModuleRecord& record = S.ModuleTable[2];
        record.LowAlarm = record.HighAlarm = record.AlarmMode = 9;
        Test.Port().Queue = {{"!16050742\r"}, {low}, {high}, {state}};
        ReadModuleConfig(S, 2);
        EXPECT_EQ(std::tuple(record.LowAlarm, record.HighAlarm, record.AlarmMode),
                  std::tuple(lowAlarm, highAlarm, alarmMode));
        EXPECT_EQ(record.DataFormat, 2);
        EXPECT_EQ(Sent(), (Lines{"COM1 9600 $002", "COM1 9600 @00RL", "COM1 9600 @00RH", "COM1 9600 @00DI"}));
    }
}

TEST_F(ModuleAccessTest, ReadAnalogInputCommands) {
    const struct {
        const char* Model;
        std::int16_t Address, Checksum;
        int Channel;
        const char* Command;
    } cases[] = {{"8250  ", 3, 0, 1, "#031"},
                 {"8230  ", 3, 0, 2, "#032"},
                 {"8260  ", 171, 1, 7, "#AB7DD"},
                 {"8210  ", 3, 0, 1, "#03"},
                 {"8999  ", 3, 0, 1, "#03"}};
    for (const auto& [model, address, checksum, channel, command] : cases) {
        S.ModuleTable[4] = {.Address = address, .Model = model, .BaudCode = 3, .Checksum = checksum};
        EXPECT_EQ(ReadAnalogInput(S, 4, channel).Text, "*error*");
        EXPECT_EQ(Sent(), Lines{std::string("COM1 9600 ") + command});
    }
}

TEST_F(ModuleAccessTest, ReadAnalogInputFormats) {
    // The full scale is that of the selected module (10 V), the format that of the module read (20 mA).
    S.ModuleTable[0].InputRange = 8;
    S.SelectedModule = 0;
    const struct {
        std::int16_t Format = 0;
        const char *Reply = "", *Text = "";
        std::optional<double> Value;
    } cases[] = {{0, ">+05.123\r", "5.1230", 5.123}, {3, ">-100.55\r", "-100.5500", -100.55},
                 {1, ">+050.00\r", "5.0000", 5.0},   {1, ">-033.33\r", "-3.3330", -3.333},
                 {2, ">7FFF\r", "10.0000", 10.0},    {2, ">8001\r", "-10.0000", -10.0},
                 {2, ">0000\r", "0.0000", 0.0},      {2, ">4000\r", "5.0002", 16384 * 10.0 / 32767},
                 {4, ">+05.123\r", "", {}},          {-1, ">+05.123\r", "", {}},
                 {0, ">\r", "*error*", {}},          {0, ">none\r", "*error*", {}},
                 {2, ">10000\r", "*error*", {}},     {2, ">+1.5\r", "*error*", {}},
                 {0, "?03\r", "*error*", {}},        {0, "!+05.123\r", "*error*", {}},
                 {0, ">+05.123", "*error*", {}},     {0, "", "*error*", {}}};
    for (const auto& [format, reply, text, value] : cases) {
        SCOPED_TRACE(reply);
        S.ModuleTable[4] = {
            .Address = 3, .Model = "8250  ", .DataFormat = format, .BaudCode = 3, .InputRange = 6};
        Test.Port().Queue = {{reply}};
        const AnalogReading reading = ReadAnalogInput(S, 4, 0);
        EXPECT_EQ(reading.Text, text);
        ASSERT_EQ(reading.Value.has_value(), value.has_value());
        EXPECT_DOUBLE_EQ(reading.Value.value_or(0), value.value_or(0));
    }
    S.SelectedModule = -1;
    Test.Port().Queue = {{">+05.123\r"}, {">+050.00\r"}};
    S.ModuleTable[4].DataFormat = 0;
    EXPECT_EQ(ReadAnalogInput(S, 4, 0).Text, "5.1230") << "needs no full scale";
    S.ModuleTable[4].DataFormat = 1;
    EXPECT_THROW(ReadAnalogInput(S, 4, 0), RuntimeFailure);
}

TEST_F(ModuleAccessTest, ExchangesUseTheModulesOwnRateAndChecksum) {
    EXPECT_FALSE(ExchangeWithModule(S, 1, "$0AM", 250));
    EXPECT_EQ(Test.Time.GetTickCount(), 1000 + 250);
    EXPECT_FALSE(ExchangeWithModule(S, 3, "$00M", 100));
    EXPECT_EQ(Sent(), (Lines{"COM1 19200 $0AME2", "COM1 115200 $00M"}));
}

} // namespace
} // namespace kavro
