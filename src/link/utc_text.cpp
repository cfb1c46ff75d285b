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

std::string ShownUtc(std::string utc) {
    if (utc.size() != Seconds + 1 || utc[DateEnd] != 'T' || utc.back() != 'Z')
        return utc;
    utc[DateEnd] = ' ';
    utc.pop_back();
    return utc + " UTC";
}

} // namespace kavro
