#pragma once

#include "cli/subcommand.h"
#include "map/search_findings.h"
#include "map/session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Options of `kavroctl search`.
struct SearchOptions {
    std::int16_t HighestAddress = 255;
    std::vector<std::int16_t> BaudCodes;   ///< to try; empty: those of the port's settings
    std::optional<std::int16_t> TimeoutMs; ///< nothing: that of the settings
    bool Json = false;
};

/// What became of a search.
struct SearchResult {
    int LastAddress = 0;      ///< the last one that was begun
    std::string PortFailure;  ///< what ended the search early; empty when nothing did
    bool Interrupted = false; ///< by Ctrl+C, in the middle of an address
    SearchFindings Findings;  ///< told on standard error already
};

/// Searches the open port, with progress on standard error, until Ctrl+C.
SearchResult SearchLine(Session& session, const SearchOptions& options);

/// Adds the options that say what is searched.
void AddSearchRangeOptions(QCommandLineParser& parser);

/// Adds the options of `search`.
void AddSearchOptions(QCommandLineParser& parser);

/// Reads the options of `search`. Throws `RuntimeFailure` when one is wrong.
SearchOptions ReadSearchOptions(const QCommandLineParser& parser);

/// Turns the options of `search` into work: it searches a line, with progress on standard error, and prints
/// the modules found, also those found before the port failed or Ctrl+C ended the search.
CommandAction PrepareSearch(const QCommandLineParser& parser);

} // namespace kavro
