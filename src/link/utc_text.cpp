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
    const std::string_view form = "0000-00-00T00:00:00.000Z";
    if (text.size() != form.size())
        return std::nullopt;
    for (std::size_t at = 0; at < form.size(); ++at)
        if (form[at] == '0' ? text[at] < '0' || text[at] > '9' : text[at] != form[at])
            return std::nullopt;
    const auto number = [&](std::size_t at, std::size_t digits) {
        int value = 0;
        for (const char c : text.substr(at, digits))
            value = 10 * value + (c - '0');
        return value;
    };
    const year_month_day date(year(number(0, 4)), month(static_cast<unsigned>(number(5, 2))),
                              day(static_cast<unsigned>(number(8, 2))));
    if (!date.ok() || number(11, 2) > 23 || number(14, 2) > 59 || number(17, 2) > 59)
        return std::nullopt;
    const sys_time<milliseconds> moment = sys_days(date) + hours(number(11, 2)) + minutes(number(14, 2)) +
                                          seconds(number(17, 2)) + milliseconds(number(20, 3));
    return moment.time_since_epoch().count();
}

std::string ShownUtc(std::string utc) {
    if (utc.size() != Seconds + 1 || utc[DateEnd] != 'T' || utc.back() != 'Z')
        return utc;
    utc[DateEnd] = ' ';
    utc.pop_back();
    return utc + " UTC";
}

} // namespace kavro
