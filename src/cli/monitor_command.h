#pragma once

#include "cli/polling.h"
#include "cli/subcommand.h"
#include "cli/value_printer.h"
#include "map/session.h"
#include "monitor/reading.h"

namespace kavro {

/// Reads the modules of the map in rounds, one in each interval of `rounds`, whose turns are the rounds, and
/// hands their values to `history`, unless it is null, and prints them. The port is open. Returns the exit
/// code, which tells whether values of the last of the rounds asked for failed.
int MonitorModules(Session& session, const Pace& rounds, ValueForm form, ReadingSink* history = nullptr);

/// Adds the options of `kavroctl monitor`.
void AddMonitorOptions(QCommandLineParser& parser);

/// Turns the options of `monitor` into work. Throws `RuntimeFailure` when one is wrong.
CommandAction PrepareMonitor(const QCommandLineParser& parser);

} // namespace kavro
