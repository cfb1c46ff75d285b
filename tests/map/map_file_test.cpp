#include "map/list_line.h"
#include "map/map_file.h"
#include "support/test_session.h"
#include "terminal/test_folder.h"

namespace kavro {
namespace {

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
        EXPECT_EQ(SaveSettings(test.Session),
                  told.empty() ? ""
                               : "Not everything could be saved. The old files are as they were." + told);
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
