#include "link/baud.h"

#include <cmath>

namespace kavro {

std::int32_t BaudFromCode(std::int16_t code) {
    if (code <= 5)
        return static_cast<std::int32_t>(std::lround(1200 * std::exp2(code)));
    return code == 6 ? 115200 : 57600;
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
