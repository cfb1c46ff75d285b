#include "cli/moment_option.h"

#include "link/runtime_failure.h"
#include "link/wall_time.h"

#include <QRegularExpression>

#include <algorithm>
#include <chrono>
#include <optional>

namespace kavro {

namespace {

constexpr std::int64_t SecondMs = 1000, MinuteMs = 60 * SecondMs, HourMs = 60 * MinuteMs, DayMs = 24 * HourMs;

std::optional<std::int64_t> AgeMs(const QString& text) {
    constexpr std::pair<char, std::int64_t> units[] = {
        {'s', SecondMs}, {'m', MinuteMs}, {'h', HourMs}, {'d', DayMs}, {'w', 7 * DayMs}};
    static const QRegularExpression form("^([0-9]{1,9})([smhdw])\\z");
    const auto match = form.match(text);
    for (const auto& [letter, ms] : units)
        if (match.captured(2) == QChar(letter))
            return match.captured(1).toLongLong() * ms;
    return std::nullopt;
}

// The moment at which local clocks show what UTC ones show at `shownMs`.
std::int64_t OfLocal(std::int64_t shownMs) {
    const int before = LocalMoment(shownMs - DayMs).OffsetMinutes; // no two changes come within two days
    const int after = LocalMoment(shownMs + DayMs).OffsetMinutes;
    for (const int offset : {std::max(before, after), std::min(before, after)})
        if (const std::int64_t moment = shownMs - offset * MinuteMs;
            LocalMoment(moment).OffsetMinutes == offset)
            return moment;
    return shownMs - before * MinuteMs;
}

// The hour and minute of "14:05"; nothing when they are none.
std::optional<std::int64_t> ClockMs(const QString& hours, const QString& minutes) {
    if (hours.toInt() > 23 || minutes.toInt() > 59)
        return std::nullopt;
    return (hours.toInt() * 60 + minutes.toInt()) * MinuteMs;
}

std::optional<std::int64_t> DateMs(const QString& text) {
    using namespace std::chrono;
    static const QRegularExpression form(
        "^([0-9]{4})-([0-9]{2})-([0-9]{2})(?:[Tt ]([0-9]{2}):([0-9]{2})(?::([0-9]{2})(?:\\.([0-9]{1,3}))?)?"
        "(?:([Zz])|([+-])([0-9]{2}):([0-9]{2}))?)?\\z");
    const auto match = form.match(text);
    const auto number = [&](int group) { return match.captured(group).toInt(); };
    const year_month_day date(year(number(1)), month(static_cast<unsigned>(number(2))),
                              day(static_cast<unsigned>(number(3))));
    const auto clock = ClockMs(match.captured(4), match.captured(5));
    const auto offset = ClockMs(match.captured(10), match.captured(11));
    if (!match.hasMatch() || !date.ok() || !clock || !offset || number(6) > 59)
        return std::nullopt;
    const std::int64_t shown = duration_cast<milliseconds>(sys_days(date).time_since_epoch()).count() +
                               *clock + number(6) * SecondMs +
                               match.captured(7).leftJustified(3, '0').toInt();
    if (!match.captured(8).isEmpty())
        return shown;
    if (match.captured(9).isEmpty())
        return OfLocal(shown);
    return match.captured(9) == "-" ? shown + *offset : shown - *offset;
}

} // namespace

std::int64_t ParseMoment(const std::string& text, std::int64_t nowMs) {
    const QString words = QString::fromStdString(text);
    if (const auto age = AgeMs(words))
        return std::max<std::int64_t>(nowMs - *age, 0);
    if (const auto moment = DateMs(words))
        return std::clamp<std::int64_t>(*moment, 0, LastMomentMs);
    throw RuntimeFailure("'" + text + "' is no time. Give one as " + MomentForms + ".");
}

} // namespace kavro
