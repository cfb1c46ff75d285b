#pragma once

#include "monitor/csv_log.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kavro {

/// A mark of a time axis that ends now.
struct TimeMark {
    std::int64_t AgeMs = 0; ///< how far before the end it stands
    std::string Text;       ///< "-2 min", or "14:05"
    std::string Date;       ///< to stand below it; empty where it is that of the mark before
};

/// Marks every `stepMinutes` back from the end of an axis of `spanMs`, oldest first: "-2 min", "now".
std::vector<TimeMark> MarksBeforeNow(std::int64_t spanMs, int stepMinutes);

/// The same at round minutes of local time when the axis ends at `now`. The first mark has its date, and so
/// has each that begins a day.
std::vector<TimeMark> ClockMarks(std::int64_t spanMs, int stepMinutes, const WallTime& now);

} // namespace kavro
