#pragma once

#include <ctime>

namespace kavro {

/// A moment, in seconds since 1970 (UTC), in the fields of the machine's time zone. For the main thread
/// alone: the C library keeps the fields in one place.
inline std::tm LocalTime(std::time_t seconds) {
    const std::tm* const local = std::localtime(&seconds);
    return local ? *local : std::tm{};
}

} // namespace kavro
