#include "sim/wire_text.h"

#include <charconv>
#include <cmath>

namespace kavro {

namespace {

struct WireBaud {
    int Baud, Code;
};

constexpr WireBaud WireBauds[] = {
    {1200, 3}, {2400, 4}, {4800, 5}, {9600, 6}, {19200, 7}, {38400, 8}, {115200, 9}, {57600, 10},
};

std::string Digits(std::uint32_t value, int digits, std::uint32_t base) {
    std::string text(static_cast<std::size_t>(digits), '0');
    for (auto place = text.rbegin(); place != text.rend(); ++place, value /= base)
        *place = "0123456789ABCDEF"[value % base];
    return text;
}

template <class Number>
Number FromDigits(std::string_view digits, int base) {
    Number value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    return value;
}

} // namespace

std::string WireHex(std::uint32_t value, int digits) {
    return Digits(value, digits, 16);
}

std::string WireDecimal(int value, int digits) {
    return Digits(static_cast<std::uint32_t>(value), digits, 10);
}

std::string WireSigned(double value, int integerDigits, int decimals) {
    // Not printf: a module writes a point whatever the user's locale writes.
    char buffer[64] = {};
    const auto end =
        std::to_chars(buffer, std::end(buffer), std::fabs(value), std::chars_format::fixed, decimals).ptr;
    const std::string_view number(buffer, static_cast<std::size_t>(end - buffer));
    const auto width =
        static_cast<std::size_t>(integerDigits) + static_cast<std::size_t>(decimals > 0 ? decimals + 1 : 0);
    std::string text(1, value < 0 ? '-' : '+');
    if (number.size() < width)
        text.append(width - number.size(), '0');
    return text.append(number);
}

std::uint32_t FromWireHex(std::string_view digits) {
    return FromDigits<std::uint32_t>(digits, 16);
}

int FromWireDecimal(std::string_view digits) {
    return FromDigits<int>(digits, 10);
}

std::uint8_t WireSum(std::string_view text) {
    unsigned sum = 0;
    for (const char character : text)
        sum += static_cast<unsigned char>(character);
    return static_cast<std::uint8_t>(sum & 0xFF);
}

std::optional<int> WireBaudCode(int baud) {
    for (const WireBaud& entry : WireBauds)
        if (entry.Baud == baud)
            return entry.Code;
    return std::nullopt;
}

std::optional<int> FromWireBaudCode(int code) {
    for (const WireBaud& entry : WireBauds)
        if (entry.Code == code)
            return entry.Baud;
    return std::nullopt;
}

} // namespace kavro
