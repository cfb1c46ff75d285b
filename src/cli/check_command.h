#pragma once

#include "cli/subcommand.h"
#include "map/session.h"

namespace kavro {

/// Checks the modules of the session on its open port, with progress on standard error, until Ctrl+C, and
/// prints what was found, also when the port fails. Returns the exit code.
int CheckModules(Session& session, int passes, bool json);

/// Adds the options of `kavroctl check`.
void AddCheckOptions(QCommandLineParser& parser);

/// Turns the options of `check` into work. Throws `RuntimeFailure` when one is wrong.
CommandAction PrepareCheck(const QCommandLineParser& parser);

} // namespace kavro
