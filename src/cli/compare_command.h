#pragma once

#include "cli/cli_session.h"
#include "cli/subcommand.h"
#include "project/line_comparison.h"

#include <memory>
#include <string>

namespace kavro {

/// The line of a command that works with a line file: --map beside the options of a line.
void AddFileLineOptions(QCommandLineParser& parser);

/// Reads them. Throws `RuntimeFailure` when one is wrong.
std::shared_ptr<CliSession> ReadFileLine(const QCommandLineParser& parser);

/// The line file that the first argument names. Throws `RuntimeFailure` when there is none, or it is damaged.
LineFile ReadFileArgument(const QCommandLineParser& parser);

/// What differs, for people; empty when nothing does.
std::string ComparisonText(const LineComparison& comparison);

/// The same as a JSON object.
std::string ComparisonJson(const LineComparison& comparison);

/// What the exit code says of a comparison.
int ComparisonExit(const LineComparison& comparison);

/// Adds the options of `kavroctl compare`.
void AddCompareOptions(QCommandLineParser& parser);

/// Turns them into work. Throws `RuntimeFailure` when one is wrong, or the file is damaged.
CommandAction PrepareCompare(const QCommandLineParser& parser);

} // namespace kavro
