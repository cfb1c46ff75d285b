#pragma once

#include "cli/mqtt_options.h"
#include "map/session.h"
#include "monitor/kept_history.h"
#include "ports/postgres_address.h"
#include "ports/spool.h"

#include <memory>
#include <optional>

class QCommandLineParser;

namespace kavro {

/// Where values are kept or sent.
struct StoreChoice {
    std::shared_ptr<ReadingSink> History;    ///< in a file, open
    std::optional<PostgresAddress> Database; ///< through the spool
    std::optional<BrokerChoice> Broker;      ///< through the spool, too
    std::optional<SpoolChoice> Spool;        ///< when anything goes through it
};

/// Adds --store, --keep, --line, --spool and --spool-limit, and what belongs to a broker.
void AddStoreOptions(QCommandLineParser& parser);

/// Reads them, and opens a history, which tells on standard error what becomes of it. Unless --line names the
/// line it is that of the line file that is open. Throws `RuntimeFailure` when one of them is wrong or out of
/// place, or the history cannot be opened.
StoreChoice ReadStore(const QCommandLineParser& parser, const Session& session);

/// Begins what was chosen; null when nothing was. Throws `RuntimeFailure` when the spool cannot be opened, or
/// a destination refuses.
std::shared_ptr<ReadingSink> OpenStore(const StoreChoice& choice);

} // namespace kavro
