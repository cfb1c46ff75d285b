#include "cli/captured.h"
#include "cli/map_output.h"
#include "cli/search_run.h"
#include "map/list_line.h"
#include "ports/map_reader.h"
#include "sim/module_factory.h"
#include "support/program_run.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

namespace kavro {
namespace {

// A line that has been searched, and its maps as they were printed.
struct SearchedLine : SimulatedSession {
    SearchedLine() {
        for (const auto& [model, address, baud, checksum] : {std::tuple{"8410", 1, 9600, false},
                                                             {"8250", 2, 19200, true},
                                                             {"8420", 3, 9600, false},
                                                             {"8210", 4, 19200, true},
                                                             {"8620", 5, 9600, false}})
            Line.Add(MakeModule(model, address, baud, checksum));
        Line.ModuleAt(4).Settings.Initialisation = true;
        EnableBaudCodes(Session, {3, 4});
        Search({.HighestAddress = 6});
    }

    Captured Search(const SearchOptions& options) {
        return Capture([&] {
            Result = SearchLine(Session, options);
            return 0;
        });
    }

    Captured Refresh(const std::string& map) {
        const ModuleMap read = ReadMapFile(Folder.Write("map", map));
        TakeOver(Session, read);
        return Search({.Kind = SearchKind::Refresh, .ChecksumsKnown = read.ChecksumsKnown});
    }

    TestFolder Folder;
    SearchResult Result;
};

TEST(Refresh, MarksWhatNoLongerAnswersAndLosesNothing) {
    for (const bool json : {true, false}) {
        SearchedLine test;
        const auto device = test.Session.Device;
        ASSERT_EQ(device.size(), 5U);
        const std::string map = json ? MapJson(test.Session, {}) : MapText(test.Session);
        test.Line.ModuleAt(1).OwnFaults.DamageShare = 0.2;
        for (const int gone : {2, 5})
            test.Line.ModuleAt(gone).OwnFaults.Unplugged = true;
        EXPECT_EQ(test.Refresh(map).Err, "kavroctl: No answer from addresses 2, 5.\n");
        EXPECT_TRUE(test.Result.CameToItsEnd());
        EXPECT_EQ(MapText(test.Session), std::string(ListHeading) + "\n" + device[0] + "\n" + device[1] +
                                             "   no answer\n" + device[2] + "\n" + device[3] + "\n" +
                                             device[4] + "   no answer\n");
        test.Line.ModuleAt(2).OwnFaults.Unplugged = test.Line.ModuleAt(5).OwnFaults.Unplugged = false;
        const auto begin = test.Time.GetTickCount();
        EXPECT_EQ(test.Refresh(MapJson(test.Session, {})).Err, "");
        EXPECT_LT(test.Time.GetTickCount() - begin, 6'000);
        EXPECT_EQ(test.Session.Device, device);
        EXPECT_EQ(test.Session.ModuleTable[1].Checksum, 1) << "found with it, though no map may have told";
    }
}

TEST(Refresh, EachKindOfSearchTellsWhereItWasStopped) {
    // The command at which Ctrl+C comes.
    const std::tuple<SearchKind, const char*, const char*> cases[] = {
        {SearchKind::Exact, "$032", "Stopped after address 3 of 6."},
        {SearchKind::Exact, "$062B9", ""},
        {SearchKind::Fast, "$032", "Stopped at 9600 baud after address 3 of 6."},
        {SearchKind::Refresh, "$032", "Stopped after module 2 of 5; the others are as they were."}};
    for (const auto& [kind, command, stopped] : cases) {
        SearchedLine test;
        test.Line.Log = [&heard = command](const LineEvent& event) {
            if (event.Command == heard && event.Baud == 9600)
                std::raise(SIGINT);
        };
        test.Search({.Kind = kind, .HighestAddress = 6});
        EXPECT_EQ(test.Result.Stopped, stopped);
    }
}

TEST(Refresh, RunsWithoutASearch) {
    const Outcome searched = ProgramRun(KAVROCTL_PROGRAM).Run({"search", "--demo", "--to", "2", "--json"});
    const TestFolder folder;
    const auto map = QString::fromStdString(folder.Write("map", searched.Out));
    const auto lineFile =
        folder.Write("line", R"({"modules": [{"model": "8210", "address": 1, "range": "06"}]})");
    ServedLine line({"--line", QString::fromStdString(lineFile)});
    const QStringList refresh = {"search", "--port", "1=" + line.Line("/dev/"), "--refresh", map};
    const Outcome json = ProgramRun(KAVROCTL_PROGRAM).Run(refresh + QStringList("--json"));
    EXPECT_EQ(std::tuple(json.Exit, json.Err), std::tuple(4, "kavroctl: No answer from address 2.\n"));
    const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(json.Out)).object();
    const QJsonArray modules = object["modules"].toArray();
    ASSERT_EQ(modules.size(), 2) << json.Out;
    EXPECT_TRUE(object["complete"].toBool() && !object.contains("highestAddress"));
    EXPECT_TRUE(modules[0]["inputRange"] == 6 && modules[0]["answers"].isUndefined());
    EXPECT_TRUE(modules[1]["model"] == "8220" && modules[1]["answers"] == false) << json.Out;
    ExpectWrongUse(
        {{{"search", "--refresh", map, "--to", "3"}, "searches nothing. Leave --to"},
         {{"search", "--refresh", "/nowhere"}, "no such file"},
         {{"monitor", "--map", QString::fromStdString(folder.Write("text", MapText(SearchedLine().Session)))},
          "does not tell which modules use checksums"}});
}

} // namespace
} // namespace kavro
