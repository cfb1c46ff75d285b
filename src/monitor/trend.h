#pragma once

#include "monitor/module_values.h"
#include "monitor/trend_column.h"
#include "monitor/trend_series.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace kavro {

/// What was read in the last week of every value of every module, in a memory that is bounded: 0.4 MiB a
/// value. Moments are UTC, in ms. A clock that was set back takes what was read after its new time with it;
/// the lines are broken there.
class Trend {
public:
    /// Keeps the values of a turn on entry `index`; one without a number breaks its line.
    void Add(std::int64_t utcMs, int index, const std::vector<ChannelValue>& values);

    /// Breaks the lines of all modules: nothing could be read.
    void AddBreak(std::int64_t utcMs);

    /// Value number `place` of entry `index` from `fromMs` until before `toMs`, oldest first, in columns that
    /// begin at multiples of `columnMs`; both ends are rounded to whole columns. Where the memory is coarser,
    /// as it is the farther back the more, so are the columns; the least and the most are always there.
    std::vector<TrendColumn> Columns(int index, std::size_t place, std::int64_t fromMs, std::int64_t toMs,
                                     std::int64_t columnMs) const;

    /// Since when the value is known; nothing when it never was.
    std::optional<std::int64_t> Oldest(int index, std::size_t place) const;

    /// Since when the value is known in columns of `columnMs`.
    std::optional<std::int64_t> KnownSince(int index, std::size_t place, std::int64_t columnMs) const;

    /// Bytes that the memory takes.
    std::size_t Bytes() const;

private:
    const TrendSeries* Series(int index, std::size_t place) const;
    void Advance(std::int64_t utcMs);

    std::vector<TrendSeries> series_; // `MostValues` of each entry
    std::int64_t newestMs_ = std::numeric_limits<std::int64_t>::min();
};

} // namespace kavro
