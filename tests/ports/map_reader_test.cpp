#include "ports/map_reader.h"

#include "map/map_file.h"
#include "map/search.h"
#include "support/test_session.h"
#include "terminal/test_folder.h"

namespace kavro {
namespace {

const std::string Dashes = "---\n";
const std::string Heading = "Address     Model    BaudRate    Format    Remark\n";
const std::string ModuleLine = "   5(05H)   8250      9600        V        +/- 10V\n";
const std::string Star = "*255(FFH)   8310      600         %        4 to 20mA      ";

class MapReader : public testing::Test {
protected:
    ModuleMap Read(const std::string& content) { return ReadMapFile(Folder.Write("map", content)); }

    TestFolder Folder;
};

TEST_F(MapReader, TakesASavedMapAsItWasShown) {
    SimulatedSession test(DemoLine());
    EnableBaudCodes(test.Session, {3, 4, 5, 6});
    test.Session.SearchHighAddress = 255;
    NetworkSearch(test.Session, {}).Run();
    const auto device = test.Session.Device;
    WriteMapFile(test.Session, "map");
    for (const std::string lineEnd : {"\n", "\r\n"}) {
        std::string text = test.Files["map"];
        for (auto at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + lineEnd.size()))
            text.replace(at, 1, lineEnd);
        TakeOver(test.Session, Read(text));
        EXPECT_EQ(test.Session.Device, device);
        EXPECT_EQ(std::tuple(test.Session.ScanIndex, test.Session.ModuleTable[18].BaudCode),
                  std::tuple(18, 4));
    }
}

TEST_F(MapReader, ReadsWhatIsAmiss) {
    const ModuleMap text = Read("of 3 May\n" + Heading + "\n" + Star + "   incomplete   no answer\r\n" +
                                "   5(05H)   8250      150   mine\n   6(06H)   8520      57600   no answer");
    EXPECT_EQ(std::tuple(text.Count, text.ScanIndex, text.ChecksumsKnown), std::tuple(3, 0, false));
    EXPECT_EQ(text.Table[0], (ModuleRecord{.Address = 255,
                                           .Model = "8310  ",
                                           .DataFormat = 1,
                                           .BaudCode = -1,
                                           .InputRange = 0x31,
                                           .Complete = false,
                                           .Answers = false}));
    EXPECT_EQ(text.Table[1].BaudCode, -3);
    const ModuleMap json = Read(R"( {"modules": [{"address": 1, "baudCode": 3, "answers": false},
                                    {"address": 1, "baudCode": 7, "complete": false}]})");
    EXPECT_TRUE(json.ChecksumsKnown);
    EXPECT_EQ(std::pair(json.Table[0].Answers, json.Table[0].Complete), std::pair(false, true));
    EXPECT_EQ(std::pair(json.Table[1].Answers, json.Table[1].Complete), std::pair(true, false));
}

TEST_F(MapReader, TakesALineFileWithItsTags) {
    const std::string text = R"({"format": "kavro-line", "version": 1, "modules": [
        {"address": 5, "model": "8250", "tag": "TT-5", "settings": {"baud": 19200, "checksum": true}}]})";
    for (const char* name : {"map", "line.kavro.json"}) {
        const std::string path = Folder.Write(name, text);
        SimulatedSession test;
        std::string saved;
        test.Session.SavePreferences = [&](const Preferences& preferences) { saved = preferences.LineFile; };
        TakeOver(test.Session, ReadMapFile(path));
        EXPECT_EQ(std::tuple(test.Session.ModuleTable[0].BaudCode, test.Session.ModuleTable[0].Checksum),
                  std::tuple(4, 1));
        EXPECT_EQ(TagsOf(test.Session, 0)->Module.Tag, "TT-5");
        EXPECT_EQ(saved, path);
        Folder.Write(name, text.substr(0, text.size() - 4));
        EXPECT_TRUE(Contains(FailureText([&] { ReadMapFile(path); }), "cannot be used: line 2"));
    }
}

TEST_F(MapReader, SaysWhatIsWrong) {
    std::string crowd = Heading;
    for (int i = 0; i < 257; ++i)
        crowd += ModuleLine;
    const std::pair<std::string, const char*> cases[] = {
        {"\n", "it is empty"},
        {"{", "not JSON"},
        {"{}", "modules must be"},
        {R"({"modules": [{"address": 1, "baudCode": 3}, {}]})", "modules[1].address"},
        {R"({"modules": [{"address": 1, "baudCode": 3, "baud": 1200}]})", "modules[0].baud must be 9600"},
        {R"({"modules": [{"address": 1, "baudCode": 3, "checksum": 1}]})", "modules[0].checksum"},
        {R"({"modules": [{"address": 1, "baudCode": 3, "answers": "no"}]})", "modules[0].answers"},
        {ModuleLine, "neither JSON nor a list"},
        {std::string("\x7F"
                     "ELF\0\x01",
                     6),
         "neither JSON nor a list"},
        {Heading + ModuleLine + "   5(06H)   8250      9600\n",
         "line 3 is no line of a module; such a line is \"   5("},
        {Heading + " 256(100H)  8250      9600\n", "line 2 is no line"},
        {Heading + "   5(05H)   8250      9601\n", "line 2 is no line"},
        {Heading + "   5(05H)   82\x01"
                   "0      9600\n",
         "line 2 is no line"},
        {Heading + "+  5(05H)   8250      9600\n", "line 2 is no line"},
        {Heading + Star + "\n" + Star, "line 3 begins with \"*\" as"},
        {crowd, "line 258 is one module too many"},
        {Dashes + Heading + ModuleLine, "its end is missing"},
        {Dashes + Heading + ModuleLine + Dashes + "\n" + ModuleLine, "line 6 stands behind the dashes"},
        {std::string(1'000'001, ' '), "larger than"}};
    for (const auto& [content, piece] : cases)
        EXPECT_TRUE(Contains(FailureText([&, &text = content] { Read(text); }), piece));
    for (const std::string& path : {Folder.Path(), Folder.Path("none")})
        EXPECT_TRUE(Contains(FailureText([&] { ReadMapFile(path); }), "\"" + path + "\" cannot be used"));
}

} // namespace
} // namespace kavro
