#pragma once

#include "monitor/kept_history.h"

namespace kavro {

/// Opens a history in a SQLite file, or makes the file: a `HistoryOpener`. Readings are stored in a thread of
/// their own and read back in another, both with a connection of their own; the history itself is used in the
/// thread that opened it alone. Waits up to 5 s for the file to open, and as long for what is left to be
/// stored when the history goes; what is not by then is told to be lost.
std::unique_ptr<KeptHistory> OpenKeptHistory(const HistoryChoice& choice, HistoryTeller tell);

} // namespace kavro
