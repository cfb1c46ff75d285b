#include "monitor/trend_window.h"

#include "map/monitor_preferences.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kavro {

namespace {

constexpr std::int64_t Second = 1000, Minute = 60 * Second, Hour = 60 * Minute, Day = 24 * Hour;
constexpr std::int64_t LongestMs = LongestTrendMinutes * Minute;
constexpr std::int64_t LongestEndlessMs = 366 * Day;
constexpr double AtNow = 0.9; // a pointer from here on holds the end, not what lies below it

// From 2 s on multiples of the columns of the memory, or of divisors of them.
constexpr std::array ColumnWidths = {std::int64_t{1},   std::int64_t{2},
                                     std::int64_t{5},   std::int64_t{10},
                                     std::int64_t{20},  std::int64_t{50},
                                     std::int64_t{100}, std::int64_t{200},
                                     std::int64_t{500}, Second,
                                     2 * Second,        4 * Second,
                                     10 * Second,       20 * Second,
                                     30 * Second,       Minute,
                                     2 * Minute,        5 * Minute,
                                     10 * Minute,       15 * Minute,
                                     30 * Minute,       Hour,
                                     2 * Hour,          6 * Hour,
                                     12 * Hour,         Day};

} // namespace

std::int64_t RoundColumnMs(double atLeastMs) {
    const auto* const found = std::ranges::lower_bound(
        ColumnWidths, atLeastMs, {}, [](std::int64_t width) { return static_cast<double>(width); });
    return found == ColumnWidths.end() ? ColumnWidths.back() : *found;
}

std::int64_t TrendWindow::Clamped(double spanMs) const {
    const auto longest = static_cast<double>(endless_ ? LongestEndlessMs : LongestMs);
    return std::llround(std::clamp(spanMs, static_cast<double>(ShortestTrendMs), longest));
}

// Not beyond now, where it follows again, and not back to where nothing is known.
void TrendWindow::MoveTo(std::int64_t toMs) {
    if (!endless_)
        toMs = std::max(toMs, std::min(oldestMs_ + spanMs_, nowMs_));
    following_ = toMs >= nowMs_;
    toMs_ = std::min(toMs, nowMs_);
}

void TrendWindow::SetNow(std::int64_t nowMs, std::optional<std::int64_t> oldestMs, bool endless) {
    nowMs_ = nowMs;
    oldestMs_ = std::min(oldestMs.value_or(nowMs), nowMs);
    endless_ = endless;
    spanMs_ = Clamped(static_cast<double>(spanMs_));
    MoveTo(following_ ? nowMs : toMs_);
}

void TrendWindow::SetSpan(std::int64_t spanMs) {
    spanMs_ = Clamped(static_cast<double>(spanMs));
    ToNow();
}

void TrendWindow::Zoom(double factor, double share) {
    const std::int64_t span = Clamped(static_cast<double>(spanMs_) * factor);
    const bool stays = following_ && share >= AtNow;
    const auto shift = static_cast<double>(span - spanMs_) * (1 - share);
    spanMs_ = span;
    MoveTo(stays ? nowMs_ : toMs_ + std::llround(shift));
}

void TrendWindow::Pan(double share) {
    MoveTo(toMs_ + std::llround(static_cast<double>(spanMs_) * share));
}

void TrendWindow::ToOldest() {
    MoveTo(oldestMs_ + spanMs_);
}

void TrendWindow::ToNow() {
    MoveTo(nowMs_);
}

void TrendWindow::ToWhole() {
    spanMs_ = Clamped(static_cast<double>(nowMs_ - oldestMs_));
    ToNow();
}

} // namespace kavro
