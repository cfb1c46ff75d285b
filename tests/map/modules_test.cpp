#include "map/list_line.h"
#include "map/map_file.h"
#include "map/module_access.h"
#include "map/module_dispatch.h"
#include "support/test_session.h"
#include "terminal/test_folder.h"

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
        std::erase_if(Test.Log, [](const auto& entry) { return entry.ends_with(",n,8,1"); });
        return std::exchange(Test.Log, {});
    }

    ScriptedSession Test;
    Session& S = Test.Session;
};

TEST_F(ModuleAccessTest, HowModulesAreSpokenTo) {
    EXPECT_FALSE(ExchangeWithModule(S, 1, "$" + AddressText(S, 1) + "M", 250));
    EXPECT_EQ(Test.Time.GetTickCount(), 1000 + 250);
    for (const int index : {2, 3})
        EXPECT_FALSE(ExchangeWithModule(S, index, "$" + AddressText(S, index) + "M", 100));
    EXPECT_EQ(Sent(), (Lines{"COM1 19200 $0AME2", "COM1 9600 $00M", "COM1 115200 $00M"}));
    for (const int index : {-1, 256}) {
        S.ScanIndex = static_cast<std::int16_t>(index); // the bounds hold for this one too
        EXPECT_THROW(ModuleAddress(S, index), RuntimeFailure);
        EXPECT_THROW(ModuleBaudCode(S, index), RuntimeFailure);
        EXPECT_THROW(ModuleChecksum(S, index), RuntimeFailure);
    }
    EXPECT_EQ(ShownAddress(5), "5 (05H)");
}

TEST_F(ModuleAccessTest, ReadModuleConfigTakesGoodRepliesOnly) {
    using Values = std::array<std::int16_t, 4>; // range, baud code, checksum, format
    const Values before = {99, 99, 99, 99};
    const struct {
        const char *Model, *Reply;
        Values After;
        bool Fails = false;
    } cases[] = {{"8310  ", "!0A0E0640\r", {14, 3, 1, 0}},  {"8310  ", "!0A2A1042\r", {42, 7, 1, 2}},
                 {"8320  ", "!0A330903\r", {51, 6, 0, 3}},  {"8250  ", "!0A0b0343\r", {11, 0, 1, 99}},
                 {"8510  ", "!0A510644\r", {81, 3, 1, 99}}, {"8999  ", "!0A5100FF\r", {81, -3, 1, 99}},
                 {"8310  ", "?0A0E0640\r", before},         {"8310  ", "!0A0E064\r", before},
                 {"8310  ", "!0A0E06400\r", before},        {"8310  ", "!0A0E0640", before},
                 {"8310  ", "!0A2A0A42\r", before, true}, // "0A" is not decimal
                 {"8310  ", "!0A0X0640\r", before, true},   {"8310  ", "!0A0E06G0\r", before, true}};
    for (const auto& [model, reply, after, fails] : cases) {
        SCOPED_TRACE(reply);
        ModuleRecord& record = S.ModuleTable[4];
        record = {.Model = model, .DataFormat = 99, .BaudCode = 99, .InputRange = 99, .Checksum = 99};
        Test.Port().Queue = {{reply}};
        EXPECT_EQ(!FailureText([&] { ReadModuleConfig(S, 4); }).empty(), fails);
        EXPECT_EQ((Values{record.InputRange, record.BaudCode, record.Checksum, record.DataFormat}), after);
        EXPECT_EQ(Sent(), Lines{"COM1 9600 $002"});
    }
}

TEST_F(ModuleAccessTest, ReadModuleConfigReadsAlarms) {
    using Alarms = std::tuple<float, float, std::int16_t>; // low, high, mode
    const std::tuple<const char*, const char*, const char*, Alarms> cases[] = {
        {"!16-01.500\r", "!16+01.500\r", "!1620000\r", {-1.5F, 1.5F, 2}},
        {"", "!16+7\r", "!161FFFF\r", {9, 7, 1}},
        {"?16\r", "", "!162000\r", {9, 9, 9}}, // one character short
        {"!16+3\r", ">16+4\r", "!16100000\r", {3, 9, 9}},
        {"!16+1e300\r", "!16\r", "?1610000\r", {9, 0, 9}}};
    for (const auto& [low, high, state, alarms] : cases) {
        ModuleRecord& record = S.ModuleTable[2];
        record.LowAlarm = record.HighAlarm = record.AlarmMode = 9;
        Test.Port().Queue = {{"!16050742\r"}, {low}, {high}, {state}};
        ReadModuleConfig(S, 2);
        EXPECT_EQ(Alarms(record.LowAlarm, record.HighAlarm, record.AlarmMode), alarms);
        EXPECT_EQ(record.DataFormat, 2);
        EXPECT_EQ(Sent(), (Lines{"COM1 9600 $002", "COM1 9600 @00RL", "COM1 9600 @00RH", "COM1 9600 @00DI"}));
    }
}

