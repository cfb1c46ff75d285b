#pragma once

#include "map/session.h"
#include "monitor/reading.h"

#include <memory>

class QCommandLineParser;

namespace kavro {

/// Adds --store, --keep and --line.
void AddStoreOptions(QCommandLineParser& parser);

/// Throws `RuntimeFailure` when one of them is wrong or out of place; does nothing else.
void RequireStoreOptions(const QCommandLineParser& parser);

/// Opens the history that the options ask for, which tells on standard error what becomes of it; null without
/// --store. Unless --line names the line it is that of the line file that is open. Throws `RuntimeFailure`
/// when it cannot be opened.
std::shared_ptr<ReadingSink> OpenStore(const QCommandLineParser& parser, const Session& session);

} // namespace kavro
