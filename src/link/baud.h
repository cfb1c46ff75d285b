#pragma once

#include <array>
#include <cstdint>

namespace kavro {

/// Baud codes 0 to 7. Codes 6 and 7 are out of ascending order on purpose: 6 is 115200 and 7 is 57600,
/// everywhere.
inline constexpr int BaudCodeCount = 8;

/// Items of every baud list, in code order, so that a list's index equals the baud code.
inline constexpr std::array<const char*, BaudCodeCount> BaudNames = {"1200",  "2400",  "4800",   "9600",
                                                                     "19200", "38400", "115200", "57600"};

/// Baud rate of a code: 1200 x 2^code up to 5, 115200 for 6, 57600 for everything above.
/// A module may report a wire code below "03", which gives codes -3 to -1 and 150 to 600 baud.
std::int32_t BaudFromCode(std::int16_t code);

/// Rate that a port is switched to for a code: 9600 for one outside 0 to 7.
std::int32_t PortBaudOfCode(std::int16_t code);

/// Code of a baud rate; a rate that is not in the table gives 0.
std::int16_t CodeFromBaud(std::int32_t baud);

/// Whether `baud` is one of the eight rates.
bool IsStandardBaud(std::int32_t baud);

} // namespace kavro
