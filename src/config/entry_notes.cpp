#include "config/entry_notes.h"

#include "link/number_text.h"
#include "link/text.h"
#include "map/list_line.h"

#include <cmath>

namespace kavro {

namespace {

constexpr double HighestTaken = 4294967295; // beyond, OK refuses the entry
constexpr double RoundingError = 1e-9;

bool IsWhole(std::string text) {
    text = Trim(text);
    const std::string digits = text.substr(text.starts_with('+') || text.starts_with('-') ? 1 : 0);
    return CappedNumber(digits).has_value();
}

std::string WithPoint(std::string text, const std::string& separator) {
    NormalizeDecimalPoint(text, separator);
    return text;
}

} // namespace

std::string AddressNote(const Session& session, int index, const std::string& address) {
    const auto number = CappedNumber(Trim(address));
    for (int other = 0; number && other < session.ModuleCount; ++other)
        if (other != index && session.ModuleTable[other].Address == *number)
            return "The list already has a module at this address: " +
                   Trim(ShownModel(session.ModuleTable[other].Model)) + ".";
    return {};
}

std::string CountNote(const std::string& count, const std::string& separator) {
    const double taken = std::trunc(NumericValue(WithPoint(count, separator)));
    if (IsWhole(count) || std::fabs(taken) > HighestTaken)
        return {};
    return "Taken as " + ShortestText(taken + 0.0) + ": enter digits only."; // never "-0"
}

std::string WidthNote(const std::string& width, const std::string& /*separator*/) {
    if (CappedNumber(width))
        return {};
    return width.empty() ? "Taken as 0." : "Sent as written: enter digits only.";
}

std::string LevelNote(const std::string& level, const std::string& separator) {
    const std::string text = WithPoint(level, separator);
    const auto number = PlainNumber(text);
    const double taken = std::round(NumericValue(text) * 10) / 10;
    if ((number && std::fabs(*number - taken) < RoundingError) || std::fabs(taken) > HighestTaken)
        return {};
    return "Taken as " + ShownNumber(ShortestText(taken + 0.0), separator) +
           (number ? " V." : " V: not a number.");
}

} // namespace kavro
