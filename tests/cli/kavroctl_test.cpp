#include "cli/cli_text.h"
#include "cli/kavrosim.h"
#include "cli/map_output.h"
#include "map/list_line.h"
#include "map/search.h"
#include "ports/steady_clock.h"
#include "sim/module_factory.h"
#include "support/failure_text.h"
#include "support/program_run.h"
#include "support/test_session.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <csignal>
#include <fstream>

namespace kavro {
namespace {

struct KavroCtl : ProgramRun {
    KavroCtl() : ProgramRun(KAVROCTL_PROGRAM) {}
};

QJsonObject ParsedJson(const std::string& text) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
}

TEST(KavroCtl, ReadsOptions) {
    EXPECT_EQ(ParseTimeout("6553"), 6553);
    for (const char* text : {"", "6554", "100ms", "-100"})
        EXPECT_THROW(ParseTimeout(text), RuntimeFailure) << text;
}

TEST(KavroCtl, WrongUseIsToldInOneLineAndHelpNeedsNothing) {
    const std::pair<QStringList, const char*> cases[] = {
        {{}, "No command"},
        {{"serch"}, "no command 'serch'"},
        {{"search", "--frob"}, "'frob'"},
        {{"search", "--demo", "--to", "a\nb"}, "'a?b'"},
        {{"search", "--demo", "--to"}, "'--to'"},
        {{"search", "--demo", "--baud", "9601"}, "'9601'"},
        {{"search", "--demo", "--timeout", "99"}, "'99'"},
        {{"search", "--demo", "--answer-within", "30"}, "Give --fast"},
        {{"search", "--demo", "--fast", "--answer-within", "4"}, "5 to 1000"},
        {{"search", "--demo", "--fast", "--refresh", "map"}, "--fast"},
        {{"search", "--demo", "--port", "1=/dev/null"}, "two devices"},
        {{"search", "--port", "2=/dev/a", "--port", "2=/dev/b"}, "COM2"},
        {{"search", "--to", "3"}, "--port 1="}};
    for (const auto& [arguments, piece] : cases) {
        const Outcome outcome = KavroCtl().Run(arguments);
        EXPECT_TRUE(Contains(outcome.Err, piece));
        EXPECT_EQ(std::tuple(outcome.Exit, outcome.Out), std::tuple(2, "")) << piece;
        EXPECT_EQ(outcome.Err.find('\n'), outcome.Err.size() - 1) << outcome.Err;
    }
    EXPECT_TRUE(KavroCtl().Run({"--version"}).Out.starts_with("kavroctl 4.01 (build 4.01-"));
    const Outcome help = KavroCtl().Run({"search", "--help"});
    EXPECT_EQ(std::tuple(help.Exit, help.Err), std::tuple(0, ""));
    EXPECT_TRUE(Contains(help.Out, "Usage: kavroctl search"));
}

TEST(KavroCtl, PrintsTheMap) {
    const std::string line = "   1(01H)   8210      9600        V        +/- 2.5V        ";
    const Outcome text = KavroCtl().Run({"search", "--demo", "--to", "1"});
    EXPECT_EQ(
        std::tuple(text.Exit, text.Err),
        std::tuple(0, "kavroctl: Search to address 22 to list the module in its initialisation state.\n"));
    EXPECT_EQ(text.Out, std::string(ListHeading) + "\n" + line + "\n");

    const Outcome json = KavroCtl().Run({"search", "--port", "3=demo", "--to", "1", "--json"});
    EXPECT_EQ(json.Exit, 0);
    EXPECT_EQ(ParsedJson(json.Out), ParsedJson(R"({"port": "COM3", "device": "demo", "highestAddress": 1,
        "complete": true, "modules": [{"index": 0, "address": 1, "addressHex": "01", "model": "8210",
        "baud": 9600, "baudCode": 3, "checksum": false, "inputRange": 5, "dataFormat": 0,
        "initialisation": false, "line": ")" + line +
                                               "\"}]}"))
        << json.Out;
}

TEST(KavroCtl, ModelTextsCannotGarbleTheOutput) {
    SteadyClock clock;
    Session session({}, clock);
    session.ModuleTable[0].Model = "8\x1B[2J\xFF";
    session.Device = {"*  5(05H)   8\x1B[2J\xFF"};
    session.ModuleCount = 1;
    EXPECT_EQ(MapText(session), std::string(ListHeading) + "\n*  5(05H)   8?[2J?\n");
    const QJsonObject module = ParsedJson(MapJson(session, {}))["modules"].toArray()[0].toObject();
    EXPECT_EQ(module["model"].toString(), "8?[2J?");
    EXPECT_TRUE(module["initialisation"].toBool());
}

TEST(KavroCtl, AsksIncompleteModulesAgainAndMarksThoseThatStaySo) {
    // Whose replies are cut, and how many of them; what becomes of the module.
    const std::tuple<std::string, int, const char*, bool> cases[] = {
        {"$01M", 1, "8410", true},   {"~01CR", 1, "8410", true}, {"$012", 0, "8410", true},
        {"~01CR", 9, "8410", false}, {"$01M", 9, "", false},
    };
    for (const auto& [command, times, model, complete] : cases) {
        SimulatedSession test;
        int left = times;
        test.Line.Add(MakeModule("8410", 1, 9600, false)).CommandFaults =
            [&left, &cut = command](std::string_view heard) {
                return Faults{.NoCarriageReturn = heard == cut && left-- > 0};
            };
        EnableBaudCodes(test.Session, {3});
        test.Session.SearchHighAddress = 2;
        NetworkSearch(test.Session, {}, Belief::Strict).Run();
        const QJsonObject module = ParsedJson(MapJson(test.Session, {}))["modules"].toArray()[0].toObject();
        EXPECT_EQ(module["model"].toString(), model) << command;
        EXPECT_EQ(module["complete"].toBool(true), complete) << command;
        EXPECT_EQ(MapText(test.Session).ends_with("   incomplete\n"), !complete) << command;
    }
}

TEST(KavroCtl, NothingFoundAndPortTroubleHaveExitCodes) {
    const Outcome none = KavroCtl().Run({"search", "--demo", "--to", "0"}); // reports a higher address
    EXPECT_EQ(std::tuple(none.Exit, none.Out), std::tuple(4, std::string(ListHeading) + "\n"));
    EXPECT_TRUE(none.Err.ends_with("kavroctl: No module found!\n")) << none.Err;

    // The port of the saved settings.
    KavroCtl ctl;
    QDir(ctl.Folder.path()).mkpath("kavro");
    const std::string folder = ctl.Folder.path().toStdString() + "/kavro/";
    std::ofstream(folder + "ports.ini") << "[General]\nCOM2=/nowhere/second\n";
    const std::pair<const char*, const char*> cases[] = {
        {"150\n2\nn,8,1\n19200\n", "/nowhere/second"},
        {"150\n7\nn,8,1\n", "COM.CFG cannot be used"},
        {"150\n0\nn,8,1\n", "COM.CFG cannot be used. Index"}};
    for (const auto& [config, piece] : cases) {
        std::ofstream(folder + "COM.CFG") << config;
        const Outcome trouble = ctl.Run({"search"});
        EXPECT_EQ(std::tuple(trouble.Exit, trouble.Out), std::tuple(3, ""));
        EXPECT_TRUE(Contains(trouble.Err, piece));
    }
}

TEST(KavroCtl, EndedSearchPrintsWhatItFound) {
    for (const bool interrupt : {true, false}) {
        ServedLine line;
        KavroCtl ctl;
        ctl.Start({"search", "--port", "1=" + line.Line("/dev/"), "--json"});
        ASSERT_FALSE(line.Line("$022").isEmpty());
        if (interrupt)
            ASSERT_EQ(kill(static_cast<pid_t>(ctl.Process.processId()), SIGINT), 0);
        else
            line.End(); // the adapter is pulled out
        const Outcome outcome = ctl.Finish();
        EXPECT_EQ(outcome.Exit, interrupt ? 4 : 3) << outcome.Err;
        EXPECT_FALSE(Contains(outcome.Err, "Network")) << "no menu of another program";
        const QJsonObject map = ParsedJson(outcome.Out);
        EXPECT_FALSE(map["complete"].toBool(true)) << outcome.Out;
        // A module being probed is finished when the search is stopped, and lost with the port.
        EXPECT_GE(map["modules"].toArray().size(), interrupt ? 2 : 1);
        EXPECT_NE(outcome.Err, "");
    }
}

TEST(Kavrosim, LogsCommandAndReplyOnOneLine) {
    EXPECT_EQ(
        LogLine({.Moment = 13'345'678, .Baud = 9600, .Command = "$012", .Reply = "!01\xFF\n~\r"}, 1'000'000),
        "     12.345 s   9600 baud  $012<0D> -> !01<FF><0A>~<0D>");
    EXPECT_EQ(LogLine({.Moment = 0, .Baud = 115200, .Command = "", .Reply = ""}, 0),
              "      0.000 s 115200 baud  <0D> -> (silence)");
}

TEST(Kavrosim, SaysInOneLineWhyItDoesNotStart) {
    const std::tuple<QStringList, int, const char*> cases[] = {
        {{"--loud"}, 2, "Unknown option 'loud'"},
        {{"line.json"}, 2, "\"line.json\" is not understood"},
        {{"a\nb"}, 2, "\"a?b\" is not understood"},
        {{"--seed", "4294967296"}, 2, "--seed needs a whole number"},
        {{"--line"}, 2, "Missing value after '--line'"},
        {{"--line", ""}, 2, "--line needs the path of a file."},
        {{"--link", ""}, 2, "--link needs a path."},
        {{"--line", "/nowhere.json"}, 3, "The line file \"/nowhere.json\" cannot be used"},
        {{"--no-delays"}, 2, "--no-delays goes with --replay."},
        {{"--replay", "a", "--line", "b"}, 2, "--replay plays a recording"},
        {{"--replay", "a", "--control"}, 2, "--replay plays a recording"},
        {{"--replay", "/none"}, 3, "The recording \"/none\" cannot be used: there is no such file."},
        {{"--link", "/"}, 3, "The link \"/\" cannot be made"}};
    for (const auto& [arguments, exitCode, description] : cases) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(RunKavrosim(QStringList{"kavrosim"} + arguments), exitCode);
        const std::string error = testing::internal::GetCapturedStderr();
        EXPECT_TRUE(error.starts_with(std::string("kavrosim: ") + description)) << error;
        EXPECT_EQ(std::ranges::count(error, '\n'), 1) << error;
    }
}

} // namespace
} // namespace kavro
