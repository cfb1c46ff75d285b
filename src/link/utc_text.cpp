#include "link/utc_text.h"

#include <chrono>
#include <cstdio>

namespace kavro {

namespace {

constexpr std::size_t DateEnd = 10, Seconds = 19; // of "2026-03-02T14:05:09.120345Z"

} // namespace

std::string UtcText(std::int64_t utc) {
    using namespace std::chrono;
    const sys_time<microseconds> moment{microseconds(utc)};
    const auto day = floor<days>(moment);
    const year_month_day date(day);
    const hh_mm_ss<microseconds> time(moment - day);
    char text[64] = {};
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    return text;
}

std::string UtcToSecond(std::int64_t utc) {
    return UtcText(utc).substr(0, Seconds) + "Z";
}

std::string UtcMsText(std::int64_t unixMs) {
    std::string text = UtcText(1000 * unixMs);
    text.erase(text.size() - 4, 3); // the microseconds before the Z
    return text;
}

std::optional<std::int64_t> MsOfUtcText(std::string_view text) {
    using namespace std::chrono;
    int year = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
    unsigned month = 0, day = 0;
    if (std::sscanf(std::string(text).c_str(), "%4d-%2u-%2uT%2d:%2d:%2d.%3dZ", &year, &month, &day, &hour,
                    &minute, &second, &millisecond) != 7)
        return std::nullopt;
    const year_month_day date{std::chrono::year(year), std::chrono::month(month), std::chrono::day(day)};
    if (!date.ok())
        return std::nullopt;
    const sys_time<milliseconds> moment =
        sys_days(date) + hours(hour) + minutes(minute) + seconds(second) + milliseconds(millisecond);
    const std::int64_t unixMs = moment.time_since_epoch().count();
    return UtcMsText(unixMs) == text ? std::optional(unixMs) : std::nullopt;
}

std::string ShownUtc(std::string utc) {
    if (utc.size() != Seconds + 1 || utc[DateEnd] != 'T' || utc.back() != 'Z')
        return utc;
    utc[DateEnd] = ' ';
    utc.pop_back();
    return utc + " UTC";
}

} // namespace kavro
