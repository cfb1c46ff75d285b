#pragma once

#include "link/line.h"

#include <array>
#include <cstdint>

namespace kavro {

/// What a search goes through, as far as it takes time.
struct SearchScope {
    std::array<std::int16_t, 9> BaudEnabled{}; ///< as in the port's settings: 1 = is tried
    int Addresses = 256;                       ///< 1 to 256, from address 0 on
    int ReplyTimeoutMs = 100;
    int AnswerWithinMs = 30; ///< of the fast search: from the end of a command to its reply, 5 to 1000
};

/// As long as it lives, a search tries only the first of the enabled rates of the port in use: for a port
/// that keeps its own rate, where each rate would find every module once more.
class FirstRateOnly {
public:
    explicit FirstRateOnly(Line& line);
    ~FirstRateOnly() { settings_.BaudEnabled = enabled_; }
    FirstRateOnly(const FirstRateOnly&) = delete;
    FirstRateOnly& operator=(const FirstRateOnly&) = delete;

private:
    PortSettingsRecord& settings_;
    std::array<std::int16_t, 9> enabled_;
};

/// These flags with the first one that is set alone.
std::array<std::int16_t, 9> FirstOf(const std::array<std::int16_t, 9>& enabled);

/// Limits of `AnswerWithinMs`.
inline constexpr int ShortestAnswerWithinMs = 5;
inline constexpr int LongestAnswerWithinMs = 1000;

/// What the fast search pauses after each change of the baud rate, in place of the second that it is
/// otherwise. Modules do not notice the change; the adapter needs a moment at most.
inline constexpr int FastBaudChangeMs = 100;

/// The scope of a search of the port in use, from address 0 to `highest`.
SearchScope ScopeOf(const Line& line, int highest);

/// Milliseconds that a silent address takes the exact search, all rates together.
std::int64_t ExactAddressMs(const SearchScope& scope);

/// Milliseconds that the exact search takes at most, but for what modules make it wait for.
std::int64_t ExactSearchMs(const SearchScope& scope);

/// Microseconds that the command "$AA2" takes on the wire, with its checksum or without.
std::int64_t CommandUs(std::int16_t baudCode, std::int16_t checksum);

/// Milliseconds that a silent address takes the fast search at a rate, without and then with checksum.
double FastAddressMs(std::int16_t baudCode, int answerWithinMs);

/// Milliseconds that the fast search takes where nothing answers.
std::int64_t FastSearchMs(const SearchScope& scope);

} // namespace kavro
