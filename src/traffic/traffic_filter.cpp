#include "traffic/traffic_filter.h"

#include "link/line.h"

#include <algorithm>

namespace kavro {

namespace {

char LowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool Holds(const std::string& text, const std::string& part) {
    const auto same = [](char left, char right) { return LowerCase(left) == LowerCase(right); };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

} // namespace

bool Passes(const TrafficFilter& filter, const TrafficRow& row, const KnownModules& known, bool hex) {
    if (filter.OnlyFailed && !HasFailed(row, known))
        return false;
    if (filter.Address && AddressIn(row.Sent) != filter.Address)
        return false;
    return filter.Text.empty() || Holds(BytesText(row.Sent, hex), filter.Text) ||
           Holds(BytesText(row.Received, hex), filter.Text) || Holds(WordsText(row, known), filter.Text);
}

} // namespace kavro
