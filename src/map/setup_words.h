#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// The codes of a module's configuration, "TTCCFF" (type, baud rate, format), in words: "+/- 10V, Engineering
/// Units, 9600 baud, no checksum". Nothing for codes that no module has.
std::optional<std::string> SetupWords(std::string_view codes);

/// The same of a converter, "TTBCFFFF": "RS-485, 9600 baud, other side 19200 baud, no parity, 8 data bits,
/// 1 stop bit, no checksum".
std::optional<std::string> ConverterSetupWords(std::string_view codes);

/// A number as a module writes it, for reading: "+05.123" gives "5.123".
std::string PlainNumber(std::string_view text);

/// The numbers of the bits that are set, the lowest one 0: "0 to 3, 5", or "none".
std::string BitNumbers(std::uint32_t bits);

} // namespace kavro
