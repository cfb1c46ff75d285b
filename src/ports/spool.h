#pragma once

#include "link/wall_time.h"
#include "monitor/kept_history.h"
#include "monitor/reading.h"
#include "ports/spool_file.h"

#include <cstdint>
#include <exception>
#include <memory>
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
/// A kill loses nothing that was taken. A power cut may lose what was taken in the last second; what any
/// outlet has sent is kept or sent again.
class Spool : public ReadingSink {
public:
    /// Opens the file or makes it, and locks it. What waits for outlets that are named no more goes. `tell`
    /// is called in the middle of the calls below. Throws `RuntimeFailure` when it cannot be opened, is no
    /// spool, is that of another line, or is used by another program.
    Spool(const SpoolChoice& choice, HistoryTeller tell, WallClock wallClock = SystemTime);

    /// Keeps what is to be told of lost readings, or tells it.
    ~Spool() override;

    /// Puts the readings into the file. One at a time that a waiting reading of the same value has already,
    /// as the clock was put back, gets the next free millisecond. What cannot be stored is counted, told
    /// once, and becomes a gap as soon as storing works again. Holds the caller up for the local disk alone.
    void Take(const std::vector<Reading>& readings) override;

    /// What tells this file from any other, however it is named, for destinations that keep how far they are.
    const std::string& Id() const { return id_; }

private:
    // Readings that could not be stored.
    struct Lost {
        std::int64_t FromMs = 0, ToMs = 0, Count = 0;
        std::string Reason; // of the first
        bool Told = false;
    };

    void Store(const std::vector<Reading>& readings);
    void Insert(const Reading& reading);
    void KeepLost() const;
    void DropOldest();
    void Failed(const std::vector<Reading>& readings, const std::exception& failure);

    SpoolChoice choice_;
    HistoryTeller tell_;
    WallClock wallClock_;
    std::unique_ptr<SpoolLock> lock_;
    std::unique_ptr<SpoolConnection> connection_;
    std::string id_;
    std::int64_t nextRow_ = 0; // its id
    std::optional<Lost> lost_; // storing does not work
};

} // namespace kavro
