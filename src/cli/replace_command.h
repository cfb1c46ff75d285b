#pragma once

#include "cli/subcommand.h"
#include "map/session.h"
#include "project/line_file.h"

namespace kavro {

/// What is to be replaced.
struct ReplaceOptions {
    SavedModule Saved; ///< as the line file has the dead module
    int WaitS = 120; ///< for the new module, in seconds: first in its initialisation state, then in its place
};

/// Gives a new module in its initialisation state the settings of a dead one, waits until it is in its place,
/// and reads it back. Says what is to be done at the line. Returns the exit code; throws `RuntimeFailure`
/// when the port fails, with the state of the new module told.
int ReplaceModule(Session& session, const ReplaceOptions& options);

/// The command `replace` for the table of commands.
void AddReplaceOptions(QCommandLineParser& parser);
CommandAction PrepareReplace(const QCommandLineParser& parser);

} // namespace kavro
