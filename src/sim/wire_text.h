#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

// The modules' own idea of what stands on the wire. It shares nothing with the program's side on purpose, so
// that one mistake cannot hide on both sides.

/// The low `digits` (1 to 8) hexadecimal digits of `value`, upper case.
std::string WireHex(std::uint32_t value, int digits);

/// The low `digits` decimal digits of `value`, with leading zeros.
std::string WireDecimal(int value, int digits);

/// Sign and fixed-point number, for example "+05.123" with 2 digits before the point and 3 behind it.
std::string WireSigned(double value, int integerDigits, int decimals);

/// Value of `digits`, 1 to 8 upper-case hexadecimal ones.
std::uint32_t FromWireHex(std::string_view digits);

/// Value of `digits`, 1 to 9 decimal ones.
int FromWireDecimal(std::string_view digits);

/// Sum of the character codes, low 8 bits.
std::uint8_t WireSum(std::string_view text);

/// Code with which a module reports a baud rate: 3 for 1200 to 8 for 38400, 9 for 115200, 10 for 57600.
/// Nothing for a rate that no module has.
std::optional<int> WireBaudCode(int baud);

/// Baud rate of such a code; nothing for any other number.
std::optional<int> FromWireBaudCode(int code);

} // namespace kavro
