#pragma once

#include "cli/contact_options.h"
#include "cli/subcommand.h"
#include "config/setting_changes.h"
#include "map/session.h"

#include <string>
#include <vector>

namespace kavro {

/// Reads the settings of a module on the open port and prints them. Returns the exit code.
int ShowConfig(Session& session, const Contact& contact, bool json);

/// Reads the settings of a module on the open port and writes them with the changes. Nothing is written when
/// one of them is not possible, or, unless `force`, is hardly meant: an address that another module has, or a
/// low alarm limit above the high one. Tells what the module's dialog tells, on standard error. Returns the
/// exit code.
int SetConfig(Session& session, const Contact& contact, const std::vector<Assignment>& changes,
              bool force = false);

/// Adds the options and arguments of `kavroctl config`.
void AddConfigOptions(QCommandLineParser& parser);

/// Turns the options of `config` into work. Throws `RuntimeFailure` when one is wrong.
CommandAction PrepareConfig(const QCommandLineParser& parser);

} // namespace kavro
