#pragma once

#include "link/wall_time.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kavro {

/// A mark of a time axis.
struct TimeMark {
    std::int64_t AtMs = 0; ///< UTC
    std::string Text;      ///< local time, "14:05" or "14:05:09"
    std::string Date;      ///< to stand below it; empty where it is that of the mark before
};

/// How local time stood to UTC at a moment.
using LocalTimes = std::function<WallTime(std::int64_t unixMs)>;

/// Marks at round local times from `fromMs` to `toMs`, oldest first and at least `leastMs` apart, seconds to
/// weeks. The first mark has its date, and so has each that begins a day. Where clocks are changed the marks
/// stay at round times.
std::vector<TimeMark> TimeMarks(std::int64_t fromMs, std::int64_t toMs, std::int64_t leastMs,
                                const LocalTimes& local = LocalMoment);

/// Local time of a moment, "14:05:09" or "14:05:09.120" with `milliseconds`, led by the date when that is not
/// the date of `now`.
std::string MomentText(const WallTime& time, const WallTime& now, bool milliseconds);

} // namespace kavro
