#include "link/baud.h"

#include <cmath>

namespace kavro {

namespace {

constexpr std::int16_t DefaultBaudCode = 3; // 9600

} // namespace

std::int32_t BaudFromCode(std::int16_t code) {
    if (code <= 5)
        return static_cast<std::int32_t>(std::lround(1200 * std::exp2(code)));
    return code == 6 ? 115200 : 57600;
}

std::int32_t PortBaudOfCode(std::int16_t code) {
    const bool known = code >= 0 && code < BaudCodeCount;
    return BaudFromCode(known ? code : DefaultBaudCode);
}

std::int16_t CodeFromBaud(std::int32_t baud) {
    for (std::int16_t code = 0; code < BaudCodeCount; ++code)
        if (BaudFromCode(code) == baud)
            return code;
    return 0;
}

bool IsStandardBaud(std::int32_t baud) {
    return BaudFromCode(CodeFromBaud(baud)) == baud;
}

} // namespace kavro
