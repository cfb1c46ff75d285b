#pragma once

#include "cli/subcommand.h"

namespace kavro {

/// Adds the options of `kavroctl backup`.
void AddBackupOptions(QCommandLineParser& parser);

/// Turns them into work. Throws `RuntimeFailure` when one is wrong, or what stands at the path is no line
/// file.
CommandAction PrepareBackup(const QCommandLineParser& parser);

} // namespace kavro
