#include "monitor/time_marks.h"

#include <algorithm>
#include <array>

namespace kavro {

namespace {

constexpr std::int64_t Second = 1000, Minute = 60 * Second, Hour = 60 * Minute, Day = 24 * Hour;
constexpr std::array Steps = {Second,  2 * Second, 5 * Second, 10 * Second, 15 * Second, 30 * Second,
                              Minute,  2 * Minute, 5 * Minute, 10 * Minute, 15 * Minute, 30 * Minute,
                              Hour,    2 * Hour,   3 * Hour,   6 * Hour,    12 * Hour,   Day,
                              2 * Day, 7 * Day,    14 * Day,   28 * Day,    56 * Day};

// How far local time is past a multiple of the step.
std::int64_t Past(const WallTime& time, std::int64_t step) {
    const std::int64_t past = (time.UnixMs + time.OffsetMinutes * Minute) % step;
    return past < 0 ? past + step : past;
}

// The first mark after a moment. Where the clocks were changed in between a step is longer or shorter.
std::int64_t NextMark(std::int64_t afterMs, std::int64_t step, const LocalTimes& local) {
    const std::int64_t mark = afterMs + step - Past(local(afterMs), step);
    const std::int64_t past = Past(local(mark), step);
    const std::int64_t round = past < step / 2 ? mark - past : mark + step - past;
    return past == 0 || round <= afterMs ? mark : round;
}

} // namespace

std::vector<TimeMark> TimeMarks(std::int64_t fromMs, std::int64_t toMs, std::int64_t leastMs,
                                const LocalTimes& local) {
    const auto* const found = std::ranges::lower_bound(Steps, leastMs);
    const std::int64_t step = found == Steps.end() ? Steps.back() : *found;
    std::vector<TimeMark> marks;
    std::string date;
    for (std::int64_t at = NextMark(fromMs - 1, step, local); at <= toMs; at = NextMark(at, step, local)) {
        const std::string time = IsoTime(local(at)); // "2031-02-03T04:05:06..."
        const std::string day = time.substr(0, 10);
        marks.push_back({at, time.substr(11, step < Minute ? 8 : 5), day == date ? "" : day});
        date = day;
    }
    return marks;
}

std::string MomentText(const WallTime& time, const WallTime& now, bool milliseconds) {
    const std::string text = IsoTime(time);
    const std::string clock = text.substr(11, milliseconds ? 12 : 8);
    const std::string day = text.substr(0, 10);
    return day == IsoTime(now).substr(0, 10) ? clock : day + " " + clock;
}

} // namespace kavro
