#pragma once

#include "link/wall_time.h"
#include "monitor/kept_history.h"
#include "ports/history_schema.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// A history in a SQLite file, over one connection, used in the thread that made it alone.
class SqliteHistory : public ReadingSink {
public:
    /// Opens the file or makes it. `tell` is called in the middle of the calls below. Throws `RuntimeFailure`
    /// when it cannot be opened or is no history.
    SqliteHistory(const HistoryChoice& choice, HistoryTeller tell, WallClock wallClock = SystemTime);

    /// Keeps the gap that is open, or tells what is lost.
    ~SqliteHistory() override;

    /// Stores the readings in one transaction; they are on the disk when it returns. What cannot be stored is
    /// counted: the gap is kept as soon as storing works again. Holds the caller up for as long as the disk
    /// takes, for another program that writes the file by `HistoryBusyMs` at most, and once an hour, while
    /// what is too old goes, by some 30 ms more a call.
    void Take(const std::vector<Reading>& readings) override;

    /// Looks whether storing works again when it has failed, and keeps the gap. For whoever has nothing to
    /// take meanwhile; otherwise `Take` does it.
    void TryAgain();

private:
    struct Gap {
        std::int64_t FromMs = 0, ToMs = 0;
        std::int64_t Lost = 0;
        std::string Reason;
    };
};

} // namespace kavro
