#include "cli/search_command.h"

#include "cli/cli_options.h"
#include "cli/cli_session.h"
#include "cli/cli_text.h"
#include "cli/interrupt.h"
#include "cli/map_output.h"
#include "cli/search_progress.h"
#include "link/runtime_failure.h"
#include "map/search.h"

#include <QCommandLineParser>

#include <memory>

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
    if (options.TimeoutMs)
        SetTimeouts(line, *options.TimeoutMs);
}

SearchResult SearchWithProgress(Session& session) {
    SearchResult result;
    const InterruptWatch watch(session.Line);
    std::optional<SearchProgress> progress;
    NetworkSearch* running = nullptr;
    SearchEvents events;
    events.Address = [&](std::int16_t address) { result.LastAddress = progress->Address = address; };
    events.Baud = [&](std::int32_t baud) {
        progress->Baud = baud;
        progress->Show();
    };
    events.Found = [&](int index) {
        progress->Found = index + 1;
        progress->Show();
    };
    events.Yield = [&] {
        if (!watch.Interrupted())
            return;
        running->Stop();
        progress->Stopping = true;
        progress->Show();
    };
    NetworkSearch search(session, events, Belief::Strict);
    running = &search;
    progress.emplace(search, session.SearchHighAddress);
    try {
        search.Run();
    } catch (const Interruption&) {
        result.Interrupted = true;
    } catch (const RuntimeFailure& failure) {
        result.PortFailure = failure.what();
    }
    result.Findings = search.Findings();
    return result;
}

int RunSearch(CliSession& cli, const SearchOptions& options) {
    Session& session = cli.Session;
    cli.OpenPort();
    const SearchResult result = SearchLine(session, options);

    const bool lostPort = !result.PortFailure.empty();
    const bool complete = !lostPort && !result.Interrupted && result.LastAddress == session.SearchHighAddress;
    PrintOut(options.Json ? MapJson(session, {cli.Device(), complete}) : MapText(session));
    if (lostPort)
        throw RuntimeFailure(result.PortFailure);
    if (!complete)
        PrintNote("Stopped after address " + std::to_string(result.LastAddress) + " of " +
                  std::to_string(session.SearchHighAddress) + ".");
    if (session.ModuleCount == 0)
        PrintNote("No module found!");
    return complete && session.ModuleCount > 0 ? ExitSuccess : ExitNothingFound;
}

} // namespace

SearchResult SearchLine(Session& session, const SearchOptions& options) {
    ApplyOptions(options, session);
    SearchResult result = SearchWithProgress(session);
    SearchFindings findings = result.Findings;
    findings.StoppedAfter.reset(); // told by the command, which knows of interruptions too
    for (const std::string& text : FindingTexts(findings))
        PrintNote(text);
    return result;
}

void AddSearchRangeOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {"to", "Search the addresses 0 to ADDRESS; 255 unless given. Hexadecimal as 0xFF or FFH.", "ADDRESS"},
        {"baud", "Baud rates to try, separated by commas; those of the port's settings unless given.",
         "LIST"},
        {"timeout", "Silence after which a reply is given up, in milliseconds, at least 100.", "MS"},
    });
}

void AddSearchOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Searches a line and prints its modules; \"*\" stands before one in its initialisation state,\n"
        "\"incomplete\" behind one that did not tell everything. Ctrl+C ends the search, and what was found\n"
        "is printed.\n\n"
        "Exit codes: 0 modules were found, 2 wrong use, 3 port trouble, 4 no module found, or Ctrl+C came.");
    AddSearchRangeOptions(parser);
    parser.addOption({"json", "Print the modules as JSON."});
}

SearchOptions ReadSearchOptions(const QCommandLineParser& parser) {
    SearchOptions options;
    if (parser.isSet("to"))
        options.HighestAddress = ParseAddress(parser.value("to").toStdString());
    if (parser.isSet("baud"))
        options.BaudCodes = ParseBaudList(parser.value("baud").toStdString());
    if (parser.isSet("timeout"))
        options.TimeoutMs = ParseTimeout(parser.value("timeout").toStdString());
    options.Json = parser.isSet("json");
    return options;
}

CommandAction PrepareSearch(const QCommandLineParser& parser) {
    const SearchOptions options = ReadSearchOptions(parser);
    const auto cli = std::make_shared<CliSession>(ReadLineOptions(parser));
    return [options, cli] { return RunSearch(*cli, options); };
}

} // namespace kavro
