#include "config/number_text.h"

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

} // namespace kavro
