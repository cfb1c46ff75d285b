#pragma once

#include "cli/contact_options.h"
#include "cli/subcommand.h"

#include <string>
#include <vector>

namespace kavro {

/// An output and what it is to become.
struct OutputChange {
    std::string Output; ///< its name as it was given; empty for the output of a module that has one
    std::string Value;
};

/// Drives outputs of a module on the open port, in order, and prints each command with its reply and what the
/// output stood at before and stands at now. Nothing is driven when one of the changes is not possible.
/// Returns the exit code.
int DriveOutputs(Session& session, const Contact& contact, const std::vector<OutputChange>& changes,
                 bool json);

/// Adds the options and arguments of `kavroctl output`.
void AddOutputOptions(QCommandLineParser& parser);

/// Turns the options of `output` into work. Throws `RuntimeFailure` when one is wrong.
CommandAction PrepareOutput(const QCommandLineParser& parser);

} // namespace kavro
