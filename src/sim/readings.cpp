#include "sim/readings.h"

#include "sim/wire_text.h"

#include <charconv>
#include <cmath>
#include <numbers>

namespace kavro {

namespace {

constexpr RangeShape Shapes[] = {
    {0x00, -15, 15, 15, 2, 3},
    {0x01, -50, 50, 50, 2, 3},
    {0x02, -100, 100, 100, 3, 2},
    {0x03, -500, 500, 500, 3, 2},
    {0x04, -1, 1, 1, 1, 4},
    {0x05, -2.5, 2.5, 2.5, 1, 4},
    {0x06, -20, 20, 20, 2, 3},
    {0x08, -10, 10, 10, 2, 3},
    {0x09, -5, 5, 5, 1, 4},
    {0x0A, -1, 1, 1, 1, 4},
    {0x0B, -500, 500, 500, 3, 2},
    {0x0C, -150, 150, 150, 3, 2},
    {0x0D, -20, 20, 20, 2, 3},
    {0x0E, 0, 760, 760, 3, 2},
    {0x0F, 0, 1370, 1370, 4, 1},
    {0x10, -100, 400, 400, 3, 2},
    {0x11, 0, 1000, 1000, 4, 1},
    {0x12, 500, 1750, 1750, 4, 1},
    {0x13, 500, 1750, 1750, 4, 1},
    {0x14, 500, 1800, 1800, 4, 1},
    {0x15, -200, 1300, 1300, 4, 1},
    {0x16, 0, 2320, 2320, 4, 1},
    {0x20, -100, 100, 100, 3, 2, 100, 0.385},
    {0x21, 0, 100, 100, 3, 2, 100, 0.385},
    {0x22, 0, 200, 200, 3, 2, 100, 0.385},
    {0x23, 0, 600, 600, 3, 2, 100, 0.385},
    {0x24, -100, 100, 100, 3, 2, 100, 0.392},
    {0x25, 0, 100, 100, 3, 2, 100, 0.392},
    {0x26, 0, 200, 200, 3, 2, 100, 0.392},
    {0x27, 0, 600, 600, 3, 2, 100, 0.392},
    {0x28, -80, 100, 100, 3, 2, 120, 0.8},
    {0x29, -120, 100, 100, 3, 2, 120, 0.8},
    {0x2A, 0, 60, 60, 3, 2},
    {0x30, 0, 20, 20, 2, 3},
    {0x31, 4, 20, 20, 2, 3},
    {0x32, 0, 10, 10, 2, 3},
    {0x33, -10, 10, 10, 2, 3},
};

constexpr double ShortestPeriod = 40; // seconds
constexpr double Swing = 0.45;        // of the span, to either side of its middle: no reading ever overflows

} // namespace

RangeShape ShapeOf(int typeCode) {
    for (const RangeShape& shape : Shapes)
        if (shape.Code == typeCode)
            return shape;
    return {.Code = typeCode};
}

double MovingValue(const RangeShape& shape, std::int64_t moment, int place) {
    const double period = ShortestPeriod + 3.0 * (place % 8);
    const double angle = 2 * std::numbers::pi * static_cast<double>(moment) / 1e6 / period + 0.7 * place;
    const double span = shape.High - shape.Low;
    return shape.Low + span * (0.5 + Swing * std::sin(angle));
}

std::string EngineeringText(double value, const RangeShape& shape) {
    return WireSigned(value, shape.IntegerDigits, shape.Decimals);
}

std::string ReadingText(double value, const RangeShape& shape, int dataFormat) {
    switch (dataFormat) {
    case 1:
        return WireSigned(value * 100 / shape.FullScale, 3, 2);
    case 2: // the sign is the highest bit of the 16
        return WireHex(static_cast<std::uint32_t>(std::lround(value * 32767 / shape.FullScale)), 4);
    case 3:
        return WireSigned(shape.ZeroOhms + value * shape.UnitOhms, 3, 2);
    default:
        return EngineeringText(value, shape);
    }
}

std::string FixedText(double value, int integerDigits, int decimals) {
    return WireSigned(value, integerDigits, decimals).substr(1);
}

std::optional<double> FromFixedText(std::string_view text, int integerDigits, int decimals) {
    const std::string shape = FixedText(0, integerDigits, decimals);
    if (text.size() != shape.size())
        return std::nullopt;
    for (std::size_t i = 0; i < shape.size(); ++i)
        if (shape[i] == '0' ? text[i] < '0' || text[i] > '9' : text[i] != shape[i])
            return std::nullopt;
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::optional<double> FromSignedText(std::string_view text, int integerDigits, int decimals) {
    if (text.empty() || (text.front() != '+' && text.front() != '-'))
        return std::nullopt;
    const auto size = FromFixedText(text.substr(1), integerDigits, decimals);
    return size && text.front() == '-' ? -*size : size;
}

int TrimCount(std::string_view digits) {
    return static_cast<std::int8_t>(FromWireHex(digits));
}

} // namespace kavro
