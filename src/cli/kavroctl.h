#pragma once

#include <QStringList>

#include <string_view>

namespace kavro {

/// Runs `kavroctl` with its arguments (without the program's name): picks the command, prints help, version
/// or what is wrong. Returns the exit code, see `ExitCode`.
int RunKavroctl(const QStringList& arguments);

/// Whether a command of `kavroctl` draws, for which it needs a QGuiApplication.
bool NeedsFonts(std::string_view command);

} // namespace kavro
