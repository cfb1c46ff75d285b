#pragma once

#include "cli/subcommand.h"

namespace kavro {

/// Adds the options of `kavroctl traffic`.
void AddTrafficOptions(QCommandLineParser& parser);

/// Turns the options of `traffic` into work: it prints a recording in words. Throws `RuntimeFailure` when one
/// is wrong, or the file is no recording.
CommandAction PrepareTraffic(const QCommandLineParser& parser);

} // namespace kavro
