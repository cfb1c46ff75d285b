#pragma once

#include "link/wall_time.h"
#include "monitor/kept_history.h"
#include "monitor/reading.h"
#include "ports/spool_file.h"
#include "ports/spool_flusher.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Which spool is used.
struct SpoolChoice {
    std::string Path;                 ///< of the file
    std::string Line;                 ///< whose readings it holds; a file has those of one line
    std::int64_t LimitBytes = 0;      ///< what its content may take; beyond that the oldest readings go
    std::vector<std::string> Outlets; ///< names of those that take from it
};

/// A local SQLite file through which readings go to destinations that may be away. It is filled here, in the
/// thread that made it alone, and emptied by a `SpoolOutlet` each, in threads and with connections of their
/// own. What all outlets have done goes.
///
/// A kill loses nothing that was taken. A power cut may lose what was taken in the last seconds; what any
/// outlet has sent is kept or sent again.
class Spool : public ReadingSink {
public:
    /// Opens the file or makes it, and locks it. `tell` is called in the middle of the calls below. Throws
    /// `RuntimeFailure` when it cannot be opened, is no spool, is used by another program, or has readings
    /// that wait of another line, or for an outlet that is not named.
    Spool(const SpoolChoice& choice, HistoryTeller tell, WallClock wallClock = SystemTime);

    /// Keeps what is to be told of lost readings, or tells it.
    ~Spool() override;

    /// Puts the readings into the file. One at a time that a waiting reading of the same value has already,
    /// as the clock was put back, gets the next free millisecond. What cannot be stored is counted, told
    /// once, and becomes a gap as soon as storing works again. Waits for the disk only to begin a journal
    /// anew.
    void Take(const std::vector<Reading>& readings) override;

    /// What tells this file from any other, however it is named, for destinations that keep how far they are.
    const std::string& Id() const { return id_; }

private:
    using Moment = std::chrono::steady_clock::time_point;

    void Begin();
    void TakeOver();
    void KeepOutlets() const;
    void Store(const std::vector<Reading>& readings);
    void Insert(QSqlQuery& insert, const Reading& reading);
    void KeepLost() const;
    void KeepWithin();
    std::int64_t Used() const;
    void TellDropped();
    void DropSlice(const std::string& advice);
    void Failed(const std::vector<Reading>& readings, const std::exception& failure);
    void Recovered();

    SpoolChoice choice_;
    HistoryTeller tell_;
    WallClock wallClock_;
    SpoolLock lock_;
    SpoolConnection connection_;
    std::optional<SpoolFlusher> flusher_; // once the file is made
    std::string id_;
    std::int64_t nextRow_ = 0;                // its id
    std::size_t unmeasured_ = 0;              // readings since the size was looked at
    std::map<std::string, SpoolGap> dropped_; // by outlet, since the spool is full
    std::optional<SpoolGap> lost_;            // storing does not work
    bool lostTold_ = false;
    std::optional<Moment> told_; // of a failure, last
};

} // namespace kavro
