#pragma once

#include "sim/simulated_line.h"

#include <deque>
#include <optional>
#include <string_view>

namespace kavro {

/// What is under way between a PC and a simulated line: the command line that is not complete yet, and the
/// replies that have not been taken. Moments are microseconds of one clock.
///
/// There is one pair of wires: what overlaps on it garbles each other, replies of two modules as well as a
/// command and a reply that comes late.
class Transmission {
public:
    explicit Transmission(SimulatedLine& line) : line_(line) {}

    /// Sends characters at `baud`, beginning at `moment` or when the line before has been sent. Every
    /// carriage return completes a command line. A line of more than 1024 characters is cut: no module hears
    /// as many.
    void Send(std::string_view text, int baud, std::int64_t moment);

    /// Number of characters that have arrived by `moment`.
    std::size_t Arrived(std::int64_t moment) const;

    /// When the next character arrives or has arrived; nothing when none is under way.
    std::optional<std::int64_t> NextMoment() const;

    /// When the last character of the run that begins with the next one arrives: the run ends at a carriage
    /// return, or where a pause follows. Nothing when none is under way.
    std::optional<std::int64_t> RunEnd() const;

    /// Takes the next character; one must be under way.
    char Take();

    /// Takes what has arrived by `moment`; what is still to come stays under way.
    std::string TakeArrived(std::int64_t moment);

    /// Drops everything, the incomplete command line too.
    void Clear();

private:
    void Deliver(int baud, std::int64_t moment);
    bool Disturb(int baud, std::int64_t moment);
    void Collide();
    void Garble(TimedByte& byte);

    SimulatedLine& line_;
    std::string command_;
    std::int64_t sentMoment_ = 0;   // when the last command line has left the PC
    std::deque<TimedByte> replies_; // by the end on the wires, which is their order of arrival too
};

} // namespace kavro
