#pragma once

#include "cli/cli_session.h"
#include "cli/search_options.h"
#include "map/session.h"

#include <string>

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

/// The same for a command that then works with the modules found. An exit code unless the search came to its
/// end, which is told; throws `RuntimeFailure` when the port failed.
int SearchModules(CliSession& cli, SearchOptions options);

} // namespace kavro
