#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// `text` with "?" for every character outside 32 to 126: what a module sends, made harmless to a terminal
/// and of the same width.
std::string Printable(std::string_view text);

/// Writes to standard output at once. False when it is a pipe that nobody reads any more, which is nothing to
/// complain of. Throws `RuntimeFailure` when it cannot be written.
bool PrintOut(const std::string& text);

/// One line on standard error, led by the program's name; control characters become "?".
void PrintNote(const std::string& text);

/// An address 0 to 255 in decimal, or in hexadecimal with a leading "0x" or a trailing "H".
/// Throws `RuntimeFailure` for any other text.
std::int16_t ParseAddress(const std::string& text);

/// Baud code of a rate such as "9600". Throws `RuntimeFailure` for a rate that is not one of the eight.
std::int16_t ParseBaud(const std::string& text);

/// Baud codes of a list such as "9600,19200". Throws `RuntimeFailure` for a rate that is not one of the
/// eight.
std::vector<std::int16_t> ParseBaudList(const std::string& text);

/// A reply time-out in ms. Throws `RuntimeFailure` below 100 and above 6553, whose fivefold, the long
/// time-out, would not fit.
std::int16_t ParseTimeout(const std::string& text);

/// A whole number from `low` to `high`. Throws `RuntimeFailure` for any other text; `what` names it, with its
/// article.
int ParseWholeNumber(const std::string& text, const std::string& what, int low, int high);

/// A number of passes, 1 to 32767. Throws `RuntimeFailure` for any other text.
std::int16_t ParsePasses(const std::string& text);

} // namespace kavro
