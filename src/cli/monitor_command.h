#pragma once

#include "cli/polling.h"
#include "cli/subcommand.h"
#include "cli/value_printer.h"
#include "map/session.h"
#include "monitor/module_description.h"
#include "monitor/reading.h"

#include <functional>

namespace kavro {

/// Where the values of a monitor go beside standard output; each may be missing.
struct MonitorSinks {
    ReadingSink* Readings = nullptr;
    std::function<void(const ModuleDescription& description)> Descriptions{}; ///< of modules that answer
};

/// Reads the modules of the map in rounds, one in each interval of `rounds`, whose turns are the rounds, and
/// hands their values to the sinks and prints them. The port is open. Returns the exit code, which tells
/// whether values of the last of the rounds asked for failed.
int MonitorModules(Session& session, const Pace& rounds, ValueForm form, const MonitorSinks& sinks = {});

/// Adds the options of `kavroctl monitor`.
void AddMonitorOptions(QCommandLineParser& parser);

/// Turns the options of `monitor` into work. Throws `RuntimeFailure` when one is wrong.
CommandAction PrepareMonitor(const QCommandLineParser& parser);

} // namespace kavro
