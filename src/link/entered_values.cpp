#include "link/entered_values.h"

#include "link/baud.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

namespace kavro {

namespace {

constexpr int HighestAddress = 255;

// The whole text as a decimal number of digits alone.
std::optional<int> DecimalNumber(std::string_view text) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value > INT32_MAX)
        return std::nullopt;
    return static_cast<int>(value);
}

std::optional<std::int64_t> AddressNumber(std::string_view text) {
    if (text.starts_with("0x") || text.starts_with("0X"))
        return HexNumber(text.substr(2));
    if (text.ends_with('H') || text.ends_with('h'))
        return HexNumber(text.substr(0, text.size() - 1));
    return DecimalNumber(text);
}

} // namespace

std::int16_t ParseAddress(const std::string& text) {
    const auto address = AddressNumber(text);
    if (!address || *address > HighestAddress)
        throw RuntimeFailure("'" + text + "' is not an address; give 0 to 255, in hexadecimal 0xFF or FFH.");
    return static_cast<std::int16_t>(*address);
}

std::int16_t ParseBaud(const std::string& text) {
    const auto baud = DecimalNumber(text);
    if (baud && IsStandardBaud(*baud))
        return CodeFromBaud(*baud);
    throw RuntimeFailure("'" + text + "' is not a baud rate; the rates are " +
                         Listed({BaudNames.begin(), BaudNames.end()}) + ".");
}

std::vector<std::int16_t> ParseBaudList(const std::string& text) {
    std::vector<std::int16_t> codes;
    std::size_t start = 0;
    while (start <= text.size()) {
        const auto end = std::min(text.find(',', start), text.size());
        codes.push_back(ParseBaud(Trim(std::string_view(text).substr(start, end - start))));
        start = end + 1;
    }
    return codes;
}

int ParseWholeNumber(const std::string& text, const std::string& what, int low, int high) {
    const auto number = DecimalNumber(text);
    if (!number || *number < low || *number > high)
        throw RuntimeFailure("'" + text + "' is not " + what + "; give " + std::to_string(low) + " to " +
                             std::to_string(high) + ".");
    return *number;
}

} // namespace kavro
