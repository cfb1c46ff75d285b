#pragma once

#include <cstdint>

namespace kavro {

/// Levels of `count` digital inputs that nobody drives, bit n for input n: each changes every few seconds, so
/// that a display shows life. Depends on the moment (microseconds) and the module's address alone.
constexpr unsigned MovingLevels(std::int64_t moment, int address, int count) {
    const std::int64_t second = moment / 1'000'000 + std::int64_t{3} * address;
    unsigned levels = 0;
    for (int input = 0; input < count; ++input)
        if (second / (2 + input) % 2 == 1)
            levels |= 1U << input;
    return levels;
}

} // namespace kavro
