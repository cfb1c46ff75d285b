#include "cli/search_command.h"

#include "cli/cli_options.h"
#include "cli/cli_session.h"
#include "cli/cli_text.h"
#include "cli/map_output.h"
#include "cli/search_run.h"
#include "link/network_address.h"
#include "link/runtime_failure.h"
#include "ports/map_reader.h"

#include <QCommandLineParser>

#include <memory>

namespace kavro {

namespace {

bool AllAnswer(const Session& session) {
    for (int index = 0; index < session.ModuleCount; ++index)
        if (!session.ModuleTable[index].Answers)
            return false;
    return true;
}

std::string MapOutput(const CliSession& cli, const SearchOptions& options, bool complete) {
    if (!options.Json)
        return MapText(cli.Session);
    PrintedMap map{.Device = cli.Device(), .Complete = complete};
    if (options.Kind != SearchKind::Refresh)
        map.HighestAddress = options.HighestAddress;
    return MapJson(cli.Session, map);
}

int RunSearch(CliSession& cli, SearchOptions options) {
    Session& session = cli.Session;
    options.OneRate = RateIsFixed(cli.Device());
    const SearchResult result = SearchLine(session, options);

    PrintOut(MapOutput(cli, options, result.CameToItsEnd()));
    if (!result.PortFailure.empty())
        throw RuntimeFailure(result.PortFailure);
    if (!result.Stopped.empty())
        PrintNote(result.Stopped);
    if (session.ModuleCount == 0)
        PrintNote("No module found!");
    const bool success = result.CameToItsEnd() && session.ModuleCount > 0 && AllAnswer(session);
    return success ? ExitSuccess : ExitNothingFound;
}

} // namespace

void AddSearchOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Searches a line and prints its modules; \"*\" stands before one in its initialisation state,\n"
        "\"incomplete\" behind one that did not tell everything, and \"no answer\" behind one that is "
        "silent\n"
        "when a map is refreshed. Ctrl+C ends the search, and what was found is printed.\n\n"
        "Exit codes: 0 modules were found, 2 wrong use, 3 port trouble, 4 no module found, one of a map did\n"
        "not answer, or Ctrl+C came.");
    AddSearchRangeOptions(parser);
    parser.addOptions({
        {"refresh",
         "Search nothing, and read the modules of MAP again, where the map has them: one printed by kavroctl "
         "search, with or without --json, or saved in the window. Nothing is taken out.",
         "MAP"},
        {"json", "Print the modules as JSON."},
    });
}

CommandAction PrepareSearch(const QCommandLineParser& parser) {
    const bool refresh = parser.isSet("refresh");
    if (refresh)
        RefuseSearchRange(parser, "--refresh asks the modules of its map and searches nothing.");
    SearchOptions options = ReadSearchRange(parser);
    options.Json = parser.isSet("json");
    const auto cli = std::make_shared<CliSession>(ReadLineOptions(parser));
    if (refresh) {
        const ModuleMap map = ReadMapFile(parser.value("refresh").toStdString());
        TakeOver(cli->Session, map);
        options.Kind = SearchKind::Refresh;
        options.ChecksumsKnown = map.ChecksumsKnown;
    }
    return [options, cli] { return cli->Run([&] { return RunSearch(*cli, options); }); };
}

} // namespace kavro
