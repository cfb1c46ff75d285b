#pragma once

#include "monitor/ring.h"
#include "monitor/trend_column.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kavro {

/// The multiple of `widthMs` at or before the moment `atMs`.
std::int64_t ColumnStart(std::int64_t atMs, std::int64_t widthMs);

/// Adds a column to those before it: as a part of the last one when both begin at the same moment.
void AppendColumn(std::vector<TrendColumn>& columns, const TrendColumn& column);

/// What was read of one value, in a memory of fixed size: the newest readings as they were, and a ladder of
/// levels with ever wider columns that go back ever farther, a week in the last. Each reading goes into every
/// level, so none misses a spike. All moments are UTC, in ms, and must not run backwards: see `ForgetAfter`.
class TrendSeries {
public:
    void Add(std::int64_t atMs, double value);

    /// The value is not known from here on until the next reading.
    void Break(std::int64_t atMs);

    /// Forgets what was read later than that moment, and breaks the line there.
    void ForgetAfter(std::int64_t atMs);

    /// What is known from `fromMs` until before `toMs` in columns at multiples of `columnMs`, oldest first.
    /// Where the memory has wider columns only, they are those.
    std::vector<TrendColumn> Columns(std::int64_t fromMs, std::int64_t toMs, std::int64_t columnMs) const;

    /// Since when readings are known.
    std::optional<std::int64_t> Oldest() const;

    /// Since when they are known in columns of `columnMs`.
    std::optional<std::int64_t> KnownSince(std::int64_t columnMs) const;

    /// Bytes that the memory takes.
    std::size_t Bytes() const;

private:
    struct Sample {
        std::int64_t AtMs = 0;
        double Value = 0; // not a number: the line is broken
    };

    // As a `TrendColumn`, in three quarters of the room.
    struct Bucket {
        std::int64_t FirstMs = 0;
        std::uint32_t LastsMs = 0;
        bool Broken = false;
        double First = 0, Last = 0, Least = 0, Most = 0;
    };

    struct Level {
        std::int64_t WidthMs = 0;
        Ring<Bucket> Buckets;
    };

    static constexpr std::size_t Samples = 3000;
    // Half an hour in 1000 columns and more, 6 hours, a day, and a week; each width divides the next.
    static constexpr std::size_t LevelCount = 4;

    std::size_t LevelFor(std::int64_t columnMs) const;
    std::optional<std::int64_t> CompleteSince(std::size_t level) const;
    void CollectSamples(std::int64_t fromMs, std::int64_t toMs, std::int64_t columnMs,
                        std::vector<TrendColumn>& columns) const;
    void Collect(std::size_t level, std::int64_t fromMs, std::int64_t toMs, std::int64_t columnMs,
                 std::vector<TrendColumn>& columns) const;

    Ring<Sample> samples_{Samples};
    std::array<Level, LevelCount> levels_ = {Level{2'000, Ring<Bucket>(1860)},    // 62 minutes
                                             Level{10'000, Ring<Bucket>(2220)},   // 6 hours
                                             Level{60'000, Ring<Bucket>(1500)},   // 25 hours
                                             Level{300'000, Ring<Bucket>(2100)}}; // 7 days and 7 hours
};

} // namespace kavro
