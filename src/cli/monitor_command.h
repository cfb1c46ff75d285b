#pragma once

#include "cli/polling.h"
#include "cli/subcommand.h"
#include "cli/value_printer.h"
#include "map/session.h"

namespace kavro {

/// Reads the modules of the map in rounds, one in each interval of `rounds`, whose turns are the rounds, and
/// prints the values. The port is open. Returns the exit code, which tells whether values of the last of the
/// rounds asked for failed.
int MonitorModules(Session& session, const Pace& rounds, ValueForm form);

/// Adds the options of `kavroctl monitor`.
void AddMonitorOptions(QCommandLineParser& parser);

/// Turns the options of `monitor` into work. Throws `RuntimeFailure` when one is wrong.
CommandAction PrepareMonitor(const QCommandLineParser& parser);

} // namespace kavro
