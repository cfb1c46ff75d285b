#include "map/time_text.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr int MinuteS = 60;
constexpr int FirstMinutesS = 2 * MinuteS;  // below that in seconds
constexpr int WholeMinutesS = 10 * MinuteS; // from there on in minutes
constexpr int SecondsStep = 10;             // between the two

std::int64_t RoundedUp(std::int64_t value, std::int64_t step) {
    return (value + step - 1) / step;
}

} // namespace

std::string TimeText(std::int64_t milliseconds) {
    const std::int64_t seconds = RoundedUp(std::max<std::int64_t>(milliseconds, 0), 1000);
    if (seconds < FirstMinutesS)
        return std::to_string(seconds) + " s";
    const std::int64_t rounded = RoundedUp(seconds, SecondsStep) * SecondsStep;
    const std::int64_t rest = rounded % MinuteS;
    if (rounded >= WholeMinutesS || rest == 0)
        return std::to_string(RoundedUp(seconds, MinuteS)) + " min";
    return std::to_string(rounded / MinuteS) + " min " + std::to_string(rest) + " s";
}

std::string SearchTimeText(const SearchScope& scope, bool fast) {
    if (std::ranges::count(scope.BaudEnabled, 1) == 0)
        return {};
    return fast ? "about " + TimeText(FastSearchMs(scope)) : "at most " + TimeText(ExactSearchMs(scope));
}

} // namespace kavro
