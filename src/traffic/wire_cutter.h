#pragma once

#include "link/line_listener.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace kavro {

/// Cuts what another master and its modules say to each other into exchanges: commands and replies are told
/// apart by their first character, what was cut off by the pause behind it. Whether a module uses checksums
/// is recognised, and remembered by address.
class WireCutter {
public:
    using Told = std::function<void(const LineTraffic& traffic)>;

    /// `told` is called for each exchange as soon as its end is known, and for what belongs to none.
    WireCutter(std::int16_t port, Told told);

    /// Takes characters that have come by the moment `utc` (microseconds since 1970) at this rate.
    void Take(std::string_view characters, std::int64_t utc, std::int32_t baud);

    /// Nothing has come since, up to that moment.
    void Wait(std::int64_t utc);

    /// Tells what is left; nothing more will come.
    void End();

private:
    void TakeLine();
    void TakeReply();
    void EndExchange(TrafficOutcome outcome);
    void TellStray();
    TrafficOutcome OutcomeOf(std::string_view sent, std::string_view received);
    bool IsFragment(std::int64_t utc) const;

    Told told_;
    LineTraffic exchange_;                    // the command whose reply is awaited, while it has one
    std::string line_;                        // come so far of the line going on
    std::int64_t lineUtc_ = 0;                // its first character
    std::int64_t lastUtc_ = 0;                // its last one
    std::array<bool, 256> withoutChecksum_{}; // by address: a command without one was answered
};

/// Whether a line, without its carriage return, is a command as masters send them.
bool IsCommand(std::string_view line);

/// Whether it is a command, or a reply as modules send them.
bool MakesSense(std::string_view line);

} // namespace kavro
