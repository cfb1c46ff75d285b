#pragma once

#include "cli/subcommand.h"

namespace kavro {

/// Adds the options of `kavroctl send`.
void AddSendOptions(QCommandLineParser& parser);

/// Turns the options of `send` into work: it sends the commands as the terminal sends typed ones, and prints
/// each with its reply. Throws `RuntimeFailure` when one is wrong.
CommandAction PrepareSend(const QCommandLineParser& parser);

/// Adds the options of `kavroctl batch`.
void AddBatchOptions(QCommandLineParser& parser);

/// Turns the options of `batch` into work: it runs a batch file as the terminal does, and prints each line
/// with its reply. Throws `RuntimeFailure` when one is wrong.
CommandAction PrepareBatch(const QCommandLineParser& parser);

} // namespace kavro