TEST_F(ModuleAccessTest, ReadAnalogInput) {
    for (const auto& [model, command] : {std::pair{"8250  ", "#007"}, {"8210  ", "#00"}, {"8999  ", "#00"}}) {
        S.ModuleTable[4] = {.Model = model, .BaudCode = 3};
        EXPECT_EQ(ReadAnalogInput(S, 4, 7).Text, "*error*");
        EXPECT_EQ(Sent(), Lines{std::string("COM1 9600 ") + command});
    }
    // The full scale is that of the selected module (10 V), the format that of the module read (20 mA).
    S.ModuleTable[0].InputRange = 8;
    S.SelectedModule = 0;
    const std::tuple<std::int16_t, const char*, const char*, std::optional<double>> cases[] = {
        {0, ">+05.123\r", "5.1230", 5.123}, {3, ">-100.55\r", "-100.5500", -100.55},
        {1, ">+050.00\r", "5.0000", 5.0},   {1, ">-033.33\r", "-3.3330", -3.333},
        {2, ">7FFF\r", "10.0000", 10.0},    {2, ">8001\r", "-10.0000", -10.0},
        {4, ">+05.123\r", "", {}},          {2, ">4000\r", "5.0002", 16384 * 10.0 / 32767},
        {-1, ">+05.123\r", "", {}},         {0, ">none\r", "*error*", {}},
        {2, ">10000\r", "*error*", {}},     {2, ">+1.5\r", "*error*", {}},
        {0, "!+05.123\r", "*error*", {}},   {0, ">+05.123", "*error*", {}}};
    for (const auto& [format, reply, text, value] : cases) {
        SCOPED_TRACE(reply);
        S.ModuleTable[4] = {.Model = "8250  ", .DataFormat = format, .BaudCode = 3, .InputRange = 6};
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

TEST(ModuleDispatch, EveryModelAndOperation) {
    using enum ModuleDialog;
    const Lines digital = {"8410", "8420", "8430", "8440", "8450", "8470", "8480", "8490"};
    const std::string noDiagnostics = "Calibration: No diagnostics function provided for this module.";
    const std::string noNeed = "Calibration: This module doesn't need calibration!";
    using Messages = std::array<std::string, 3>; // of configuration, diagnostic, calibration
    using Dialogs = std::array<ModuleDialog, 3>;
    const std::tuple<Lines, std::int16_t, Dialogs, Messages> cases[] = {
        {digital, 64, {DioConfigForm, DioDiagForm, None}, {"", "", noNeed}},
        {{"8460"}, 64, {N46ConfigForm, N46DiagForm, None}, {"", "", noNeed}},
        {{"8210", "8220", "8240"}, 5, {MultiConfigForm, MultiDiagForm, AdCalibForm}, {}},
        {{"8310"}, 48, {DaConfigForm, DaDiagForm, DaCalibForm}, {}},
        {{"8320"}, 48, {DaConfigForm, N32DiagForm, DaCalibForm}, {}},
        {{"8230", "8250", "8260"}, 80, {AdConfigForm, AdDiagForm, AdCalibForm}, {}},
        {{"8510"}, 80, {CtrConfigForm, CtrDiagForm, None}, {}},
        {{"8510"}, 81, {CtrConfigForm, FreqDiagForm, None}, {}},
        {{"8510"}, 0, {CtrConfigForm, FreqDiagForm, None}, {}},
        {{"8610", "8620"}, 0, {N8610ConfigForm, None, None}, {"", noDiagnostics, noNeed}},
        {{"8999", ""}, 80, {None, None, None}, {}}};
    ScriptedSession test;
    test.Session.SelectedModule = 3;
    for (const auto& [models, range, dialogs, messages] : cases)
        for (const std::string& model : models)
            for (const std::size_t operation : {0U, 1U, 2U}) {
                SCOPED_TRACE(model + " " + std::to_string(operation));
                test.Session.ModuleTable[3] = {.Model = model + "  ", .InputRange = range};
                const Dispatch result = DispatchModule(test.Session, static_cast<Operation>(operation));
                EXPECT_EQ(result.Dialog, dialogs[operation]);
                const std::string message = std::string(result.Title) + ": " + result.Message;
                EXPECT_EQ(message, messages[operation].empty() ? ": " : messages[operation]);
            }
}

std::string MapText(const std::string& port, const std::string& lines) {
    const std::string dashes = std::string(75, '-') + "\n";
    return "COMPORT: " + port + "\n" + dashes + "Address     Model    BaudRate    Format    Remark\n" +
           lines + dashes;
}

// What the search of the demo line does not show.
TEST(ListLine, RareSettings) {
    const struct {
        std::int16_t Address;
        const char* Model;
        std::int16_t DataFormat, BaudCode, InputRange;
        const char* Line;
        std::int16_t Parity = 0, StopBits = 0, Interface = 0;
    } cases[] = {{100, "8220  ", 1, 0, 6, " 100(64H)   8220      1200        %        +/- 20mA        "},
                 {0, "8230  ", 3, 7, 0x24, "   0(00H)   8230      57600       Ohms     Pt, +/- 100C    "},
                 {1, "8260  ", 0, 3, 42, "   1(01H)   8260      9600        ohms     Cu, 0~60 ohms   "},
                 {1, "8260  ", 0, 3, 7, "   1(01H)   8260      9600                             "},
                 {8, "8310  ", 0, 5, 0x30, "   8(08H)   8310      38400       mA       0 to 20mA       "},
                 {8, "8320  ", 2, 4, 0x32, "   8(08H)   8320      19200       HEX      0 to 10V        "},
                 {8, "8320  ", 3, 4, 0x33, "   8(08H)   8320      19200       +/- 10V         "},
                 {20, "8620  ", 2, 3, 0, "  20(14H)   8620      9600       o,7,2     RS-422", 1, 1},
                 {20, "8620  ", 0, 3, 0, "  20(14H)   8620      9600       n,5,1     RS-422", 2},
                 {20, "8620  ", 1, 3, 0, "  20(14H)   8620      9600       e,6,1     RS-485", 3, 0, 1},
                 {24, "      ", 0, -3, 0, "  24(18H)             150                  Unknown Module"}};
    ScriptedSession test;
    for (const auto& row : cases) {
        test.Session.ModuleTable[1] = {.Address = row.Address,
                                       .Model = row.Model,
                                       .DataFormat = row.DataFormat,
                                       .BaudCode = row.BaudCode,
                                       .InputRange = row.InputRange,
                                       .ConverterInterface = row.Interface,
                                       .ConverterParity = row.Parity,
                                       .ConverterStopBits = row.StopBits};
        EXPECT_EQ(BuildListLine(test.Session, 1), row.Line);
    }
    for (const int index : {-1, 256})
        EXPECT_THROW(BuildListLine(test.Session, index), RuntimeFailure);
}

TEST(MapFile, SaveSettingsInOrderWhateverFails) {
    const std::string config = "/etc/COM.CFG 150\n1\nn,8,1\n9600\n";
    // Paths whose files cannot be replaced, the current port, what is done.
    const std::tuple<Lines, std::int16_t, Lines> cases[] = {
        {{}, 1, {"COM1 close", config, "admin.map " + MapText("COM1", "x\n")}},
        {{"/etc/COM.CFG"}, 1, {"COM1 close", "failed", "admin.map " + MapText("COM1", "x\n")}},
        {{"/etc/COM.CFG", "admin.map"}, 1, {"COM1 close", "failed", "failed"}},
        {{}, 0, {"admin.map " + MapText("COM0", "x\n")}}}; // no port to close, no setting to write
    for (const auto& [failing, port, steps] : cases) {
        ScriptedSession test;
        test.Session.ConfigFilePath = "/etc/COM.CFG";
        test.Session.Line.CurrentPort = port;
        test.Session.Line.ReplyTimeout = 150;
        EnableBaudCodes(test.Session, {3});
        test.Session.Device = {"x"};
        test.Session.ReplaceFile = [&](const std::string& path, const std::string& content) {
            const bool fails = std::ranges::count(failing, path) != 0;
            test.Log.push_back(fails ? "failed" : path + " " + content);
            if (fails)
                throw RuntimeFailure(path + " full.");
        };
        std::string told;
        for (const std::string& path : failing)
            told += "\n\n" + path + " full.";
        EXPECT_EQ(
            SaveSettings(test.Session),
            told.empty() ? "" : "Not everything could be saved. These files are as they were before:" + told);
        EXPECT_EQ(test.Log, steps);
    }
}

// An empty map does not replace one with modules that is not kept beside it.
TEST(MapFile, KeepsTheLastMapWithModules) {
    const TestFolder folder;
    const std::string map = folder.Path("admin.map"), old = map + ".old";
    const std::string full = MapText("COM12", "x\n"), empty = MapText("COM1", "");
    using Saved = std::map<std::string, std::string>;
    const std::tuple<std::string, Lines, std::string, Saved> cases[] = {
        // The map before, the list, a path whose file cannot be replaced, what is saved.
        {full, {}, "", {{map, empty}, {old, full}}},
        {full, {}, old, {}},
        {full, {"x"}, "", {{map, MapText("COM1", "x\n")}}},
        {MapText("COM12", ""), {}, "", {{map, empty}}},
        {"", {}, "", {{map, empty}}}};
    for (const auto& [before, list, failing, saved] : cases) {
        ScriptedSession test;
        folder.Write("admin.map", before);
        test.Session.MapFilePath = map;
        test.Session.Device = list;
        test.Session.ReplaceFile = [&](const std::string& path, const std::string& content) {
            if (path == failing)
                throw RuntimeFailure(path);
            test.Files[path] = content;
        };
        EXPECT_TRUE(SaveSettings(test.Session).ends_with(failing.empty() ? "" : "\n\n" + failing));
        test.Files.erase("");
        EXPECT_EQ(test.Files, saved);
    }
}

} // namespace
} // namespace kavro
