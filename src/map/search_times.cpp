#include "map/search_times.h"

#include "link/baud.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr int ExactBaudChangeMs = 1000;
constexpr int CommandLength = 5; // "$AA2" and its carriage return
constexpr int ChecksumLength = 2;
constexpr int BitsPerCharacter = 10;

} // namespace

FirstRateOnly::FirstRateOnly(Line& line)
    : settings_(line.SettingsOf(line.CurrentPort)), enabled_(settings_.BaudEnabled) {
    settings_.BaudEnabled = FirstOf(enabled_);
}

std::array<std::int16_t, 9> FirstOf(const std::array<std::int16_t, 9>& enabled) {
    std::array<std::int16_t, 9> first{};
    const auto found = std::ranges::find(enabled, 1);
    if (found != enabled.end())
        first[static_cast<std::size_t>(found - enabled.begin())] = 1;
    return first;
}

SearchScope ScopeOf(const Line& line, int highest) {
    return {.BaudEnabled = line.SettingsOf(line.CurrentPort).BaudEnabled,
            .Addresses = highest + 1,
            .ReplyTimeoutMs = line.ReplyTimeout};
}

std::int64_t ExactAddressMs(const SearchScope& scope) {
    const auto rates = std::ranges::count(scope.BaudEnabled, 1);
    return rates * (2 * scope.ReplyTimeoutMs + (rates > 1 ? ExactBaudChangeMs : 0));
}

std::int64_t ExactSearchMs(const SearchScope& scope) {
    const bool oneRate = std::ranges::count(scope.BaudEnabled, 1) == 1;
    return scope.Addresses * ExactAddressMs(scope) + (oneRate ? ExactBaudChangeMs : 0); // set once
}

std::int64_t CommandUs(std::int16_t baudCode, std::int16_t checksum) {
    const int bits = BitsPerCharacter * (CommandLength + (checksum == 1 ? ChecksumLength : 0));
    return std::int64_t{1'000'000} * bits / BaudFromCode(baudCode);
}

double FastAddressMs(std::int16_t baudCode, int answerWithinMs) {
    return static_cast<double>(CommandUs(baudCode, 0) + CommandUs(baudCode, 1)) / 1000 + 2 * answerWithinMs;
}

std::int64_t FastSearchMs(const SearchScope& scope) {
    double milliseconds = 0;
    for (std::int16_t code = 0; code < BaudCodeCount; ++code)
        if (scope.BaudEnabled[static_cast<std::size_t>(code)] == 1)
            milliseconds += FastBaudChangeMs + scope.Addresses * FastAddressMs(code, scope.AnswerWithinMs);
    return static_cast<std::int64_t>(milliseconds);
}

} // namespace kavro
