#pragma once

#include "monitor/reading.h"
#include "monitor/thresholds.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kavro {

/// A reading that stood on another side of its thresholds than the one before.
struct Crossing {
    Reading Read;
    std::string Name; ///< of the value, by `NameOfValue`
    std::string Tag;  ///< by `TagText`
    Side From = Side::Within;
    Side To = Side::Within;
    double Limit = 0; ///< what it went beyond or, back within, what it had been beyond
};

/// Watches the values of all modules for crossings of the thresholds in `Session::Preferences`, and keeps the
/// last of them. The first reading that is outside counts as one. A value that cannot be read changes
/// nothing: neither does it cross, nor is forgotten where it stood. Thresholds that change hold from the next
/// reading on. Each crossing is told, also of a value that flutters: what is told is what was read.
class CrossingWatch {
public:
    /// So many are kept; the oldest goes first.
    static constexpr std::size_t MostKept = 1000;

    /// Takes the values that a turn on entry `index` brought; the crossings among them.
    std::vector<Crossing> Take(const Session& session, int index, const std::vector<ChannelValue>& values,
                               const WallTime& time);

    const std::deque<Crossing>& Kept() const { return kept_; }

    /// How many came before the first that is kept: a crossing keeps its number for ever.
    std::int64_t Gone() const { return gone_; }

    /// Keeps none of them any longer; where each value stands stays known.
    void Clear();

private:
    struct Stand {
        kavro::Side Side = Side::Within;
        double Limit = 0; // that it is beyond
    };
    using Place = std::pair<int, std::string>; // entry and channel

    void Keep(const std::vector<Crossing>& crossings);

    std::map<Place, Stand> stands_; // of the values with thresholds
    std::deque<Crossing> kept_;
    std::int64_t gone_ = 0;
};

} // namespace kavro
