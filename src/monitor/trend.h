#pragma once

#include "monitor/module_values.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kavro {

/// How far back a trend goes, in ms.
inline constexpr std::int64_t TrendSpanMs = 600'000;

/// One point of a trend; without a value the line is broken there.
struct TrendPoint {
    std::int64_t AtMs = 0; ///< moment of the clock, ms
    std::optional<double> Value;
};

/// What was read in the last ten minutes, of every value of every module, in a memory of fixed size: one
/// sample per turn, the oldest making room for the newest.
class Trend {
public:
    Trend() : samples_(Capacity) {}

    /// Keeps the values of a turn on entry `index`.
    void Add(std::int64_t atMs, int index, const std::vector<ChannelValue>& values);

    /// Breaks the lines of all modules: nothing could be read.
    void AddBreak(std::int64_t atMs);

    /// Value number `place` of entry `index` over the ten minutes before `nowMs`, oldest first.
    std::vector<TrendPoint> Points(int index, std::size_t place, std::int64_t nowMs) const;

private:
    static constexpr std::size_t Capacity = 1300; // a turn each 500 ms, and some to spare
    static constexpr int Everybody = -1;

    struct Sample {
        std::int64_t AtMs = 0;
        int Index = 0;
        std::array<std::optional<double>, MostValues> Values{};
    };

    Sample& Next(std::int64_t atMs, int index);

    std::vector<Sample> samples_; // a ring
    std::size_t next_ = 0;
    std::size_t count_ = 0;
};

} // namespace kavro
