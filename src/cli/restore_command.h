#pragma once

#include "cli/subcommand.h"

namespace kavro {

/// Adds the options of `kavroctl restore`.
void AddRestoreOptions(QCommandLineParser& parser);

/// Turns them into work. Throws `RuntimeFailure` when one is wrong, or the file or its journal is damaged.
CommandAction PrepareRestore(const QCommandLineParser& parser);

} // namespace kavro
