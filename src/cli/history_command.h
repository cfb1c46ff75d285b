#pragma once

#include "cli/subcommand.h"

namespace kavro {

/// Adds the options of `kavroctl history`.
void AddHistoryOptions(QCommandLineParser& parser);

/// Turns the options of `history` into work. Throws `RuntimeFailure` when one is wrong or the file is no
/// history.
CommandAction PrepareHistory(const QCommandLineParser& parser);

} // namespace kavro
