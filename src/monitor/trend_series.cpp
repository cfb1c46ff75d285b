#include "monitor/trend_series.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kavro {

namespace {

constexpr double NoValue = std::numeric_limits<double>::quiet_NaN();

std::int64_t ColumnEnd(std::int64_t atMs, std::int64_t widthMs) {
    return ColumnStart(atMs + widthMs - 1, widthMs);
}

// The first item that does not end before that moment.
template <typename Item, typename Last>
std::size_t FirstFrom(const Ring<Item>& items, std::int64_t fromMs, Last last) {
    std::size_t first = 0;
    for (std::size_t count = items.Size(); count > 0;) {
        const std::size_t half = count / 2;
        if (last(items[first + half]) < fromMs) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first;
}

} // namespace

std::int64_t ColumnStart(std::int64_t atMs, std::int64_t widthMs) {
    const std::int64_t past = atMs % widthMs;
    return atMs - (past < 0 ? past + widthMs : past);
}

void AppendColumn(std::vector<TrendColumn>& columns, const TrendColumn& column) {
    if (columns.empty() || columns.back().AtMs != column.AtMs) {
        columns.push_back(column);
        return;
    }
    TrendColumn& whole = columns.back();
    whole.LastMs = column.LastMs;
    whole.Last = column.Last;
    whole.Least = std::min(whole.Least, column.Least);
    whole.Most = std::max(whole.Most, column.Most);
    whole.Broken = whole.Broken || column.Broken;
}

void TrendSeries::Add(std::int64_t atMs, double value) {
    samples_.Push({atMs, value});
    for (Level& level : levels_) {
        Ring<Bucket>& buckets = level.Buckets;
        if (buckets.Empty() ||
            ColumnStart(buckets.Back().FirstMs, level.WidthMs) != ColumnStart(atMs, level.WidthMs)) {
            buckets.Push({atMs, 0, false, value, value, value, value});
            continue;
        }
        Bucket& bucket = buckets.Back();
        bucket.LastsMs = static_cast<std::uint32_t>(atMs - bucket.FirstMs);
        bucket.Last = value;
        bucket.Least = std::min(bucket.Least, value);
        bucket.Most = std::max(bucket.Most, value);
    }
}

void TrendSeries::Break(std::int64_t atMs) {
    if (samples_.Empty() || std::isnan(samples_.Back().Value))
        return;
    samples_.Push({atMs, NoValue});
    for (Level& level : levels_)
        if (!level.Buckets.Empty()) // none is left when the clock went back far
            level.Buckets.Back().Broken = true;
}

// Of a bucket around that moment the least and the most stay, as nobody knows which reading they are of.
void TrendSeries::ForgetAfter(std::int64_t atMs) {
    while (!samples_.Empty() && samples_.Back().AtMs > atMs)
        samples_.PopBack();
    for (Level& level : levels_) {
        Ring<Bucket>& buckets = level.Buckets;
        while (!buckets.Empty() && buckets.Back().FirstMs > atMs)
            buckets.PopBack();
        if (!buckets.Empty()) {
            Bucket& bucket = buckets.Back();
            bucket.LastsMs =
                static_cast<std::uint32_t>(std::min<std::int64_t>(bucket.LastsMs, atMs - bucket.FirstMs));
            bucket.Broken = true;
        }
    }
    Break(atMs);
}

// The widest level that such columns can be made of; `LevelCount` stands for the samples.
std::size_t TrendSeries::LevelFor(std::int64_t columnMs) const {
    for (std::size_t level = LevelCount; level-- > 0;)
        if (columnMs % levels_[level].WidthMs == 0)
            return level;
    return LevelCount;
}

// Since when a level has all; nothing when it has never dropped anything.
std::optional<std::int64_t> TrendSeries::CompleteSince(std::size_t level) const {
    if (level == LevelCount)
        return samples_.Dropped() && !samples_.Empty() ? std::optional(samples_[0].AtMs + 1) : std::nullopt;
    const auto& [width, buckets] = levels_[level];
    return buckets.Dropped() && !buckets.Empty() ? std::optional(ColumnStart(buckets[0].FirstMs, width))
                                                 : std::nullopt;
}

void TrendSeries::CollectSamples(std::int64_t fromMs, std::int64_t toMs, std::int64_t columnMs,
                                 std::vector<TrendColumn>& columns) const {
    std::size_t place = FirstFrom(samples_, fromMs, [](const Sample& sample) { return sample.AtMs; });
    for (; place < samples_.Size() && samples_[place].AtMs < toMs; ++place) {
        const auto& [at, value] = samples_[place];
        if (!std::isnan(value))
            AppendColumn(columns, {ColumnStart(at, columnMs), at, at, value, value, value, value, false});
        else if (!columns.empty())
            columns.back().Broken = true;
    }
}

// What a level does not have any more is taken from the next one, up to a seam where a column of both begins.
void TrendSeries::Collect(std::size_t level, std::int64_t fromMs, std::int64_t toMs, std::int64_t columnMs,
                          std::vector<TrendColumn>& columns) const {
    const std::size_t wider = level == LevelCount ? 0 : level + 1;
    const auto since = CompleteSince(level);
    if (since && fromMs < *since && wider < LevelCount) {
        const std::int64_t seam = ColumnEnd(*since, levels_[wider].WidthMs);
        Collect(wider, fromMs, std::min(seam, toMs), columnMs, columns);
        fromMs = std::max(fromMs, seam);
    }
    if (level == LevelCount) {
        CollectSamples(fromMs, toMs, columnMs, columns);
        return;
    }
    const Ring<Bucket>& buckets = levels_[level].Buckets;
    std::size_t place = FirstFrom(buckets, fromMs, [](const Bucket& it) { return it.FirstMs + it.LastsMs; });
    for (; place < buckets.Size() && buckets[place].FirstMs < toMs; ++place) {
        const Bucket& it = buckets[place];
        AppendColumn(columns, {ColumnStart(it.FirstMs, columnMs), it.FirstMs, it.FirstMs + it.LastsMs,
                               it.First, it.Last, it.Least, it.Most, it.Broken});
    }
}

std::vector<TrendColumn> TrendSeries::Columns(std::int64_t fromMs, std::int64_t toMs,
                                              std::int64_t columnMs) const {
    std::vector<TrendColumn> columns;
    Collect(LevelFor(columnMs), ColumnStart(fromMs, columnMs), ColumnEnd(toMs, columnMs), columnMs, columns);
    return columns;
}

std::optional<std::int64_t> TrendSeries::Oldest() const {
    const Ring<Bucket>& longest = levels_.back().Buckets;
    return longest.Empty() ? std::nullopt : std::optional(longest[0].FirstMs);
}

std::optional<std::int64_t> TrendSeries::KnownSince(std::int64_t columnMs) const {
    const auto since = CompleteSince(LevelFor(columnMs));
    return since ? since : Oldest();
}

std::size_t TrendSeries::Bytes() const {
    std::size_t bytes = samples_.Bytes();
    for (const Level& level : levels_)
        bytes += level.Buckets.Bytes();
    return bytes;
}

} // namespace kavro
