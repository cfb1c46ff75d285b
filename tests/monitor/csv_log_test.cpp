#include "monitor/csv_log.h"

#include "support/test_session.h"
#include "terminal/test_folder.h"

namespace kavro {
namespace {

TEST(CsvLog, ExactBytes) {
    EXPECT_EQ(IsoTime({951'782'400'001, -570}), "2000-02-28T14:30:00.001-09:30");
    ScriptedSession test;
    test.Session.ModuleTable[3] = {.Address = 255, .Model = "8\x01,\"  "};
    const std::vector<ChannelValue> values = {{"0", "-1.5000", -1.5, "V", ValueState::Ok},
                                              {"1", "", {}, "V", ValueState::Disabled},
                                              {"IN", "", {}, "hex", ValueState::NoReply}};
    const std::string lines = CsvLines(test.Session, 3, values, {1'928'275'506'789, 60});
    EXPECT_EQ(lines, "2031-02-08T01:05:06.789+01:00,255,\"8?,\"\"\",0,-1.5000,V,ok\n"
                     "2031-02-08T01:05:06.789+01:00,255,\"8?,\"\"\",IN,,hex,no reply\n");
    const TestFolder folder;
    folder.Write("log.csv", std::string(1000, 'x'));
    CsvLog log(OpenAppendFile);
    log.Open(folder.Path("log.csv"));
    log.Write(lines);
    EXPECT_EQ(folder.Read("log.csv"), CsvHeader + lines) << "while the file is still open";
    for (const auto& [path, failure] : {std::pair{folder.Path("none/log.csv"), "cannot be opened: No such"},
                                        {"/dev/full", "cannot be written: No space left on device"}}) {
        EXPECT_TRUE(Contains(FailureText([&] { log.Open(path); }), failure));
        EXPECT_FALSE(log.IsOpen());
    }
}

TEST(CsvLog, TagsAreTheLastColumnWhileALineFileIsOpen) {
    ScriptedSession test;
    Select(test.Session, {.Model = "8320  "});
    const std::vector<ChannelValue> values = {{"B", "1.000", 1, "V", ValueState::Ok},
                                              {"C", "2.000", 2, "V", ValueState::Ok},
                                              {"IN", "7F", 127, WordUnit, ValueState::Ok}};
    test.Session.Tags.Modules[1] = {"8320", {"Valves", ""}, {{1, {"a,b", ""}}, {3, {"other", ""}}}};
    EXPECT_EQ(CsvHeading(test.Session), CsvHeader);
    const auto lines = [&] { return CsvHeading(test.Session) + CsvLines(test.Session, 0, values, {}); };
    EXPECT_FALSE(Contains(lines(), "Valves"));
    test.Session.Tags.Path = "line.kavro.json";
    const std::string row = "1970-01-01T00:00:00.000+00:00,1,8320,";
    EXPECT_EQ(lines(), "time,address,model,channel,value,unit,state,tag\n" + row + "B,1.000,V,ok,\"a,b\"\n" +
                           row + "C,2.000,V,ok,Valves\n" + row + "IN,7F,hex,ok,Valves\n");
    test.Session.ModuleTable[0].Model = "8310  ";
    EXPECT_TRUE(lines().ends_with(",IN,7F,hex,ok,\n")) << "another model than that of the file";
}

} // namespace
} // namespace kavro
