#include "monitor/trend.h"

#include <algorithm>

namespace kavro {

void Trend::Advance(std::int64_t utcMs) {
    if (utcMs < newestMs_)
        for (TrendSeries& series : series_)
            series.ForgetAfter(utcMs);
    newestMs_ = utcMs;
}

void Trend::Add(std::int64_t utcMs, int index, const std::vector<ChannelValue>& values) {
    Advance(utcMs);
    const std::size_t first = static_cast<std::size_t>(index) * MostValues;
    if (series_.size() < first + MostValues)
        series_.resize(first + MostValues);
    for (std::size_t place = 0; place < std::min(values.size(), MostValues); ++place) {
        TrendSeries& series = series_[first + place];
        if (const auto& number = values[place].Number)
            series.Add(utcMs, *number);
        else
            series.Break(utcMs);
    }
}

void Trend::AddBreak(std::int64_t utcMs) {
    Advance(utcMs);
    for (TrendSeries& series : series_)
        series.Break(utcMs);
}

const TrendSeries* Trend::Series(int index, std::size_t place) const {
    const std::size_t number = static_cast<std::size_t>(index) * MostValues + place;
    return number < series_.size() ? &series_[number] : nullptr;
}

std::vector<TrendColumn> Trend::Columns(int index, std::size_t place, std::int64_t fromMs, std::int64_t toMs,
                                        std::int64_t columnMs) const {
    const TrendSeries* const series = Series(index, place);
    return series ? series->Columns(fromMs, toMs, columnMs) : std::vector<TrendColumn>{};
}

std::optional<std::int64_t> Trend::Oldest(int index, std::size_t place) const {
    const TrendSeries* const series = Series(index, place);
    return series ? series->Oldest() : std::nullopt;
}

std::optional<std::int64_t> Trend::KnownSince(int index, std::size_t place, std::int64_t columnMs) const {
    const TrendSeries* const series = Series(index, place);
    return series ? series->KnownSince(columnMs) : std::nullopt;
}

std::size_t Trend::Bytes() const {
    std::size_t bytes = 0;
    for (const TrendSeries& series : series_)
        bytes += series.Bytes();
    return bytes;
}

} // namespace kavro
