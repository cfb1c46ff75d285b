#include "link/utc_text.h"

#include <chrono>
#include <cstdio>

namespace kavro {

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

} // namespace kavro
