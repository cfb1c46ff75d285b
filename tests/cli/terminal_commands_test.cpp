#include "cli/captured.h"
#include "cli/command_sender.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <csignal>

namespace kavro {
namespace {

// The demo line with one module known, and the commands that it hears. At one of them something happens.
struct DemoSession : SimulatedSession {
    DemoSession() : SimulatedSession(DemoLine()) {
        Session.ModuleTable[0] = {.Address = 0x20, .Model = "8480  ", .BaudCode = 4};
        Session.ModuleCount = 1;
        Line.Log = [this](const LineEvent& event) {
            Heard.push_back(event.Command + " @" + std::to_string(event.Baud));
            if (static_cast<int>(Heard.size()) == ActAt)
                Act();
        };
    }

    TestFolder Folder;
    Lines Heard;
    int ActAt = 0;
    std::function<void()> Act = [] { std::raise(SIGINT); };
};

// Sends commands as a batch file, or as typed ones.
Captured Send(DemoSession& demo, const Lines& lines, const SendingOptions& options, bool batch,
              const std::string& log = {}) {
    std::string content;
    for (const std::string& line : lines)
        content += line + "\n";
    return Capture([&] {
        CommandSender sender(demo.Session, options);
        if (!log.empty())
            sender.OpenLog(log);
        return batch ? sender.SendFile(demo.Folder.Write("batch", content)) : sender.Send(lines);
    });
}

int ObjectsIn(const std::string& json) {
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(json));
    return document.isArray() ? static_cast<int>(document.array().size()) : -1;
}

TEST(ExchangePrinter, ShowsEveryByteOfAPair) {
    const Exchanged garbled = {"\"\\", "!\x1B\xFF", false, 9600};
    EXPECT_EQ(ExchangeText(garbled), "\"\\ -> !<1B><FF> (incomplete, or a wrong checksum)");
    EXPECT_EQ(ExchangeJson(garbled), R"({"command": "\u0022\u005C", "reply": "!\u001B\u00FF", )"
                                     R"("complete": false, "baud": 9600})");
}

TEST(CommandSender, RunsAFileWithItsOptionsPausesAndLog) {
    DemoSession demo;
    demo.Session.BatchRepeatCount = 2;
    std::string logged;
    demo.ActAt = 2;
    demo.Act = [&] { logged = demo.Folder.Read("log"); };
    const SendingOptions options = {.Checksum = 1, .BaudCode = 4};
    const Captured outcome = Send(demo, {"$002", " yy"}, options, true, demo.Folder.Path("log"));
    EXPECT_EQ(outcome.Exit, ExitReplyMissing);
    EXPECT_EQ(outcome.Out, "$002 -> (no reply)\n yy -> (no reply)\n$002 -> (no reply)\n yy -> (no reply)\n");
    EXPECT_EQ(outcome.Err, "kavroctl: No complete reply to 4 of 4 commands.\n");
    EXPECT_EQ(demo.Heard.at(0), "$002B6 @19200");
    EXPECT_EQ(logged, "$002\nyy\n"); // before the command goes out
    EXPECT_EQ(demo.Time.GetTickCount(), 1000 + 4 * 400 + 3 * 400 + 200) << "silence is awaited";
}

TEST(CommandSender, SendsTypedCommandsAndTellsOnceThatTheLogFails) {
    DemoSession demo;
    const Captured outcome = Send(demo, {"$202", "$002", "$012"}, {.Checksum = 1}, false, "/dev/full");
    EXPECT_EQ(outcome.Exit, ExitPortTrouble);
    EXPECT_EQ(demo.Heard, (Lines{"$202B8 @19200", "$002 @9600", "$012B7 @9600"}));
    EXPECT_EQ(std::ranges::count(outcome.Err, '\n'), 2) << outcome.Err; // the log, and replies missing
}

TEST(CommandSender, EndsInGoodOrderWhenInterrupted) {
    // The command at which Ctrl+C comes, and the exit code.
    const std::tuple<bool, int, int> cases[] = {{false, 1, ExitReplyMissing},
                                                {false, 2, ExitSuccess},
                                                {true, 2, ExitReplyMissing},
                                                {true, 4, ExitSuccess}};
    for (const auto& [batch, at, exit] : cases) {
        DemoSession demo;
        demo.Session.BatchRepeatCount = 2;
        demo.ActAt = at;
        const Captured outcome = Send(demo, {"$012", "$022"}, {.Json = true}, batch);
        EXPECT_EQ(outcome.Exit, exit) << at;
        EXPECT_EQ(ObjectsIn(outcome.Out), at) << outcome.Out;
        EXPECT_EQ(outcome.Err.empty(), exit == ExitSuccess) << outcome.Err;
    }
}

TEST(CommandSender, LostPortLeavesWhatWasExchanged) {
    DemoSession demo;
    demo.ActAt = 2;
    demo.Act = [&] { demo.Line.Unplug(); };
    const Captured outcome = Send(demo, {"$012", "$022", "$032"}, {.Json = true}, true);
    EXPECT_TRUE(Contains(outcome.Failure, "unplugged"));
    EXPECT_EQ(ObjectsIn(outcome.Out), 1) << outcome.Out;
}

TEST(TerminalCommands, UseTheMapAndTellWrongUseInOneLine) {
    const TestFolder folder;
    const auto batch = QString::fromStdString(folder.Write("batch", "$012\n"));
    ExpectWrongUse({{{"send"}, "Give the commands"},
                    {{"send", "a\nb"}, "one line"},
                    {{"send", "$012", " "}, "An empty command"},
                    {{"send", QString(QChar(0x0142))}, "8 bits"},
                    {{"send", "--map", "/nowhere.json", "$012"}, "no such file"},
                    {{"batch"}, "Give the file"},
                    {{"batch", "/nowhere"}, "/nowhere"},
                    {{"batch", QString::fromStdString(folder.Path())}, "is a folder"},
                    {{"batch", batch, "--passes", "0"}, "'0'"},
                    {{"batch", batch, "--pause", "3600001"}, "3600001"},
                    {{"batch", batch, "--log", batch}, "would empty"},
                    {{"batch", batch, "--log", "/nowhere/log"}, "/nowhere/log"}});
    EXPECT_EQ(folder.Read("batch"), "$012\n");

    const std::string map = folder.Write("map.json", R"({"modules": [{"address": 32, "baudCode": 4}]})");
    const QStringList send = {"send", "--demo", "--map", QString::fromStdString(map), "$202"};
    const Captured sent = Capture([&] { return RunKavroctl(send); });
    EXPECT_EQ(sent.Out, "$202 -> !20400700\n");
    EXPECT_EQ(sent.Exit, ExitSuccess) << sent.Err;

    const auto comments = QString::fromStdString(folder.Write("comments", "; all\n\n$012\n ;\n"));
    const Captured skipped = Capture([&] {
        return RunKavroctl({"batch", "--demo", comments, "--skip-comments", "--pause", "9999"});
    });
    EXPECT_EQ(skipped.Out, "$012 -> !01050600\n") << "no pause behind the last command";
}

} // namespace
} // namespace kavro
