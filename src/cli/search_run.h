#pragma once

#include "cli/cli_session.h"
#include "cli/search_options.h"
#include "map/session.h"

#include <functional>
#include <memory>
#include <string>

class QCommandLineParser;

namespace kavro {

/// What became of a search.
struct SearchResult {
    std::string Stopped;     ///< where it was stopped, a sentence; empty when it came to its end
    std::string PortFailure; ///< what ended it early; empty when nothing did

    bool CameToItsEnd() const { return Stopped.empty() && PortFailure.empty(); }
};

/// Searches the open port, or refreshes the modules of the session, with progress and what else there is to
/// tell on standard error, until Ctrl+C.
SearchResult SearchLine(Session& session, const SearchOptions& options);

/// The line of a command that works with all its modules: those of --map, or else those that a search finds.
struct WholeLine {
    std::shared_ptr<CliSession> Cli;
    SearchOptions Search;
    bool HasMap = false; ///< nothing is searched
};

/// Adds --map, for which `mapHelp` is the text, and the options of a search.
void AddWholeLineOptions(QCommandLineParser& parser, const char* mapHelp);

/// Reads them, and the options of the line. Throws `RuntimeFailure` when one is wrong.
WholeLine ReadWholeLine(const QCommandLineParser& parser);

/// Opens the port, searches unless there is a map, and works with the modules. An exit code when the search
/// did not come to its end, which is told; throws `RuntimeFailure` when the port failed.
int RunOnModules(const WholeLine& line, const std::function<int(Session& session)>& work);

} // namespace kavro
