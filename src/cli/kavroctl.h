#pragma once

#include <QStringList>

namespace kavro {

/// Runs `kavroctl` with its arguments (without the program's name): picks the command, prints help, version
/// or what is wrong. Returns the exit code, see `ExitCode`.
int RunKavroctl(const QStringList& arguments);

} // namespace kavro
