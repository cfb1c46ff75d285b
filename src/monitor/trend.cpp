#include "monitor/trend.h"

#include <algorithm>

namespace kavro {

Trend::Sample& Trend::Next(std::int64_t atMs, int index) {
    Sample& sample = samples_[next_];
    next_ = (next_ + 1) % Capacity;
    count_ = std::min(count_ + 1, Capacity);
    sample = {atMs, index, {}};
    return sample;
}

void Trend::Add(std::int64_t atMs, int index, const std::vector<ChannelValue>& values) {
    Sample& sample = Next(atMs, index);
    for (std::size_t place = 0; place < std::min(values.size(), MostValues); ++place)
        sample.Values[place] = values[place].Number;
}

void Trend::AddBreak(std::int64_t atMs) {
    Next(atMs, Everybody);
}

std::vector<TrendPoint> Trend::Points(int index, std::size_t place, std::int64_t nowMs) const {
    std::vector<TrendPoint> points;
    for (std::size_t back = count_; back > 0; --back) {
        const Sample& sample = samples_[(next_ + Capacity - back) % Capacity];
        const bool concerns = sample.Index == index || sample.Index == Everybody;
        if (concerns && sample.AtMs >= nowMs - TrendSpanMs)
            points.push_back({sample.AtMs, sample.Values.at(place)});
    }
    return points;
}

} // namespace kavro
