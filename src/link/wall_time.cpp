#include "link/wall_time.h"

#include "link/local_time.h"
#include "link/text.h"

#include <chrono>
#include <cstdlib>
#include <ctime>

namespace kavro {

namespace {

std::string Digits(std::int64_t value, std::size_t width) {
    return PadLeft(std::to_string(value), width, '0');
}

int OffsetMinutes(std::chrono::sys_seconds moment, const std::tm& local) {
    using namespace std::chrono;
    const year_month_day date(year(local.tm_year + 1900), month(static_cast<unsigned>(local.tm_mon) + 1),
                              day(static_cast<unsigned>(local.tm_mday)));
    const auto shown = sys_days(date) + hours(local.tm_hour) + minutes(local.tm_min) + seconds(local.tm_sec);
    return static_cast<int>(duration_cast<minutes>(shown - moment).count());
}

} // namespace

WallTime LocalMoment(std::int64_t unixMs) {
    using namespace std::chrono;
    const auto moment = floor<seconds>(sys_time<milliseconds>(milliseconds(unixMs)));
    return {unixMs,
            OffsetMinutes(moment, LocalTime(static_cast<std::time_t>(moment.time_since_epoch().count())))};
}

WallTime SystemTime() {
    using namespace std::chrono;
    return LocalMoment(duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
}

std::string IsoTime(const WallTime& time) {
    using namespace std::chrono;
    const sys_time<milliseconds> local{milliseconds(time.UnixMs) + minutes(time.OffsetMinutes)};
    const auto day = floor<days>(local);
    const year_month_day date(day);
    const hh_mm_ss clock(local - day);
    const int offset = std::abs(time.OffsetMinutes);
    return Digits(static_cast<int>(date.year()), 4) + "-" + Digits(static_cast<unsigned>(date.month()), 2) +
           "-" + Digits(static_cast<unsigned>(date.day()), 2) + "T" + Digits(clock.hours().count(), 2) + ":" +
           Digits(clock.minutes().count(), 2) + ":" + Digits(clock.seconds().count(), 2) + "." +
           Digits(clock.subseconds().count(), 3) + (time.OffsetMinutes < 0 ? "-" : "+") +
           Digits(offset / 60, 2) + ":" + Digits(offset % 60, 2);
}

} // namespace kavro
