#pragma once

#include <cstdint>
#include <string>

namespace kavro {

/// How an exchange ended, and `Stray` for what was none.
enum class TrafficOutcome : std::uint8_t {
    Complete,   ///< a whole reply, with a good checksum where one is used
    Silent,     ///< not one character came but for an echo
    Incomplete, ///< characters came, but no carriage return within the time-out
    Damaged,    ///< a whole reply with a wrong checksum
    Lost,       ///< the port failed, maybe before the command had gone out
    Stray,      ///< no exchange: characters that came while nobody had asked
};

/// What passed on the line: a command with its reply, or what there was of it, or stray characters.
struct LineTraffic {
    std::int64_t Utc = 0;  ///< microseconds since 1970, UTC: the adapter had been given the command, or the
                           ///< stray characters were noticed
    std::int16_t Port = 0; ///< COM port
    std::int32_t Baud = 0; ///< bits per second
    std::string Sent;      ///< as it went out, checksum and carriage return included; empty of strays
    std::string Received;  ///< as it came, an echo and carriage returns included
    std::int64_t FirstUs = -1; ///< from `Utc` to the first character; -1: none came, or it is not known
    std::int64_t LastUs = -1;  ///< the same to the last one
    TrafficOutcome Outcome = TrafficOutcome::Complete;
    bool Echo = false; ///< `Received` begins with what was sent, handed back by the adapter
};

/// Is told of all that passes on a line.
class LineListener {
public:
    virtual ~LineListener() = default;

    /// Called when an exchange has ended, or stray characters were found. Must not throw, nor use the line.
    virtual void Passed(const LineTraffic& traffic) = 0;
};

} // namespace kavro
