#pragma once

#include "cli/contact_options.h"
#include "cli/polling.h"
#include "cli/subcommand.h"
#include "cli/value_printer.h"

#include <string>

namespace kavro {

/// Options of `kavroctl read`.
struct ReadOptions {
    std::string Channel = {}; ///< as it is printed, in any case; empty: all of them
    kavro::Pace Pace = {.Turns = 1};
    ValueForm Form = ValueForm::Text;
};

/// Reads the values of a module on the open port and prints them. Returns the exit code.
int ReadValues(Session& session, const Contact& contact, const ReadOptions& options);

/// Adds the options and arguments of `kavroctl read`.
void AddReadOptions(QCommandLineParser& parser);

/// Turns the options of `read` into work. Throws `RuntimeFailure` when one is wrong.
CommandAction PrepareRead(const QCommandLineParser& parser);

} // namespace kavro
