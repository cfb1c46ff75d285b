#include "map/map_file.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

constexpr const char* Dashes =
    "---------------------------------------------------------------------------\n";

std::string MapText(const std::string& port, const std::string& lines) {
    return "COMPORT: " + port + "\n" + Dashes + "Address     Model    BaudRate    Format    Remark\n" +
           lines + Dashes;
}

TEST(MapFile, HoldsTheListAsShown) {
    ScriptedSession test;
    test.Session.Line.CurrentPort = 2;
    WriteMapFile(test.Session, "line.map");
    test.Session.Device = {"   5(05H)   8410", "* 22(16H)   8250   "};
    WriteMapFile(test.Session, "/some/where.txt");
    EXPECT_EQ(test.Files,
              (std::map<std::string, std::string>{
                  {"line.map", MapText("COM2", "")},
                  {"/some/where.txt", MapText("COM2", "   5(05H)   8410\n* 22(16H)   8250   \n")}}));
}

TEST(MapFile, SaveSettingsInOrderWhateverFails) {
    const std::string config = "150\n1\nn,8,1\n9600\n";
    const struct {
        const char* Failing; // a path whose file cannot be replaced
        std::int16_t Port;
        Lines Steps;
    } cases[] = {
        {"", 1, {"COM1 close", "/etc/COM.CFG " + config, "admin.map " + MapText("COM1", "x\n")}},
        {"/etc/COM.CFG", 1, {"COM1 close", "/etc/COM.CFG failed", "admin.map " + MapText("COM1", "x\n")}},
        {"admin.map", 1, {"COM1 close", "/etc/COM.CFG " + config, "admin.map failed"}},
        {"", 0, {"admin.map " + MapText("COM0", "x\n")}}, // there is no port to close and no setting to write
    };
    for (const auto& [failing, port, steps] : cases) {
        ScriptedSession test;
        test.Session.ConfigFilePath = "/etc/COM.CFG";
        test.Session.Line.CurrentPort = port;
        test.Session.Line.ReplyTimeout = 150;
        EnableBaudCodes(test.Session, {3});
        test.Session.Device = {"x"};
        test.Session.ReplaceFile = [&](const std::string& path, const std::string& content) {
            test.Log.push_back(path + " " + (path == failing ? "failed" : content));
            if (path == failing)
                throw RuntimeFailure("The disk is full.");
        };
        SaveSettings(test.Session);
        EXPECT_EQ(test.Log, steps);
    }
}

} // namespace
} // namespace kavro
