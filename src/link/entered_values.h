#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kavro {

/// An address 0 to 255 in decimal, or in hexadecimal with a leading "0x" or a trailing "H".
/// Throws `RuntimeFailure` for any other text.
std::int16_t ParseAddress(const std::string& text);

/// Baud code of a rate such as "9600". Throws `RuntimeFailure` for a rate that is not one of the eight.
std::int16_t ParseBaud(const std::string& text);

/// Baud codes of a list such as "9600,19200". Throws `RuntimeFailure` for a rate that is not one of the
/// eight.
std::vector<std::int16_t> ParseBaudList(const std::string& text);

/// A whole number from `low` to `high`. Throws `RuntimeFailure` for any other text; `what` names it, with its
/// article.
int ParseWholeNumber(const std::string& text, const std::string& what, int low, int high);

} // namespace kavro
