#include "cli/monitor_command.h"

#include "cli/cli_options.h"
#include "cli/cli_session.h"
#include "cli/cli_text.h"
#include "cli/search_options.h"
#include "cli/search_run.h"
#include "cli/store_options.h"
#include "cli/turn_output.h"
#include "link/runtime_failure.h"
#include "monitor/monitor.h"

#include <QCommandLineParser>

#include <algorithm>
#include <optional>
#include <set>

namespace kavro {

namespace {

constexpr int MostRounds = INT32_MAX / ModuleTable::Size; // turns can be counted

bool AnyFailed(const std::vector<ChannelValue>& values) {
    return std::ranges::any_of(values, IsMissing);
}

} // namespace

int MonitorModules(Session& session, const Pace& rounds, ValueForm form, const MonitorSinks& sinks) {
    if (session.ModuleCount == 0) {
        PrintNote("No module found!");
        return ExitNothingFound;
    }
    Monitor monitor(session);
    TurnOutput printer(session, form, sinks.Readings);
    ModuleDescriber describer(session, sinks.Descriptions);
    std::optional<MonitorTurn> turn;
    std::set<int> failed; // modules with values that failed when they were read last
    PollEnd end = PollEnd::Done;
    const auto put = [&](const MonitorTurn& each) {
        describer.Note(each);
        return printer.Print(each.Index, each.Values);
    };
    PollWork work;
    work.Read = [&] {
        describer.AskDue();
        turn = monitor.Tick();
    };
    work.Print = [&] {
        failed.erase(turn->Index);
        if (AnyFailed(turn->Values))
            failed.insert(turn->Index);
        return put(*turn);
    };
    work.PrintLost = [&] {
        const auto lost = monitor.LostTurn();
        return !lost || put(*lost);
    };
    work.IdleMs = [&] { return turn ? 0 : std::max<std::int64_t>(monitor.DueInMs(), 1); };
    if (session.ModuleCount > 1) // a single module's rounds are its turns
        work.EndsRound = [&] { return turn->EndsRound; };
    try {
        end = Poll(session.Line, rounds, work);
        if (rounds.Turns && end == PollEnd::Done)
            describer.AskDue(); // the last one
    } catch (const RuntimeFailure&) {
        printer.Close();
        throw;
    }
    printer.Close();
    if (end == PollEnd::PortLost)
        return ExitPortTrouble;
    const bool lastRoundFailed = rounds.Turns && !failed.empty();
    return end == PollEnd::Interrupted || lastRoundFailed ? ExitReplyMissing : ExitSuccess;
}

void AddMonitorOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Reads the modules of a map in rounds, one module in each interval, and prints their values, those\n"
        "of a silent one as \"no reply\". Without --map the line is searched first. Ctrl+C ends it. A port\n"
        "that fails is opened again as soon as it is there; until then the values are \"line lost\".\n\n"
        "A module that does not answer, or with errors alone, backs off: it is asked again after 1, 2, 4 to\n"
        "32 s, then every 60 s, and as soon as it tells a value it is read in every round.\n\n"
        "Exit codes: 0 all rounds were made, 2 wrong use, 3 port trouble, or a database or a broker refuses\n"
        "at the start, 4 no module found, with --count a value that could not be read when its module was\n"
        "asked last, or Ctrl+C came in the search or before the last of the rounds.");
    AddWholeLineOptions(parser, "Monitor the modules of FILE, a map printed by kavroctl search --json.");
    parser.addOptions({
        {"interval",
         "Read the next module every MS milliseconds; 500 unless given, 0: as fast as the line allows.",
         "MS"},
        {"count",
         "End after N rounds, each a turn of every module that is due; without it only Ctrl+C ends it.", "N"},
    });
    AddGiveUpOption(parser);
    AddStoreOptions(parser);
    AddValueFormOptions(parser);
}

CommandAction PrepareMonitor(const QCommandLineParser& parser) {
    const Pace rounds = ReadPace(parser, MonitorTickMs);
    if (rounds.Turns.value_or(1) > MostRounds)
        throw RuntimeFailure("--count is at most " + std::to_string(MostRounds) + " rounds.");
    const ValueForm form = ReadValueForm(parser);
    const WholeLine line = ReadWholeLine(parser);
    const StoreChoice store = ReadStore(parser, line.Cli->Session);
    return [=] {
        const auto readings = OpenStore(store);
        MonitorSinks sinks{readings.get()};
        if (store.Broker)
            sinks.Descriptions = [&](const auto& description) {
                store.Broker->Descriptions->Put(description);
            };
        return RunOnModules(line,
                            [&](Session& session) { return MonitorModules(session, rounds, form, sinks); });
    };
}

} // namespace kavro
