#pragma once

#include "cli/subcommand.h"

namespace kavro {

/// `kavroctl listen`: prints what another master and its modules say, and sends nothing.
void AddListenOptions(QCommandLineParser& parser);
CommandAction PrepareListen(const QCommandLineParser& parser);

} // namespace kavro
