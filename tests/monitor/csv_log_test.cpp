#include "monitor/csv_log.h"

#include "monitor/log_file.h"
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
    log.Write(lines, {});
    EXPECT_EQ(folder.Read("log.csv"), CsvHeader + lines) << "while the file is still open";
    for (const auto& wrong : {std::pair{folder.Path("none/log.csv"), "cannot be opened: No such"},
                              {"/dev/full", "cannot be written: No space left on device"}}) {
        EXPECT_TRUE(Contains(FailureText([&] { log.Open(wrong.first); }), wrong.second));
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

constexpr std::int64_t Hour = 3'600'000;
constexpr std::int64_t Midnight = 1'927'926'000'000; // 2031-02-04T00:00+01:00

TEST(CsvLog, APeriodHasAFileOfItsOwn) {
    const struct {
        const char* Path = nullptr;
        NewLogFile NewFile = NewLogFile::Never;
        WallTime Time;
        const char* Expected = nullptr;
    } rows[] = {
        {"log.csv", NewLogFile::Never, {Midnight, 60}, "log.csv"},
        {"log.csv", NewLogFile::EachDay, {Midnight, 60}, "log-2031-02-04.csv"},
        {"log.csv", NewLogFile::EachDay, {Midnight - 1, 60}, "log-2031-02-03.csv"},
        {"a.b/log", NewLogFile::EachHour, {Midnight, 60}, "a.b/log-2031-02-04T00"},
        {"a/.csv", NewLogFile::EachHour, {Midnight, -570}, "a/.csv-2031-02-03T13"},
        // The hour that comes twice when summer time ends.
        {"log.csv", NewLogFile::EachHour, {Midnight + 2 * Hour, 60}, "log-2031-02-04T02.csv"},
        {"log.csv", NewLogFile::EachHour, {Midnight + Hour, 120}, "log-2031-02-04T02.csv"},
        // A file of such a log is chosen.
        {"log-2031-02-03T23.csv", NewLogFile::EachDay, {Midnight, 60}, "log-2031-02-04.csv"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(PathOfPeriod(row.Path, row.NewFile, row.Time), row.Expected);
}

TEST(CsvLog, WhatIsThereIsGoneOnWith) {
    const std::string heading = "time,value\n", far(70000, 'x');
    const struct {
        std::string Before, First, Second; // content of the files log.csv and log-2.csv
    } rows[] = {
        {"", "time,value\n1,a\n", ""},
        {"time,va", "time,value\n1,a\n", ""},
        {"time,value\n0,b\n", "time,value\n0,b\n1,a\n", ""},
        {"time,value\n0,b\n0,c", "time,value\n0,b\n1,a\n", ""},
        {"time,value,tag\n0,b,c\n", "time,value,tag\n0,b,c\n", "time,value\n1,a\n"},
        {"Dear all", "Dear all", "time,value\n1,a\n"},
        {"time,value\n" + far, "time,value\n" + far, "time,value\n1,a\n"},
    };
    for (const auto& row : rows) {
        const TestFolder folder;
        if (!row.Before.empty())
            folder.Write("log.csv", row.Before);
        const ContinuedFile next = ContinueFile(OpenAppendFile, folder.Path("log.csv"), heading);
        ASSERT_TRUE(next.File);
        EXPECT_FALSE(WriteLines(*next.File, "1,a\n"));
        EXPECT_EQ(folder.Read("log.csv"), row.First);
        EXPECT_EQ(folder.Read("log-2.csv"), row.Second);
        EXPECT_EQ(next.Path, folder.Path(row.Second.empty() ? "log.csv" : "log-2.csv"));
    }
}

TEST(CsvLog, GoesOnInTheFileOfTheTime) {
    const auto folder = std::make_unique<TestFolder>();
    const std::string heading = CsvHeader;
    const auto open = [&](CsvLog& log, std::int64_t unixMs) {
        log.OpenPeriods(folder->Path("log.csv"), heading, NewLogFile::EachHour, {unixMs, 60});
    };
    CsvLog log(OpenAppendFile);
    open(log, Midnight - 1);
    log.Write("1\n", {Midnight - 1, 60});
    log.Write("2\n", {Midnight, 60});
    log.Write("3\n", {Midnight - 1, 60}); // the clock was put back
    log.Write("4\n", {Midnight + 2 * Hour, 60});
    log.Write("5\n", {Midnight + Hour, 120});
    open(log, Midnight); // a restart
    log.Write("6\n", {Midnight, 60});
    EXPECT_EQ(folder->Read("log-2031-02-03T23.csv"), heading + "1\n3\n");
    EXPECT_EQ(folder->Read("log-2031-02-04T00.csv"), heading + "2\n6\n");
    EXPECT_EQ(folder->Read("log-2031-02-04T02.csv"), heading + "4\n5\n");
    std::filesystem::remove_all(folder->Path());
    log.Write("7\n", {Midnight, 60}); // to the file that it has open
    const std::string failure = FailureText([&] { log.Write("8\n", {Midnight + Hour, 60}); });
    EXPECT_TRUE(Contains(failure, "log-2031-02-04T01.csv cannot be written: No such")) << failure;
    EXPECT_FALSE(log.IsOpen());
    EXPECT_TRUE(Contains(FailureText([&] { open(log, Midnight); }), "cannot be opened: No such"));
    EXPECT_FALSE(log.IsOpen());
}

} // namespace
} // namespace kavro
