#pragma once

#include "link/disk_pace.h"
#include "link/wall_time.h"
#include "monitor/kept_history.h"
#include "ports/history_schema.h"
#include "ports/history_trim.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kavro {

/// The machine's time, in UTC: that of its time zone is for the main thread alone.
WallTime UtcTime();

/// A history in a SQLite file, over one connection, used in the thread that made it alone.
class SqliteHistory : public ReadingSink {
public:
    /// Opens the file or makes it. `tell` is called in the middle of the calls below. Throws `RuntimeFailure`
    /// when it cannot be opened or is no history. `busyMs`: the longest wait for another program that writes
    /// the file.
    SqliteHistory(const HistoryChoice& choice, HistoryTeller tell, WallClock wallClock = UtcTime,
                  int busyMs = SqliteBusyMs);

    /// Keeps the gap that is open, or tells what is lost.
    ~SqliteHistory() override;

    /// Stores the readings in one transaction, which a kill cannot take away when it returns. Once a second
    /// the disk is waited for, so that a power cut costs what came in between at most. What cannot be stored
    /// is counted, and the gap is kept as soon as storing works again. Holds the caller up for as long as the
    /// disk takes, for another program that writes the file by `busyMs` at most, and while what is too
    /// old goes by some 10 ms and a commit more. A reading at a time that its value has already, as the clock
    /// was put back, is kept at the next free millisecond.
    void Take(const std::vector<Reading>& readings) override;

    /// Counts readings that never came here, from that moment on, as a gap: the next `Take` or `TryAgain`
    /// keeps it.
    void Miss(std::int64_t fromMs, std::int64_t lost, const std::string& reason);

    /// Looks whether storing works again when it has failed, and keeps the gap. For whoever has nothing to
    /// take meanwhile; otherwise `Take` does it.
    void TryAgain();

private:
    // Readings that could not be stored.
    struct Gap {
        WallTime From;
        std::int64_t Lost = 0;
        std::string Reason; // of the first
        int Code = 0;       // of SQLite
        bool Told = false;
    };

    void Store(const std::vector<Reading>& readings, std::int64_t nowMs);
    void Insert(QSqlQuery& insert, const Reading& reading) const;
    void InsertGap(std::int64_t toMs) const;
    const HistoryConnection& Connection();
    void Failed(const std::vector<Reading>& readings, const WallTime& now, const std::exception& failure);
    void CloseGap();
    void Trim(std::int64_t nowMs);

    HistoryChoice choice_;
    HistoryTeller tell_;
    WallClock wallClock_;
    int busyMs_;
    std::unique_ptr<HistoryConnection> connection_; // none while the file cannot be used
    std::optional<std::pair<std::uint64_t, std::uint64_t>>
        file_; // device and number of the file that is open
    std::optional<HistoryTrim> trim_;
    std::optional<Gap> gap_;             // storing does not work
    std::optional<std::int64_t> toldMs_; // of a failure, last
    bool trimFails_ = false;
    DiskPace diskPace_;
};

} // namespace kavro
