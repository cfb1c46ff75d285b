#pragma once

#include "cli/subcommand.h"

namespace kavro {

/// Adds the options of `kavroctl report`.
void AddReportOptions(QCommandLineParser& parser);

/// Turns the options of `report` into work. Throws `RuntimeFailure` when one is wrong, or when a file that
/// the report is made of cannot be used.
CommandAction PrepareReport(const QCommandLineParser& parser);

} // namespace kavro
