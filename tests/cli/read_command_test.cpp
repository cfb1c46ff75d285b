#include "cli/captured.h"
#include "cli/monitor_command.h"
#include "cli/read_command.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

namespace kavro {
namespace {

// The demo line, and what it hears. At one of the commands something happens.
struct ReadSession : SimulatedSession {
    ReadSession() : SimulatedSession(DemoLine()) {
        Line.Log = [this](const LineEvent& event) {
            Heard.push_back(event.Command);
            if (event.Command.starts_with(Timed))
                MomentsMs.push_back(event.Moment / 1000);
            if (event.Command == ActAt)
                Act();
        };
    }

    Captured Read(std::int16_t address, const ReadOptions& options) {
        return Capture([&] { return ReadValues(Session, ContactOf(Session, address, {}), options); });
    }

    Lines Heard;
    std::vector<std::int64_t> MomentsMs; // of the commands that begin with `Timed`
    std::string Timed, ActAt;
    std::function<void()> Act = [] { std::raise(SIGINT); };
};

// "channel unit state" of the objects of an array.
Lines ValuesIn(const std::string& json) {
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(json));
    EXPECT_TRUE(document.isArray()) << json;
    Lines values;
    for (const auto& value : document.array()) {
        const QJsonObject object = value.toObject();
        EXPECT_EQ(object["value"].isDouble(), object["state"] == "ok") << json;
        values.push_back((object["channel"].toString() + ' ' + object["unit"].toString() + ' ' +
                          object["state"].toString())
                             .toStdString());
    }
    return values;
}

TEST(ReadCommand, ReadsAllValuesOrOneAndNothingElse) {
    // Channel, the last commands heard, the values, the exit code.
    const std::tuple<std::int16_t, const char*, Lines, Lines, int> cases[] = {
        {1, "", {"@01DI", "#01"}, {"0 V ok"}, 0},
        {5, "3", {"$05M", "$056", "$056", "#053"}, {"3 V ok"}, 0},
        {7, "2", {"$07M", "$076", "$076"}, {"2 V disabled"}, 4},
        {9, "in", {"$096D", "$098"}, {"IN hex ok"}, 0},
        {18, "1", {"#120", "#121"}, {"1  ok"}, 0}};
    for (const auto& [address, channel, commands, values, exit] : cases) {
        ReadSession demo;
        const Captured read = demo.Read(address, {.Channel = channel, .Form = ValueForm::Json});
        EXPECT_EQ(std::tuple(read.Exit, ValuesIn(read.Out)), std::tuple(exit, values)) << read.Err;
        ASSERT_GE(demo.Heard.size(), commands.size());
        EXPECT_TRUE(std::equal(commands.rbegin(), commands.rend(), demo.Heard.rbegin())) << address;
    }
    EXPECT_EQ(ReadSession().Read(7, {}).Exit, ExitSuccess) << "disabled channels among others";
}

TEST(ReadCommand, TellsWhatCannotBeRead) {
    const std::tuple<std::int16_t, const char*, int, const char*> cases[] = {
        {20, "", ExitWrongUse, "8610 at address 20 (14H) has no values."},
        {10, "3", ExitWrongUse, "no channel '3'; it has IN, OUT."},
        {5, "8", ExitWrongUse, "it has 0, 1, 2, 3, 4, 5, 6, 7."},
        {99, "", ExitReplyMissing, "No module answers at address 99 (63H)"}};
    for (const auto& [address, channel, exit, piece] : cases) {
        const Captured read = ReadSession().Read(address, {.Channel = channel, .Form = ValueForm::Json});
        EXPECT_EQ(std::tuple(read.Exit, read.Out), std::tuple(exit, "")) << piece;
        EXPECT_TRUE(Contains(read.Err, piece));
    }
}

TEST(ReadCommand, PrintsColumns) { // log lines, too, are counted below
    ReadSession demo;
    demo.Session.ModuleTable[0] = {.Address = 5, .Model = "8250  "};
    const Captured printed = Capture([&] {
        ValuePrinter printer(demo.Session, ValueForm::Text);
        const WallTime time = {1'234, -90};
        printer.Print(0, {{"0", "-7.2500", -7.25, "V", ValueState::Ok}}, time);
        printer.Print(0, {{"IN", "", std::nullopt, "hex", ValueState::NoReply}}, time);
        printer.Close();
        return 0;
    });
    EXPECT_EQ(printed.Out,
              "Time                           Address  Model   Channel        Value  Unit  State\n"
              "1969-12-31T22:30:01.234-01:30  5        8250    0            -7.2500  V     ok\n"
              "1969-12-31T22:30:01.234-01:30  5        8250    IN                    hex   no reply\n");
}

TEST(ReadCommand, KeepsToItsScheduleAndLeavesMissedTurnsOut) {
    using Moments = std::vector<std::int64_t>;
    // A turn takes 134 ms; the first one also asked twice which channels are enabled.
    for (const auto& [interval, moments] :
         {std::pair{700, Moments{673, 1373, 2073}}, {100, {173, 373, 573}}}) {
        ReadSession demo;
        demo.Timed = "#050";
        demo.Read(5, {.Pace = {interval, 4}});
        for (std::size_t i = 0; i < moments.size(); ++i)
            EXPECT_EQ(demo.MomentsMs.at(i + 1) - demo.MomentsMs[0], moments[i]);
    }
}

TEST(ReadCommand, EndsInGoodOrderWhenInterruptedOrUnplugged) {
    const std::pair<std::optional<int>, int> cases[] = {{std::nullopt, ExitSuccess}, {2, ExitReplyMissing}};
    for (const auto& [turns, exit] : cases) {
        ReadSession demo;
        demo.ActAt = "#031";
        const Captured read = demo.Read(3, {.Pace = {500, turns}, .Form = ValueForm::Json});
        EXPECT_EQ(ValuesIn(read.Out).size(), 3U);
        EXPECT_EQ(read.Exit, exit);
    }
    ReadSession demo;
    demo.ActAt = "#031";
    demo.Act = [&] { demo.Line.Unplug(); };
    const Captured read = demo.Read(3, {.Form = ValueForm::Json});
    EXPECT_TRUE(Contains(read.Failure, "unplugged"));
    EXPECT_EQ(read.Out, "[]\n");
}

TEST(Polling, TellsAnOutageOnceAndGoesOn) {
    ReadSession demo;
    int reads = 0, prints = 0;
    PollEnd end = PollEnd::PortLost;
    const PollWork work = {[&] {
                               if (++reads >= 2 && reads <= 4)
                                   throw RuntimeFailure("Gone.");
                           },
                           [&] { return ++prints < 3; }};
    const auto poll = [&](const Pace& pace) {
        return Capture([&] { return static_cast<int>(end = Poll(demo.Session.Line, pace, work)); });
    };
    EXPECT_EQ(poll({1000, 9}).Err, "kavroctl: Gone. Going on as soon as the port can be opened again.\n"
                                   "kavroctl: The port is there again.\n");
    EXPECT_EQ(std::tuple(end, reads, prints), std::tuple(PollEnd::Done, 6, 3));
    for (const Pace& pace : {Pace{1000, 1}, {1000, 9, 0}}) { // neither waits for the port
        reads = 1;
        EXPECT_EQ(poll(pace).Failure, "Gone.");
    }
    reads = 3; // back at the last attempt, for which no turn is due
    EXPECT_TRUE(Contains(poll({60'000, 1, 7000}).Err, "The port is there again."));
    const PollWork lost = {[] {
                               std::raise(SIGINT);
                               throw RuntimeFailure("Gone.");
                           },
                           [] { return true; }};
    Capture([&] { return static_cast<int>(end = Poll(demo.Session.Line, {1000, 9}, lost)); });
    EXPECT_EQ(end, PollEnd::PortLost);

    // A port that stays away is given up at the moment that was asked for, whatever the interval.
    const PollWork gone = {[] { throw RuntimeFailure("Gone."); }, [] { return true; }};
    for (const int interval : {0, 300, 60'000}) {
        const std::int64_t begin = demo.Time.GetTickCount();
        const Captured outcome = Capture([&] {
            return static_cast<int>(end = Poll(demo.Session.Line, {interval, 9, 7000}, gone));
        });
        EXPECT_EQ(end, PollEnd::PortLost);
        EXPECT_TRUE(Contains(outcome.Err, "The port stayed away for 7 s. Given up.\n"));
        EXPECT_EQ(demo.Time.GetTickCount() - begin, 7000);
    }
}

TEST(MonitorCommand, GoesRoundOneModuleInEachInterval) {
    ReadSession demo;
    demo.Timed = "$056";
    demo.Session.ModuleTable[0] = {.Address = 5, .Model = "8250  ", .BaudCode = 3, .InputRange = 8};
    demo.Session.ModuleTable[1] = {.Address = 10, .Model = "8410  ", .BaudCode = 3, .InputRange = 0x40};
    demo.Session.ModuleCount = 2;
    demo.Session.ScanIndex = -1;
    demo.Line.ModuleAt(5).CommandFaults = [](std::string_view) { return Faults{.Silent = true}; };
    const Captured monitor = Capture([&] { return MonitorModules(demo.Session, {500, 3}, ValueForm::Csv); });
    EXPECT_EQ(monitor.Exit, ExitReplyMissing);
    EXPECT_EQ(std::ranges::count(monitor.Out, '\n'), 1 + 2 * 8 + 3 * 2) << monitor.Out;
    EXPECT_TRUE(Contains(monitor.Out, ",5,8250,7,,V,no reply\n"));
    EXPECT_EQ(demo.Heard, (Lines{"$056", "$0AM", "$0A6", "$0A6", "$056", "$0AM", "$0A6"}));
    EXPECT_EQ(demo.MomentsMs, (std::vector<std::int64_t>{1000, 2500})) << "backs off for a round";
    int commands = 0; // what failed before the last round is past
    demo.Line.ModuleAt(5).CommandFaults = [&](std::string_view) { return Faults{.Silent = commands++ == 0}; };
    for (const auto& [rounds, exit] : {std::pair{3, ExitSuccess}, {2, ExitReplyMissing}}) { // asked again?
        commands = 0;
        const auto run = [&] { return MonitorModules(demo.Session, {500, rounds}, ValueForm::Csv); };
        EXPECT_EQ(Capture(run).Exit, exit);
    }
    demo.ActAt = "$0A6";
    demo.Act = [&] { demo.Line.Unplug(); };
    demo.Session.Tags.Path = "line.kavro.json";
    demo.Session.Tags.Modules[10] = {"8410", {"Doors", ""}, {}};
    const Captured lost = Capture([&] {
        return MonitorModules(demo.Session, {500, 3, 2000}, ValueForm::Csv);
    });
    EXPECT_EQ(lost.Exit, ExitPortTrouble);
    for (const char* row : {"state,tag\n", ",10,8410,IN,,hex,line lost,Doors\n", ",5,8250,7,,V,line lost,\n"})
        EXPECT_TRUE(Contains(lost.Out, row));
    demo.Session.Line.CommPort(1).PortOpen(false);
    demo.Line.Plug();
    demo.Session.Line.CommPort(1).PortOpen(true);
    demo.ActAt.clear();
    demo.Line.ModuleAt(5).OwnFaults.Silent = true;
    const std::int64_t begin = demo.Time.GetTickCount();
    demo.Heard.clear();
    demo.MomentsMs.clear();
    const auto fast = [&] { return MonitorModules(demo.Session, {0, 5}, ValueForm::Csv); };
    EXPECT_EQ(Capture(fast).Exit, ExitReplyMissing);
    EXPECT_EQ(demo.Heard, (Lines{"$056", "$0AM", "$0A6", "$0A6", "$0A6", "$0A6", "$0A6"}));
    EXPECT_LT(demo.Time.GetTickCount() - begin, 1000);
    demo.Session.ModuleCount = 1;
    demo.MomentsMs.clear();
    EXPECT_EQ(Capture(fast).Exit, ExitReplyMissing);
    EXPECT_EQ(demo.MomentsMs.back() - demo.MomentsMs.front(), 15'400) << "waits 1, 2, 4 and 8 s";
    demo.Session.ModuleCount = 0;
    EXPECT_EQ(Capture([&] { return MonitorModules(demo.Session, {}, ValueForm::Csv); }).Exit,
              ExitNothingFound);
}

TEST(ReadCommand, WrongUseIsToldInOneLine) {
    ExpectWrongUse({{{"read"}, "Give the address"},
                    {{"read", "5", "6"}, "Unexpected argument '6'"},
                    {{"read", "5", "--csv", "--json"}, "Choose one"},
                    {{"read", "5", "--count", "0"}, "'0' is not a count"},
                    {{"read", "5", "--interval", "86400001"}, "0 to 86400000"},
                    {{"read", "5", "--channel", ""}, "--channel needs"},
                    {{"monitor", "--map", "x", "--to", "3"}, "Leave --to"},
                    {{"monitor", "--count", "99999999"}, "at most 8388607"},
                    {{"monitor", "--give-up", "1h"}, "'1h' is not a time in seconds"},
                    {{"output"}, "Give the address"},
                    {{"output", "5"}, "Give what the outputs"}});
}

} // namespace
} // namespace kavro
