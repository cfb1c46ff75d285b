#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kavro {

/// Names a value of a module on a line.
struct ValueKey {
    std::int16_t Address = 0; ///< 0 to 255
    std::string Channel;      ///< as `ChannelValue` names it

    // NOLINTNEXTLINE(modernize-use-nullptr): takes the 0 that a comparison ends in for a pointer
    auto operator<=>(const ValueKey&) const = default;
};

/// Between which a value is as it should be, in its unit; either may be missing. `Low` is not above `High`.
struct Thresholds {
    std::optional<double> Low{};
    std::optional<double> High{};

    bool operator==(const Thresholds&) const = default;
};

/// When a log goes on in a new file.
enum class NewLogFile { Never, EachHour, EachDay };

/// Time between the beginnings of two turns of a monitor, in ms, unless the user says another; each turn
/// reads one module.
inline constexpr int MonitorTickMs = 500;
inline constexpr int LongestMonitorTickMs = 86'400'000; ///< a day
inline constexpr int UsualTrendMinutes = 10;
inline constexpr int LongestTrendMinutes = 7 * 24 * 60; ///< a week

/// What the user has chosen in the monitor.
struct MonitorPreferences {
    int IntervalMs = MonitorTickMs; ///< between the beginnings of two turns; 0: as fast as the line allows
    int SpanMinutes = UsualTrendMinutes; ///< of the trend, 1 to the longest
    std::set<std::int16_t> LeftOut{};    ///< addresses of the modules that are not read
    std::map<ValueKey, kavro::Thresholds> Thresholds{};
    NewLogFile NewFile = NewLogFile::Never;
    std::vector<ValueKey> Ticked{}; ///< values with a trend, in the order of ticking

    bool operator==(const MonitorPreferences&) const = default;
};

} // namespace kavro
