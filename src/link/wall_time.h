#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kavro {

/// A moment on the wall clock and how local time stands to it.
struct WallTime {
    std::int64_t UnixMs = 0; ///< milliseconds since 1970-01-01 00:00 UTC
    int OffsetMinutes = 0;   ///< local time minus UTC
};

/// Tells what time it is.
using WallClock = std::function<WallTime()>;

/// The last moment of the year 9999, in ms: texts have no later one.
inline constexpr std::int64_t LastMomentMs = 253'402'300'799'999;

/// A moment with how local time, in the machine's time zone, stood to UTC then.
WallTime LocalMoment(std::int64_t unixMs);

/// The machine's time in its time zone.
WallTime SystemTime();

/// Local time with milliseconds and offset: "2031-02-03T04:05:06.789+01:00".
std::string IsoTime(const WallTime& time);

} // namespace kavro
