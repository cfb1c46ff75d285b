#pragma once

#include "cli/subcommand.h"

namespace kavro {

/// Adds the options of `kavroctl search`.
void AddSearchOptions(QCommandLineParser& parser);

/// Turns the options of `search` into work: it searches a line, or refreshes a map, with progress on standard
/// error, and prints the modules, also those found before the port failed or Ctrl+C ended it. Throws
/// `RuntimeFailure` when an option is wrong or the map cannot be read.
CommandAction PrepareSearch(const QCommandLineParser& parser);

} // namespace kavro
