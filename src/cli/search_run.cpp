#include "cli/search_run.h"

#include "cli/cli_session.h"
#include "cli/cli_text.h"
#include "cli/interrupt.h"
#include "cli/search_kinds.h"
#include "cli/search_progress.h"
#include "cli/subcommand.h"
#include "link/network_address.h"
#include "link/runtime_failure.h"
#include "map/search_times.h"

#include <QCommandLineParser>

#include <memory>
#include <optional>

namespace kavro {

namespace {

void ApplyOptions(const SearchOptions& options, Session& session) {
    session.SearchHighAddress = options.HighestAddress;
    Line& line = session.Line;
    if (!options.BaudCodes.empty()) {
        auto& enabled = line.SettingsOf(line.CurrentPort).BaudEnabled;
        enabled.fill(0);
        for (const std::int16_t code : options.BaudCodes)
            enabled[static_cast<std::size_t>(code)] = 1;
    }
    if (options.OneRate) {
        auto& enabled = line.SettingsOf(line.CurrentPort).BaudEnabled;
        enabled = FirstOf(enabled);
    }
    if (options.TimeoutMs)
        SetTimeouts(line, *options.TimeoutMs);
    if (options.AnswerWithinMs)
        session.Preferences.AnswerWithin = *options.AnswerWithinMs;
}

// Keeps the place up to date; `show` is called when there is news of it.
SearchEvents PlaceEvents(const Session& session, SearchPlace& place, const std::function<void()>& show) {
    SearchEvents events;
    events.Address = [&place, show](std::int16_t address) {
        place.Address = address;
        ++place.Begun;
        ++place.BegunAtRate;
        if (place.Baud > 0)
            show();
    };
    events.Baud = [&place, show](std::int32_t baud) {
        place.Baud = baud;
        place.BegunAtRate = 0;
        show();
    };
    events.Found = [&session, &place, show](int) {
        place.Found = static_cast<int>(session.Device.size());
        show();
    };
    events.Changed = [&place](int) { ++place.Read; };
    return events;
}

// What was stopped, or the port ended, is told by the command in its own words.
void TellFindings(SearchFindings findings) {
    findings.StoppedAfter.reset();
    findings.RefreshStopped = false;
    for (const std::string& text : FindingTexts(findings))
        PrintNote(text);
}

} // namespace

SearchResult SearchLine(Session& session, const SearchOptions& options) {
    ApplyOptions(options, session);
    const KindOfSearch& kind = KindOf(options.Kind);
    SearchPlace place{.HighestAddress = options.HighestAddress,
                      .Found = options.Kind == SearchKind::Refresh ? session.ModuleCount : 0};
    const InterruptWatch watch(session.Line);
    std::optional<SearchProgress> progress;
    std::unique_ptr<LineSearch> search;
    SearchEvents events = PlaceEvents(session, place, [&] { progress->Show(kind.Progress(place)); });
    events.Yield = [&] {
        if (!watch.Interrupted())
            return;
        search->Stop();
        progress->Stopping = true;
        progress->Show(kind.Progress(place));
    };
    search = kind.Make(session, options, events);
    progress.emplace(search->Forecast());
    SearchResult result;
    bool interrupted = false;
    try {
        search->Run();
    } catch (const Interruption&) {
        interrupted = true;
    } catch (const RuntimeFailure& failure) {
        result.PortFailure = failure.what();
    }
    progress.reset();
    if (interrupted || search->Findings().StoppedAfter || search->Findings().RefreshStopped)
        result.Stopped = kind.Stopped(place);
    TellFindings(search->Findings());
    return result;
}

namespace {

// An exit code unless the search came to its end.
int SearchModules(CliSession& cli, SearchOptions options) {
    options.OneRate = RateIsFixed(cli.Device());
    const SearchResult result = SearchLine(cli.Session, options);
    if (!result.PortFailure.empty())
        throw RuntimeFailure(result.PortFailure);
    if (result.CameToItsEnd())
        return ExitSuccess;
    PrintNote("Stopped while searching the line.");
    return ExitNothingFound;
}

} // namespace

void AddWholeLineOptions(QCommandLineParser& parser, const char* mapHelp) {
    parser.addOption({"map", mapHelp, "FILE"});
    AddSearchRangeOptions(parser);
}

WholeLine ReadWholeLine(const QCommandLineParser& parser) {
    const bool hasMap = parser.isSet("map");
    if (hasMap)
        RefuseSearchRange(parser, "With --map nothing is searched.");
    const SearchOptions search = ReadSearchRange(parser);
    const auto cli = std::make_shared<CliSession>(ReadLineOptions(parser));
    if (search.TimeoutMs)
        SetTimeouts(cli->Session.Line, *search.TimeoutMs);
    if (hasMap)
        UseMap(cli->Session, parser.value("map").toStdString());
    return {cli, search, hasMap};
}

int RunOnModules(const WholeLine& line, const std::function<int(Session& session)>& work) {
    return line.Cli->Run([&] {
        if (!line.HasMap)
            if (const int exit = SearchModules(*line.Cli, line.Search); exit != ExitSuccess)
                return exit;
        return work(line.Cli->Session);
    });
}

} // namespace kavro
