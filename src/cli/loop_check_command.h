#pragma once

#include "cli/subcommand.h"

namespace kavro {

/// Adds the options of `kavroctl loop-check`.
void AddLoopCheckOptions(QCommandLineParser& parser);

/// Turns them into work. Throws `RuntimeFailure` when one is wrong, the file or what is kept of a check is
/// damaged, or nobody is at a terminal.
CommandAction PrepareLoopCheck(const QCommandLineParser& parser);

} // namespace kavro
