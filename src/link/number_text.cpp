#include "link/number_text.h"

#include "link/text.h"

#include <array>
#include <charconv>

namespace kavro {

namespace {

template <class Number>
std::string Text(Number value) {
    std::array<char, 400> buffer{}; // the longest double has 309 digits before its point, or 325 behind it
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed).ptr;
    return {buffer.data(), end};
}

} // namespace

std::string ShortestText(double value) {
    return Text(value);
}

std::string ShortestText(float value) {
    return Text(value);
}

std::optional<double> PlainNumber(std::string text) {
    text = Trim(text);
    const bool sign = text.starts_with('+') || text.starts_with('-');
    const std::string digits = text.substr(sign ? 1 : 0);
    if (digits.find_first_not_of("0123456789.") != std::string::npos)
        return std::nullopt;
    double value = 0;
    const char* end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc{} || rest != end)
        return std::nullopt;
    return text.starts_with('-') ? -value : value;
}

} // namespace kavro
