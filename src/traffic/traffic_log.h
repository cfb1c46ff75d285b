#pragma once

#include "traffic/traffic_row.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace kavro {

/// The last million rows of what passed on the line, in memory: 40 bytes a row and its texts. The texts of
/// all rows together take 64 MiB at most; where replies are so long that a million do not fit, fewer rows are
/// kept. So it never takes more than about 110 MB. Old rows go by the thousand.
///
/// A row has the same number for ever: the first one ever is 0.
class TrafficLog : public LineListener {
public:
    static constexpr std::int64_t MostRows = 1'000'000;
    static constexpr std::size_t MostTextBytes = std::size_t{64} << 20;

    void Passed(const LineTraffic& traffic) override;

    /// The number of the oldest row kept, and that of the next one to come: equal while there is none.
    std::int64_t First() const { return blocks_.empty() ? end_ : blocks_.front().First; }
    std::int64_t End() const { return end_; }

    /// The row of a number from `First()` to before `End()`.
    TrafficRow Row(std::int64_t number) const;

    /// How many rows had to make room since the start, or since `Clear`.
    std::int64_t Dropped() const { return dropped_; }

    /// Forgets all rows; numbers go on.
    void Clear();

private:
    struct Stored {
        std::int64_t Utc;
        std::uint32_t TextAt, SentBytes, ReceivedBytes;
        std::int32_t Baud, FirstUs, LastUs;
        std::int16_t Port;
        TrafficOutcome Outcome;
        bool Echo;
    };
    struct Block {
        std::int64_t First = 0;
        std::vector<Stored> Rows;
        std::string Text; // of each row what was sent, then what was received
    };

    void BeginBlock();
    void MakeRoom();

    std::deque<Block> blocks_;
    std::int64_t end_ = 0;
    std::int64_t dropped_ = 0;
    std::size_t textBytes_ = 0; // of all blocks but the last
};

} // namespace kavro
