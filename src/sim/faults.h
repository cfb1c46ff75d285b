#pragma once

#include <algorithm>

namespace kavro {

/// Replies that are late now and then, each by another time.
struct LateReplies {
    double Share = 0;         ///< of the replies, 0 to 1
    int MinMs = 0, MaxMs = 0; ///< late by a random time from `MinMs` to `MaxMs`
};

/// What can be wrong with a simulated module, or with the whole line. All off by default.
struct Faults {
    bool Silent = false;           ///< hears, but never answers
    int DelayMs = 0;               ///< answers that many ms later
    bool WrongChecksum = false;    ///< checksum off by one; without effect where no checksum is used
    bool NoCarriageReturn = false; ///< the reply ends without its carriage return
    bool Noise = false;            ///< random bytes before a reply, now and then instead of it
    int SlowCharacterMs = 0;       ///< pause between two characters of a reply, in ms
    bool Refuse = false;           ///< answers every command with "?" and its address
    bool WrongAddress = false;     ///< names the address after its own in its replies
    bool Unplugged = false;        ///< a module: gone from the line; the line: the adapter was pulled out
    bool Echo = false;             ///< of the line alone: the adapter hands back what is sent
    int LatencyMs = 0;             ///< of the line alone: the adapter hands characters over only that often
    LateReplies Late{};            ///< in time order with whatever else comes meanwhile
    bool Babble = false;           ///< answers with characters without end, until the next command
    double DamageShare = 0;        ///< of the replies, 0 to 1, that have one character wrong or are cut
};

/// The faults of a module on a line that has faults of its own: switches are joined, times are added, of two
/// shares the greater one counts.
constexpr Faults Combined(const Faults& first, const Faults& second) {
    return {.Silent = first.Silent || second.Silent,
            .DelayMs = first.DelayMs + second.DelayMs,
            .WrongChecksum = first.WrongChecksum || second.WrongChecksum,
            .NoCarriageReturn = first.NoCarriageReturn || second.NoCarriageReturn,
            .Noise = first.Noise || second.Noise,
            .SlowCharacterMs = first.SlowCharacterMs + second.SlowCharacterMs,
            .Refuse = first.Refuse || second.Refuse,
            .WrongAddress = first.WrongAddress || second.WrongAddress,
            .Unplugged = first.Unplugged || second.Unplugged,
            .Echo = first.Echo || second.Echo,
            .LatencyMs = std::max(first.LatencyMs, second.LatencyMs),
            .Late = first.Late.Share >= second.Late.Share ? first.Late : second.Late,
            .Babble = first.Babble || second.Babble,
            .DamageShare = std::max(first.DamageShare, second.DamageShare)};
}

} // namespace kavro
