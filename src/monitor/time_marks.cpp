#include "monitor/time_marks.h"

namespace kavro {

namespace {

constexpr std::int64_t MinuteMs = 60'000;

} // namespace

std::vector<TimeMark> MarksBeforeNow(std::int64_t spanMs, int stepMinutes) {
    std::vector<TimeMark> marks;
    for (std::int64_t age = spanMs / MinuteMs / stepMinutes * stepMinutes; age >= 0; age -= stepMinutes)
        marks.push_back({age * MinuteMs, age == 0 ? "now" : "-" + std::to_string(age) + " min", {}});
    return marks;
}

std::vector<TimeMark> ClockMarks(std::int64_t spanMs, int stepMinutes, const WallTime& now) {
    const std::int64_t step = stepMinutes * MinuteMs;
    const std::int64_t newest = (now.UnixMs + now.OffsetMinutes * MinuteMs) % step;
    std::vector<TimeMark> marks;
    std::string date;
    for (std::int64_t age = newest + (spanMs - newest) / step * step; age >= newest; age -= step) {
        const std::string time = IsoTime({now.UnixMs - age, now.OffsetMinutes}); // "2031-02-03T04:05:..."
        const std::string day = time.substr(0, 10);
        marks.push_back({age, time.substr(11, 5), day == date ? "" : day});
        date = day;
    }
    return marks;
}

} // namespace kavro
